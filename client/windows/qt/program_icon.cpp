// client/windows/qt/program_icon.cpp: see the header.
#include "client/windows/qt/program_icon.h"

#include <QApplication>
#include <QStyle>

namespace pavex {

QIcon ProgramIcon()
{
    return QIcon::fromTheme("pavex", QApplication::style()->standardIcon(QStyle::SP_FileDialogContentsView));
}

}  // namespace pavex
