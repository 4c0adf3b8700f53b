// client/windows/command_handles.h: commands that carry a message handle in place of a control's id.
// Keys are sent that way, so that the one message means a command from the keyboard, whatever its id.
#pragma once

namespace pavex {

// wParam of a command message for a control's id: bit 31 and a handle, the same one for the same id.
unsigned long CommandHandleOf(int id);
// The id a handle was made for; 0 for anything else.
unsigned int IdOfCommandHandle(unsigned long wParam);

}  // namespace pavex
