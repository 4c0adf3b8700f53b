// client/import/text_file.cpp: byte order marks, and what they say.
#include "client/import/text_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unicode/utf8.h>

#include "client/import/temporary_file.h"
#include "client/store/descriptor.h"

namespace pavex {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";
constexpr std::string_view kLittleEndianMark = "\xFF\xFE";

std::string WithError(const char* what)
{
    return std::string(what) + ": " + std::strerror(errno);
}

// Code units in, UTF-8 out; halves of surrogate pairs may come in different pieces.
class Utf16Decoder {
public:
    explicit Utf16Decoder(bool bigEndian) : bigEndian_(bigEndian) {}

    std::string Decode(std::string_view bytes)
    {
        utf8_.clear();
        for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
            const auto high = static_cast<uint8_t>(bytes[bigEndian_ ? i : i + 1]);
            const auto low = static_cast<uint8_t>(bytes[bigEndian_ ? i + 1 : i]);
            Take(static_cast<char32_t>(high << 8 | low));
        }
        return utf8_;
    }

private:
    void Take(char32_t unit)
    {
        const bool low = unit >= 0xDC00 && unit <= 0xDFFF;
        if (low && lead_ != 0)
            Append(0x10000 + ((lead_ - 0xD800) << 10) + (unit - 0xDC00));
        else if (lead_ != 0 || low)
            Append(0xFFFD);
        const bool unpaired = lead_ != 0 && !low;
        lead_ = unit >= 0xD800 && unit <= 0xDBFF ? unit : 0;
        if (!low && lead_ == 0 && (unpaired || unit < 0xD800 || unit > 0xDFFF))
            Append(unit);
    }

    void Append(char32_t character)
    {
        std::array<uint8_t, U8_MAX_LENGTH> bytes{};
        int32_t length = 0;
        U8_APPEND_UNSAFE(bytes.data(), length, character);
        utf8_.append(reinterpret_cast<const char*>(bytes.data()), static_cast<size_t>(length));
    }

    bool bigEndian_;
    char32_t lead_ = 0;  // surrogate that waits for its other half
    std::string utf8_;
};

bool CopyAsUtf8(int from, bool bigEndian, int to, uint64_t* size, std::string* reason)
{
    constexpr size_t kPieceBytes = size_t{64} * 1024;  // even: units are not cut
    std::string piece;
    Utf16Decoder decoder(bigEndian);
    *size = 0;
    for (off_t offset = 2;; offset += static_cast<off_t>(piece.size())) {
        piece.resize(kPieceBytes);
        size_t held = 0;
        ssize_t count = 1;
        while (held < piece.size() && count != 0) {
            count = ::pread(from, piece.data() + held, piece.size() - held, offset + static_cast<off_t>(held));
            if (count < 0 && errno != EINTR) {
                *reason = WithError("cannot be read");
                return false;
            }
            held += count > 0 ? static_cast<size_t>(count) : 0;
        }
        piece.resize(held);
        const std::string utf8 = decoder.Decode(piece);
        if (!WriteAll(to, utf8)) {
            *reason = WithError("cannot write a temporary copy");
            return false;
        }
        *size += utf8.size();
        if (held < kPieceBytes)
            return true;
    }
}

}  // namespace

bool OpenTextFile(const std::string& path, TextFile* file, std::string* reason)
{
    file->descriptor = Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    struct stat info {};
    if (!file->descriptor.IsOpen() || ::fstat(file->descriptor.Get(), &info) != 0) {
        *reason = WithError("cannot be opened");
        return false;
    }
    std::array<char, 3> first{};
    const ssize_t count = ::pread(file->descriptor.Get(), first.data(), first.size(), 0);
    const std::string_view head(first.data(), count > 0 ? static_cast<size_t>(count) : 0);
    const bool bigEndian = head.starts_with(kBigEndianMark);
    file->start = head.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0;
    file->end = static_cast<uint64_t>(info.st_size);
    if (!bigEndian && !head.starts_with(kLittleEndianMark))
        return true;
    Descriptor copy = OpenTemporaryFile();
    if (!copy.IsOpen()) {
        *reason = WithError("cannot write a temporary copy");
        return false;
    }
    if (!CopyAsUtf8(file->descriptor.Get(), bigEndian, copy.Get(), &file->end, reason))
        return false;
    file->descriptor = std::move(copy);
    return true;
}

bool ReadTextFile(const TextFile& file, uint64_t most, std::string* bytes, std::string* reason)
{
    bytes->resize(std::min(most, file.end - file.start));
    size_t have = 0;
    while (have < bytes->size()) {
        const ssize_t count = ::pread(file.descriptor.Get(), bytes->data() + have, bytes->size() - have,
                                      static_cast<off_t>(file.start + have));
        if (count < 0) {
            *reason = WithError("cannot be read");
            return false;
        }
        if (count == 0)
            break;
        have += static_cast<size_t>(count);
    }
    bytes->resize(have);
    return true;
}

std::string TextOfHead(std::string_view head)
{
    if (head.starts_with(kUtf8Mark))
        return std::string(head.substr(kUtf8Mark.size()));
    const bool bigEndian = head.starts_with(kBigEndianMark);
    if (!bigEndian && !head.starts_with(kLittleEndianMark))
        return std::string(head);
    std::string text;
    for (size_t i = bigEndian ? 3 : 2; i < head.size(); i += 2)
        text += head[i];
    return text;
}

}  // namespace pavex
