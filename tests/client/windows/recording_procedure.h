// tests/client/windows/recording_procedure.h: a dialog procedure that keeps what it was sent.
#pragma once

#include <functional>
#include <vector>

#include "client/windows/dialog.h"
#include "client/windows/dialog_resources.h"

struct SentMessage {
    unsigned int message;
    unsigned long wParam;
    bool operator==(const SentMessage&) const = default;
};

inline std::vector<SentMessage> sentMessages;
// Called for each message, when set.
inline std::function<int(unsigned long window, unsigned int message, unsigned long wParam)> onMessage;

inline int RecordingProcedure(unsigned long window, unsigned int message, unsigned long wParam, long /*lParam*/)
{
    sentMessages.push_back({message, wParam});
    return onMessage ? onMessage(window, message, wParam) : 0;
}

// The settings dialog's resource with the recording procedure behind it.
class RecordedDialog : public pavex::Dialog {
public:
    RecordedDialog() : Dialog(*pavex::FindDialogResource(2070), RecordingProcedure)
    {
        sentMessages.clear();
        onMessage = nullptr;
    }
    ~RecordedDialog() { onMessage = nullptr; }
};
