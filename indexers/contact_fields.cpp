// indexers/contact_fields.cpp: what of a contact is composed of several items: postal addresses and the
// extra fields, whose meaning is in the label that the user gave them.
#include <array>
#include <cstring>

#include "content/buffers.h"
#include "content/item_text.h"
#include "content/scs_text.h"
#include "indexers/contact.h"

namespace {

constexpr int kExtraFields = 3;
constexpr const char* kLabelItems[kExtraFields] = {"MiscLabel1", "MiscLabel2", "MiscLabel3"};
constexpr const char* kPhoneItems[kExtraFields] = {"MiscPhone1", "MiscPhone2", "MiscPhone3"};
using FieldTypes = std::array<WORD, kExtraFields>;

// In the order of asking: the first word that the label is part of decides, so "url" is a home URL.
struct LabelRow {
    const char* word;
    ContactFieldType type;
};
constexpr LabelRow kLabels[] = {
    {"email", kContactFieldEmail},     {"onlinename", kContactFieldOnlineName},
    {"homeurl", kContactFieldHomeUrl}, {"nickname", kContactFieldNickname},
    {"url", kContactFieldUrl},
};

struct ExtraRow {
    ContactFieldType type;
    const char* key;
};
constexpr ExtraRow kExtras[] = {
    {kContactFieldOnlineName, "com_quorvex_morvane_pavex_im_address"},
    {kContactFieldNickname, "com_quorvex_morvane_pavex_nickname"},
    {kContactFieldHomeUrl, "com_quorvex_morvane_pavex_personal_home_page"},
    {kContactFieldUrl, "com_quorvex_morvane_pavex_web_page"},
};

// Text that grows in a buffer of `size` bytes, always terminated.
class TextComposer {
public:
    TextComposer(char* buffer, WORD size) : buffer_(buffer), size_(size)
    {
        if (size_ > 0)
            buffer_[0] = '\0';
    }

    WORD Length() const { return length_; }

    // Returns the bytes written, 0 for an empty item or a full buffer.
    WORD AppendItem(NOTEHANDLE note, const char* item)
    {
        if (length_ + 1 >= size_)
            return 0;
        const WORD written = MyItemGetText(note, item, buffer_ + length_, static_cast<WORD>(size_ - length_));
        length_ = static_cast<WORD>(length_ + written);
        return written;
    }

    // All of the text or nothing of it.
    bool AppendText(const char* text)
    {
        const size_t bytes = strlen(text);
        if (length_ + bytes >= size_)
            return false;
        memcpy(buffer_ + length_, text, bytes + 1);
        length_ = static_cast<WORD>(length_ + bytes);
        return true;
    }

    void CutAt(WORD length)
    {
        length_ = length;
        if (size_ > 0)
            buffer_[length_] = '\0';
    }

private:
    char* buffer_;
    WORD size_;
    WORD length_ = 0;
};

SearchEngineResult IndexFieldsOfType(NOTEHANDLE note, const FieldTypes& types, const ExtraRow& row,
                                     SearchEngineEvent& event)
{
    const WORD length =
        FillExtraBuffer(note, Buffer5, kBufferLimit, types[0] == row.type, types[1] == row.type, types[2] == row.type);
    return IndexItemBuffer(Buffer5, length, row.key, event, false);
}

// The items of the second and third e-mail address.  The first two extra fields have each a slot of their
// own; the third and the Internet address take what is left.
struct EmailSlots {
    const char* first = nullptr;
    const char* second = nullptr;

    void TakeFree(const char* item)
    {
        if (first == nullptr)
            first = item;
        else if (second == nullptr)
            second = item;
    }
};

EmailSlots ChooseEmails(NOTEHANDLE note, const FieldTypes& types)
{
    const auto isEmail = [&](size_t field) {
        return types[field] == kContactFieldEmail && ItemHasText(note, kPhoneItems[field]);
    };
    EmailSlots slots;
    if (isEmail(0))
        slots.first = kPhoneItems[0];
    if (isEmail(1))
        slots.second = kPhoneItems[1];
    if (isEmail(2))
        slots.TakeFree(kPhoneItems[2]);
    if (ItemHasText(note, "InternetAddress"))
        slots.TakeFree("InternetAddress");
    return slots;
}

SearchEngineResult IndexEmails(NOTEHANDLE note, const EmailSlots& slots, SearchEngineEvent& event)
{
    SearchEngineResult result = kSearchEngineNoError;
    if (slots.first != nullptr)
        result = IndexItem(note, kIndexText, slots.first, "com_quorvex_morvane_pavex_email2", event, false);
    if (slots.second != nullptr && result == kSearchEngineNoError)
        result = IndexItem(note, kIndexText, slots.second, "com_quorvex_morvane_pavex_email3", event, false);
    return result;
}

}  // namespace

WORD FillAddressBuffer(NOTEHANDLE note, char* buffer, WORD size, const char* street, const char* city,
                       const char* state, const char* zip, const char* country)
{
    struct Part {
        const char* item;
        const char* separator;  // behind it, unless it is empty
    };
    const Part parts[] = {{street, "\r\n"}, {city, ", "}, {state, " "}, {zip, " "}, {country, ""}};
    TextComposer address(buffer, size);
    for (const Part& part : parts)
        if (address.AppendItem(note, part.item) > 0 && !address.AppendText(part.separator))
            break;
    return address.Length();
}

WORD FillExtraBuffer(NOTEHANDLE note, char* buffer, WORD size, bool usePhone1, bool usePhone2, bool usePhone3)
{
    const bool used[kExtraFields] = {usePhone1, usePhone2, usePhone3};
    TextComposer text(buffer, size);
    for (size_t field = 0; field < kExtraFields; ++field) {
        if (!used[field])
            continue;
        const WORD before = text.Length();
        if (before > 0 && !text.AppendText(", "))
            break;
        if (text.AppendItem(note, kPhoneItems[field]) == 0)
            text.CutAt(before);  // no separator before nothing
    }
    return text.Length();
}

WORD GetContactFieldType(NOTEHANDLE note, WORD label)
{
    if (label < 1 || label > kExtraFields || MyItemGetText(note, kLabelItems[label - 1], Buffer5, kBufferLimit) == 0)
        return kContactFieldNone;
    for (char* c = Buffer5; *c != '\0'; ++c)
        *c = AsciiLower(*c);
    for (const LabelRow& row : kLabels)
        if (strstr(row.word, Buffer5) != nullptr)
            return row.type;
    return kContactFieldNone;
}

SearchEngineResult IndexExtraItems(NOTEHANDLE note, SearchEngineEvent& event)
{
    const FieldTypes types = {GetContactFieldType(note, 1), GetContactFieldType(note, 2), GetContactFieldType(note, 3)};
    for (const ExtraRow& row : kExtras)
        if (const SearchEngineResult result = IndexFieldsOfType(note, types, row, event);
            result != kSearchEngineNoError)
            return result;
    return IndexEmails(note, ChooseEmails(note, types), event);
}
