// client/windows/qt/percentage.cpp: how far something is, by what a status line says.
#include "client/windows/qt/percentage.h"

#include <QRegularExpression>
#include <algorithm>

namespace pavex {

std::optional<int> PercentageIn(const QString& text)
{
    // Some languages put a blank, or a narrow one, before the sign.
    static const QRegularExpression kPercentage("(?<!\\d)(\\d{1,9})[\\s\u00A0\u202F]?[%\uFF05]");
    QRegularExpressionMatch last;
    for (QRegularExpressionMatchIterator matches = kPercentage.globalMatch(text); matches.hasNext();)
        last = matches.next();
    if (!last.hasMatch())
        return std::nullopt;
    return std::min(last.captured(1).toInt(), 100);
}

}  // namespace pavex
