// client/foundation/url.cpp: URLs of files: taking them apart and putting them together.
#include "client/foundation/url.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

#include "client/foundation/string.h"
#include "client/foundation/unicode.h"

using namespace pavex::cf;

namespace {

std::string WorkingDirectory()
{
    std::vector<char> path(4096);
    while (!getcwd(path.data(), path.size())) {
        if (errno != ERANGE)
            return "/";  // deleted, or not to be read: nothing relative is found, nothing goes wrong
        path.resize(path.size() * 2);
    }
    return path.data();
}

CFURLRef MakeUrl(std::string path, std::string base)
{
    return ToRef<CFURLRef>(New<Url>(std::move(path), std::move(base)));
}

// The bytes of a text that becomes part of a path.  Neither a NUL nor a lone surrogate can be in one: cut
// short, the path would name another file.
std::optional<std::string> PathBytes(CFStringRef text)
{
    std::optional<std::string> bytes = EncodeUtf8(TextOf(text));
    if (bytes && bytes->find('\0') != std::string::npos)
        return std::nullopt;
    return bytes;
}

// A space or a mark that changes the direction of text would hide what kind of file it is.
bool IsDeceptive(char16_t c)
{
    return c == u' ' || c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) ||
           (c >= 0x2066 && c <= 0x2069);
}

bool IsExtension(std::u16string_view text)
{
    if (text.back() == u'.' || text.find(u'/') != std::u16string_view::npos)
        return false;
    const size_t dot = text.rfind(u'.');
    for (const char16_t c : text.substr(dot == std::u16string_view::npos ? 0 : dot + 1)) {
        if (IsDeceptive(c))
            return false;
    }
    return true;
}

}  // namespace

namespace pavex::cf {

std::string Url::FilePath() const
{
    return IsDirectory() && path_.size() > 1 ? path_.substr(0, path_.size() - 1) : path_;
}

std::string Url::ResolvedPath() const
{
    return IsRelative() ? CollapsePath(base_ + '/' + path_) : FilePath();
}

std::string CollapsePath(const std::string& path)
{
    std::string out;
    for (size_t start = 0; start < path.size();) {
        const size_t end = std::min(path.find('/', start), path.size());
        const std::string_view component = std::string_view(path).substr(start, end - start);
        start = end + 1;
        if (component == "..")
            out.resize(out.empty() ? 0 : out.rfind('/'));
        else if (!component.empty() && component != ".")
            out.append(1, '/').append(component);
    }
    return out.empty() ? "/" : out;
}

}  // namespace pavex::cf

extern "C" {

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* buffer, CFIndex bufLen,
                                                 Boolean isDirectory)
{
    if (!buffer || bufLen <= 0)
        return nullptr;
    std::string path(reinterpret_cast<const char*>(buffer), static_cast<size_t>(bufLen));
    if (path.find('\0') != std::string::npos)
        return nullptr;
    if (isDirectory && path.back() != '/')
        path.push_back('/');
    while (!isDirectory && path.size() > 1 && path.back() == '/')
        path.pop_back();
    std::string base = path.front() == '/' ? std::string() : WorkingDirectory();
    return MakeUrl(std::move(path), std::move(base));
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef, CFURLRef url, CFStringRef pathComponent,
                                               Boolean isDirectory)
{
    if (!url)
        return nullptr;
    std::optional<std::string> component = PathBytes(pathComponent);
    if (!component)
        return nullptr;
    const Url& folder = As<Url>(url);
    std::string path = folder.Path();
    if (path.back() != '/')
        path.push_back('/');
    if (!isDirectory && component->ends_with('/'))
        component->pop_back();
    path += *component;
    if (isDirectory && path.back() != '/')
        path.push_back('/');
    return MakeUrl(std::move(path), folder.Base());
}

CFURLRef CFURLCreateCopyAppendingPathExtension(CFAllocatorRef, CFURLRef url, CFStringRef extension)
{
    if (!url)
        return nullptr;
    const std::u16string_view text = TextOf(extension);
    if (text.empty()) {
        CFRetain(url);
        return url;
    }
    const std::optional<std::string> bytes = PathBytes(extension);
    if (!bytes || !IsExtension(text))
        return nullptr;
    const Url& file = As<Url>(url);
    std::string path = file.Path() == "/" ? file.Path() : file.FilePath();
    path.append(1, '.').append(*bytes);
    if (file.IsDirectory())
        path.push_back('/');
    return MakeUrl(std::move(path), file.Base());
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef, CFURLRef url)
{
    if (!url)
        return nullptr;
    const Url& file = As<Url>(url);
    const std::string& path = file.Path();
    const size_t end = path.size() - (file.IsDirectory() ? 1 : 0);
    const size_t slash = path.substr(0, end).rfind('/');
    const size_t start = slash == std::string::npos ? 0 : slash + 1;
    const std::string_view last = std::string_view(path).substr(start, end - start);
    std::string parent;
    if (path == "." || path == "./")
        parent = "../";
    else if (last.empty() || last == "." || last == "..")
        parent = path + (file.IsDirectory() ? "../" : "/../");  // there is nothing to take away
    else
        parent = start == 0 ? "./" : path.substr(0, start);
    return MakeUrl(std::move(parent), file.Base());
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer, CFIndex maxBufLen)
{
    if (!url || maxBufLen <= 0)
        return 0;
    const std::string path = resolveAgainstBase ? As<Url>(url).ResolvedPath() : As<Url>(url).FilePath();
    const bool fits = path.size() < static_cast<size_t>(maxBufLen);
    if (fits)
        std::memcpy(buffer, path.c_str(), path.size() + 1);
    else
        buffer[0] = '\0';
    return fits;
}

}  // extern "C"
