// client/import/formats.cpp: the table of source formats.  A new one is a row.
#include <algorithm>

#include "client/import/bookmark_reader.h"
#include "client/import/calendar_reader.h"
#include "client/import/document_reader.h"
#include "client/import/mbox_reader.h"
#include "client/import/message_reader.h"
#include "client/import/source_reader.h"
#include "client/import/vcard_reader.h"
#include "client/import/words.h"

namespace pavex {
namespace {

constexpr FormatRow kFormats[] = {
    {"mbox", LooksLikeMbox, ReadMbox},  // first: its first line is no header field
    {"calendar", LooksLikeCalendar, ReadCalendar},
    {"vcard", LooksLikeVcard, ReadVcards},
    {"bookmarks", LooksLikeBookmarks, ReadBookmarks},
    {"message", LooksLikeMessage, ReadMessage},
    {"document", LooksLikeDocument, ReadDocument},  // last: every other kind is text too
};

struct SuffixRow {
    std::string_view suffix;
    bool mayBeEmpty;  // a file without a byte is whole
};
constexpr SuffixRow kSuffixes[] = {
    {".mbox", true}, {".eml", false},   {".ics", false},  {".ical", false}, {".icalendar", false}, {".vcs", false},
    {".vcf", false}, {".vcard", false}, {".html", false}, {".htm", false},  {".txt", true},        {".md", true},
};

const SuffixRow* SuffixOf(std::string_view path)
{
    const auto* row = std::find_if(std::begin(kSuffixes), std::end(kSuffixes),
                                   [&](const SuffixRow& each) { return EndsWithWord(path, each.suffix); });
    return row == std::end(kSuffixes) ? nullptr : row;
}

}  // namespace

bool IsNamedAsSource(std::string_view path)
{
    return SuffixOf(path) != nullptr;
}

bool MayBeEmpty(std::string_view path)
{
    const SuffixRow* const row = SuffixOf(path);
    return row == nullptr || row->mayBeEmpty;
}

std::span<const FormatRow> Formats()
{
    return kFormats;
}

const FormatRow* FormatOf(const SourceFile& file)
{
    const auto* row = std::find_if(std::begin(kFormats), std::end(kFormats),
                                   [&](const FormatRow& each) { return each.recognises(file); });
    return row == std::end(kFormats) ? nullptr : row;
}

}  // namespace pavex
