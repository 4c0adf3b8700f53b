// client/store/path.cpp: paths with and without a server part.
#include "client/store/path.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "client/store/charset.h"
#include "client/store/host.h"

bool pavex::IsOnServer(std::string_view path)
{
    return path.starts_with("//") && !path.starts_with("///");
}

namespace {

using pavex::IsOnServer;

constexpr size_t kPathBytes = 256;  // of each buffer in the path calls, its terminator included

struct PathParts {
    std::string_view server;  // empty: a local path
    std::string_view file;
};

bool SplitPath(std::string_view path, PathParts* parts)
{
    if (path.size() >= kPathBytes)
        return false;
    if (!IsOnServer(path)) {
        *parts = {{}, path};
        return true;
    }
    const std::string_view rest = path.substr(2);
    const size_t slash = rest.find('/');
    if (slash == std::string_view::npos || slash + 1 == rest.size())
        return false;  // a server and nothing on it
    *parts = {rest.substr(0, slash), rest.substr(slash + 1)};
    return true;
}

void HandOut(std::string_view text, char* out)
{
    if (out == nullptr)
        return;
    text.copy(out, text.size());
    out[text.size()] = 0;
}

// "." and ".." resolved, doubled separators single.  ".." stays at the beginning of a relative path only.
std::string Canonical(std::string_view path)
{
    const bool absolute = path.starts_with('/');
    std::vector<std::string_view> names;
    while (!path.empty()) {
        const size_t slash = std::min(path.find('/'), path.size());
        const std::string_view name = path.substr(0, slash);
        path.remove_prefix(std::min(slash + 1, path.size()));
        if (name.empty() || name == ".")
            continue;
        const bool up = name == "..";
        if (up && !names.empty() && names.back() != "..")
            names.pop_back();
        else if (!up || !absolute)
            names.push_back(name);
    }
    std::string result;
    for (const std::string_view name : names) {
        if (absolute || !result.empty())
            result += '/';
        result += name;
    }
    return !result.empty() ? result : absolute ? "/" : ".";
}

}  // namespace

STATUS OSPathNetParse(const char* path, char*, char* port, char* server)
{
    PathParts parts;
    if (path == nullptr || !SplitPath({path, strnlen(path, kPathBytes)}, &parts))
        return kStatusBadText;
    HandOut({}, port);  // there are no ports: servers are reached by name alone
    HandOut(parts.server, server);
    return kStatusOk;
}

STATUS OSPathCanonicalize(char* path)
{
    PathParts parts;
    if (path == nullptr || !SplitPath({path, strnlen(path, kPathBytes)}, &parts))
        return kStatusBadText;
    if (parts.file.empty())
        return kStatusOk;
    // On a server every path starts at its root.
    const bool remote = !parts.server.empty();
    const std::string result =
        remote ? "//" + std::string(parts.server) + Canonical("/" + std::string(parts.file)) : Canonical(parts.file);
    if (result.size() >= kPathBytes)
        return kStatusBadText;
    std::memcpy(path, result.c_str(), result.size() + 1);
    return kStatusOk;
}

namespace pavex {

STATUS ResolvePath(const char* scsPath, std::string* native)
{
    const std::string_view path = scsPath == nullptr ? std::string_view() : scsPath;
    if (path.empty())
        return kStatusNoSuchFile;
    if (IsOnServer(path)) {
        PathParts parts;
        return SplitPath(path, &parts) ? kStatusRemoteUnreachable : kStatusBadText;
    }
    const std::string utf8 = Utf8FromScs(path);
    *native = path.starts_with('/') ? utf8 : CurrentPlaces().data + "/" + utf8;
    return kStatusOk;
}

}  // namespace pavex
