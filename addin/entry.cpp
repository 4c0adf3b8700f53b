// addin/entry.cpp: the client's messages: load, dialog, unload.
#include "addin/entry.h"

#include <cstring>
#include <string>

#include "addin/lifecycle.h"
#include "settings/settings.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"
#include "strings/string_resources.h"

namespace {

void WriteStatusWord(void* record, uint16_t status)
{
    std::memcpy(static_cast<char*>(record) + kRecordStatusOffset, &status, sizeof status);
}

// The field is terminated when the text leaves room; a text that fills it is not.
void WriteMenuText(void* record)
{
    CString text;
    text.LoadString(kStringMenuEntry);
    const std::string narrow = text.toString();
    char* const field = static_cast<char*>(record) + kRecordMenuTextOffset;
    const uint16_t bytes = TranslateText(narrow.data(), static_cast<uint16_t>(narrow.size()), field,
                                         static_cast<uint16_t>(kRecordMenuTextBytes), true);
    if (bytes < kRecordMenuTextBytes)
        field[bytes] = '\0';
}

// A second load message finds bStarted set: it neither restarts the thread nor touches the record.
void Load(void* record)
{
    if (!ShouldStartPlugin()) {
        WriteStatusWord(record, kRecordNoMenu);
        return;
    }
    const bool hidden = HasAdminLockUI();
    if (bStarted.exchange(1) != 0)
        return;
    if (hidden) {
        WriteStatusWord(record, kRecordNoMenu);
    } else {
        WriteMenuText(record);
        WriteStatusWord(record, kRecordActive);
    }
    PavexDesktopIndex();
}

}  // namespace

int MainEntryPoint(unsigned int code, void* record)
{
    switch (static_cast<uint16_t>(code)) {
    case kMessageLoad:
        Load(record);
        break;
    case kMessageDialog: {
        unsigned long argument = 0;
        if (record != nullptr)
            std::memcpy(&argument, record, sizeof argument);
        RunAddInDialog(argument);
        break;
    }
    case kMessageUnload:
        if (bStarted != 0)
            PavexDesktopTerm();
        break;
    default:  // the client's messages are many; the others are not for us
        break;
    }
    return 0;
}
