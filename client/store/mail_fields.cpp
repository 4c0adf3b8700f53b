// client/store/mail_fields.cpp: the fields of a message by their numbers.
#include <algorithm>
#include <cstring>
#include <string>

#include "client/store/charset.h"
#include "client/store/item_view.h"
#include "client/store/value_text.h"
#include "platform/store.h"

namespace {

using namespace pavex;

struct FieldRow {
    WORD number;
    const char* item;
};

constexpr FieldRow kFields[] = {
    {0, "SendTo"}, {1, "CopyTo"}, {2, "From"}, {3, "Subject"}, {5, "PostedDate"}, {13, "BlindCopyTo"}, {123, "ReplyTo"},
};

STATUS ViewField(NOTEHANDLE note, WORD number, ItemView* view)
{
    for (const FieldRow& row : kFields) {
        if (row.number == number)
            return ViewItem(note, row.item, view);
    }
    return kStatusItemNotFound;
}

}  // namespace

STATUS MailGetMessageItem(NOTEHANDLE note, WORD number, char* text, WORD maxText, WORD* length)
{
    text[0] = 0;
    if (length != nullptr)
        *length = 0;
    ItemView view;
    if (const STATUS status = ViewField(note, number, &view); status != kStatusOk)
        return status;
    std::string value = TextOfValue(view.type, view.value, ", ");
    std::replace(value.begin(), value.end(), '\0', ' ');  // a field is one line
    const size_t bytes = ScsPrefix(value, maxText);
    std::memcpy(text, value.data(), bytes);
    text[bytes] = 0;
    if (length != nullptr)
        *length = static_cast<WORD>(bytes);
    return kStatusOk;
}

STATUS MailGetMessageItemTimeDate(NOTEHANDLE note, WORD number, TIMEDATE* time)
{
    ItemView view;
    if (const STATUS status = ViewField(note, number, &view); status != kStatusOk)
        return status;
    const std::vector<TIMEDATE> times = ReadTimes(view.type, view.value);
    if (times.empty())
        return kStatusItemNotFound;
    *time = times.front();
    return kStatusOk;
}
