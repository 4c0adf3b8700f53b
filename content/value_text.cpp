// content/value_text.cpp: the join of a text or text-list value.
// Bytes are copied run by run, each NUL (the store's line break) as the separator, and nothing is
// written past the caller's size.
#include "content/value_text.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <vector>

#include "content/item_text.h"
#include "content/scs_text.h"
#include "content/value_lock.h"

namespace {

// Fills buffer[size]; says when it is full.
class JoinOutput {
public:
    JoinOutput(char* buffer, WORD size) : buffer_(buffer), limit_(size - size_t{1}) {}

    bool AppendSeparator(std::string_view separator)
    {
        if (separator.size() > limit_ - length_)
            return false;
        Copy(separator);
        return true;
    }

    bool AppendText(std::string_view text)
    {
        const bool fits = text.size() <= limit_ - length_;
        Copy(text.substr(0, limit_ - length_));
        if (!fits)
            length_ = WholeScsBytes(buffer_, length_);
        return fits;
    }

    WORD Terminate()
    {
        buffer_[length_] = '\0';
        return static_cast<WORD>(length_);
    }

private:
    void Copy(std::string_view text)
    {
        if (text.empty())
            return;
        std::memcpy(buffer_ + length_, text.data(), text.size());
        length_ += text.size();
    }

    char* buffer_;
    size_t limit_;
    size_t length_ = 0;
};

bool AppendEntry(JoinOutput& output, std::string_view entry, std::string_view separator)
{
    for (;;) {
        const size_t lineEnd = entry.find('\0');
        if (!output.AppendText(entry.substr(0, lineEnd)))
            return false;
        if (lineEnd == std::string_view::npos)
            return true;
        if (!output.AppendSeparator(separator))
            return false;
        entry.remove_prefix(lineEnd + 1);
    }
}

// The lengths of a list's entries, as far as the value really holds them.
std::vector<WORD> ListLengths(const char* content, size_t bytes)
{
    const size_t count = bytes < sizeof(WORD) ? 0 : WordAt(content);
    if (bytes < sizeof(WORD) * (count + 1))
        return {};
    std::vector<WORD> lengths(count);
    size_t room = bytes - sizeof(WORD) * (count + 1);
    for (size_t i = 0; i < count; ++i) {
        lengths[i] = WordAt(content + sizeof(WORD) * (i + 1));
        if (lengths[i] > room) {
            lengths.resize(i);
            break;
        }
        room -= lengths[i];
    }
    return lengths;
}

}  // namespace

WORD ParseMultiLineVLTText(const char* entries, const WORD* lengths, WORD count, char* buffer, WORD size, int joinMode)
{
    if (buffer == nullptr || size == 0)
        return 0;
    buffer[0] = '\0';
    if (entries == nullptr || lengths == nullptr)
        return 0;
    const std::string_view separator = joinMode == kJoinCrLf ? "\r\n" : ", ";
    JoinOutput output(buffer, size);
    for (WORD i = 0; i < count; ++i) {
        if (i != 0 && !output.AppendSeparator(separator))
            break;
        if (!AppendEntry(output, std::string_view(entries, lengths[i]), separator))
            break;
        entries += lengths[i];
    }
    return output.Terminate();
}

WORD JoinTextValue(WORD type, const char* content, size_t bytes, char* buffer, WORD size, int joinMode)
{
    if (type == kTypeTextList) {
        const std::vector<WORD> lengths = ListLengths(content, bytes);
        const size_t header = sizeof(WORD) * (bytes < sizeof(WORD) ? 0 : WordAt(content) + size_t{1});
        return ParseMultiLineVLTText(content + std::min(header, bytes), lengths.data(),
                                     static_cast<WORD>(lengths.size()), buffer, size, joinMode);
    }
    if (type != kTypeText || bytes > std::numeric_limits<WORD>::max())
        return ParseMultiLineVLTText(nullptr, nullptr, 0, buffer, size, joinMode);
    const WORD length = static_cast<WORD>(bytes);
    return ParseMultiLineVLTText(content, &length, 1, buffer, size, joinMode);
}

WORD ParseMultiLineVLTText(WORD type, BLOCKID value, DWORD valueBytes, char* buffer, WORD size, int joinMode)
{
    const ValueLock lock(value);
    if (lock.Bytes() == nullptr || valueBytes < sizeof(WORD))
        return ParseMultiLineVLTText(nullptr, nullptr, 0, buffer, size, joinMode);
    return JoinTextValue(type, lock.Bytes() + sizeof(WORD), valueBytes - sizeof(WORD), buffer, size, joinMode);
}
