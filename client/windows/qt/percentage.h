// client/windows/qt/percentage.h: how far something is, by what a status line says.
#pragma once

#include <QString>
#include <optional>

namespace pavex {

// The last percentage in a text, at most 100; none when there is none.
std::optional<int> PercentageIn(const QString& text);

}  // namespace pavex
