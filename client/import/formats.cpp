// client/import/formats.cpp: the table of source formats.  A new one is a row.
#include <algorithm>

#include "client/import/mbox_reader.h"
#include "client/import/message_reader.h"
#include "client/import/source_reader.h"

namespace pavex {
namespace {

constexpr FormatRow kFormats[] = {
    {"mbox", LooksLikeMbox, ReadMbox},  // first: its first line is no header field
    {"message", LooksLikeMessage, ReadMessage},
};

}  // namespace

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
