// client/windows/qt/program_icon.h: the picture that stands for the program in title bars, task bars and the tray.
#pragma once

#include <QIcon>

namespace pavex {

// The installed one, as the desktop's theme has it, else one of the toolkit's.  Needs a QApplication.
QIcon ProgramIcon();

}  // namespace pavex
