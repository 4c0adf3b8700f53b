// client/windows/modal.cpp: what waits for the user: dialogs, message boxes and the file chooser.
#include <cstring>

#include "client/store/charset.h"
#include "client/windows/command_handles.h"
#include "client/windows/dialog.h"
#include "client/windows/dialog_resources.h"
#include "client/windows/front_end.h"
#include "client/windows/resource_text.h"
#include "platform/windows.h"

namespace pavex {

namespace {

FrontEnd* frontEnd = nullptr;  // set by the program before the add-in is loaded

// Which icon and buttons a box has, by the bits of its flags.
constexpr unsigned int kButtonsMask = 0x0F;
constexpr unsigned int kOkCancel = 1;
constexpr unsigned int kIconMask = 0xF0;
constexpr unsigned int kIconQuestion = 32;
constexpr unsigned int kIconWarning = 48;

BoxIcon IconOf(unsigned int flags)
{
    switch (flags & kIconMask) {
    case kIconQuestion:
        return BoxIcon::Question;
    case kIconWarning:
        return BoxIcon::Warning;
    default:
        return BoxIcon::None;
    }
}

std::string Utf8Of(const char* scs)
{
    return scs == nullptr ? std::string() : Utf8FromScs(scs);
}

}  // namespace

void SetFrontEnd(FrontEnd* newFrontEnd)
{
    frontEnd = newFrontEnd;
}

FrontEnd* CurrentFrontEnd()
{
    return frontEnd;
}

}  // namespace pavex

STATUS DeskBrowseGetLocalFile(unsigned long /*window*/, char* path, WORD size)
{
    pavex::FrontEnd* shown = pavex::CurrentFrontEnd();
    std::string chosen;
    if (path == nullptr || size == 0 || shown == nullptr)
        return kStatusCancelled;
    path[0] = '\0';
    if (!shown->ChooseFile(&chosen))
        return kStatusCancelled;
    const std::string scs = pavex::ScsFromUtf8(chosen);
    if (scs.size() >= size) {
        // A path that was cut would name another file, so a longer one cannot be chosen.
        shown->MessageBox({pavex::Localized(pavex::kTextPathTooLong), chosen, pavex::BoxIcon::Warning, false});
        return kStatusCancelled;
    }
    std::memcpy(path, scs.c_str(), scs.size() + 1);
    return kStatusOk;
}

long UIXDialogBox(unsigned long /*parent*/, unsigned int resource, DialogProcedure procedure)
{
    const pavex::DialogResource* found = pavex::FindDialogResource(resource);
    pavex::FrontEnd* shown = pavex::CurrentFrontEnd();
    if (found == nullptr || procedure == nullptr || shown == nullptr)
        return -1;
    pavex::Dialog dialog(*found, procedure);
    if (dialog.Window() == 0)
        return -1;
    dialog.Send(kMessageInitialize, 0, 0);
    if (!dialog.Ended())
        shown->Run(dialog);
    std::string ignored;  // an abandoned dialog is cancelled even where its Cancel button is disabled
    if (!dialog.Ended() && !dialog.Press(dialog.CancelButton(), &ignored))
        dialog.Send(kMessageCommand, static_cast<unsigned long>(dialog.CancelButton()), 0);
    return dialog.Result();
}

int UIXMessageBox(WORD /*window*/, const char* text, const char* caption, WORD flags, int /*reserved*/)
{
    pavex::FrontEnd* shown = pavex::CurrentFrontEnd();
    if (shown == nullptr)
        return 0;
    return shown->MessageBox({pavex::Utf8Of(text), pavex::Utf8Of(caption), pavex::IconOf(flags),
                              (flags & pavex::kButtonsMask) == pavex::kOkCancel});
}

unsigned int LookupCommandMsgID(unsigned long wParam)
{
    return pavex::IdOfCommandHandle(wParam);
}
