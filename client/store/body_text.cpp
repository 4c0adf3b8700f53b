// client/store/body_text.cpp: exports the plain text of an item into a file.
#include <string>
#include <vector>

#include "client/store/charset.h"
#include "client/store/item_view.h"
#include "client/store/line_writer.h"
#include "client/store/richtext.h"
#include "client/store/value_text.h"
#include "platform/store.h"

namespace {

using namespace pavex;

constexpr WORD kNeverWrapped = 65535;

// False when a damaged record ended the text.
bool WriteRichText(std::string_view records, const TextFile& file, LineWriter* lines)
{
    return VisitPlainText(records, [&](std::string_view piece, bool last) {
        lines->Add(piece);
        if (last)
            lines->EndLine();
        return !file.Failed();
    });
}

bool WriteLines(const std::vector<std::string_view>& texts, LineWriter* lines)
{
    for (const std::string_view text : texts) {
        lines->Add(text);
        lines->EndLine();
    }
    return true;
}

bool WriteItem(const ItemView& item, const TextFile& file, LineWriter* lines)
{
    if (item.type == kTypeRichText)
        return WriteRichText(item.value, file, lines);
    if (item.type == kTypeText)
        return item.value.empty() || WriteLines({item.value}, lines);
    std::vector<std::string_view> entries;
    return ReadTextList(item.value, &entries) && WriteLines(entries, lines);
}

bool HasText(const ItemView& item)
{
    return item.type == kTypeRichText || item.type == kTypeText || item.type == kTypeTextList;
}

}  // namespace

STATUS MailGetMessageBodyText(NOTEHANDLE note, const char* item, const char* lineEnd, WORD lineLength, bool convertTabs,
                              const char* fileName, DWORD* size)
{
    if (size != nullptr)
        *size = 0;
    ItemView view;
    if (const STATUS status = ViewItem(note, item == nullptr ? "Body" : item, &view); status != kStatusOk)
        return status;
    if (!HasText(view))
        return kStatusItemNotFound;
    TextFile file(Utf8FromScs(fileName));
    LineWriter lines(&file, {.end = lineEnd == nullptr ? "\n" : lineEnd,
                             .mostBytes = lineLength == kNeverWrapped ? size_t{0} : lineLength,
                             .convertTabs = convertTabs});
    const bool whole = WriteItem(view, file, &lines);
    if (const STATUS status = file.Close(); status != kStatusOk)
        return status;
    if (!whole && file.Bytes() == 0)
        return kStatusDamaged;  // else what stands before the damage is the text
    if (size != nullptr)
        *size = static_cast<DWORD>(std::min<uint64_t>(file.Bytes(), UINT32_MAX));
    return kStatusOk;
}
