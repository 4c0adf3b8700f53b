// client/import/content_lines.cpp: folds undone, as they are met in practice.
#include "client/import/content_lines.h"

#include <algorithm>

#include "client/import/words.h"

namespace pavex {
namespace {

int HexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

}  // namespace

bool ContentLines::Fetch()
{
    if (have_ || ended_)
        return have_;
    have_ = lines_.Next(&next_);
    ended_ = !have_;
    if (have_ && next_.starts)
        ++number_;
    return have_;
}

void ContentLines::Take(ContentLine* line, std::string_view text)
{
    const size_t room = kLongestContentLine - line->text.size();
    line->shortened = line->shortened || text.size() > room;
    line->text += text.substr(0, room);
    line->endOffset = next_.endOffset;
    if (next_.starts || !text.empty())
        equals_ = text.ends_with('=');
    have_ = false;
}

// A quoted-printable value goes on after an equals sign at the end of a line.
bool ContentLines::EndsSoftly(std::string_view text)
{
    return equals_ && head_.IsQuotedPrintable(text);
}

bool ContentLines::Next(ContentLine* line)
{
    *line = {};
    if (!Fetch())
        return false;
    line->offset = next_.offset;
    line->number = number_;
    head_ = {};
    Take(line, next_.text);
    while (Fetch()) {
        std::string_view text = next_.text;
        const bool soft = next_.starts && EndsSoftly(line->text);
        const bool fold = next_.starts && (text.starts_with(' ') || text.starts_with('\t'));
        if (next_.starts && !soft && !fold)
            break;
        if (soft && !line->shortened)
            line->text.pop_back();
        if (fold && !soft)
            text.remove_prefix(1);
        Take(line, text);
    }
    return true;
}

bool HeadScan::IsQuotedPrintable(std::string_view line)
{
    seen_ = std::min(seen_, line.size());
    for (; seen_ < line.size() && colon_ == line.npos; ++seen_) {
        if (line[seen_] == '"')
            quoted_ = !quoted_;
        if (line[seen_] != ':')
            continue;
        firstColon_ = std::min(firstColon_, seen_);
        if (!quoted_)
            colon_ = seen_;
    }
    const size_t colon = colon_ == line.npos ? firstColon_ : colon_;
    if (colon != answered_)
        answer_ = pavex::IsQuotedPrintable(line.substr(0, colon + 1));
    answered_ = colon;
    return answer_;
}

std::string ContentName(std::string_view line)
{
    std::string_view name = line.substr(0, line.find_first_of(":;"));
    if (const size_t dot = name.rfind('.'); dot != name.npos)
        name.remove_prefix(dot + 1);
    return UpperWord(name);
}

size_t ContentValue(std::string_view line)
{
    bool quoted = false;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"')
            quoted = !quoted;
        else if (line[i] == ':' && !quoted)
            return i + 1;
    }
    // A quote that is never closed quotes nothing.
    const size_t colon = line.find(':');
    return colon == line.npos ? line.npos : colon + 1;
}

bool IsQuotedPrintable(std::string_view line)
{
    const size_t semicolon = line.find(';');
    const size_t value = ContentValue(line);
    if (semicolon == line.npos || value == line.npos || semicolon > value)
        return false;
    return UpperWord(line.substr(semicolon, value - semicolon)).find("QUOTED-PRINTABLE") != std::string::npos;
}

std::string FromQuotedPrintable(std::string_view value)
{
    std::string bytes;
    bytes.reserve(value.size());
    for (size_t i = 0; i < value.size(); ++i) {
        const int high = i + 2 < value.size() && value[i] == '=' ? HexDigit(value[i + 1]) : -1;
        const int low = high >= 0 ? HexDigit(value[i + 2]) : -1;
        bytes += low >= 0 ? static_cast<char>(high * 16 + low) : value[i];
        i += low >= 0 ? 2 : 0;
    }
    return bytes;
}

}  // namespace pavex
