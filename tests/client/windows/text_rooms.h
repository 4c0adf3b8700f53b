// tests/client/windows/text_rooms.h: how wide a text may be where it is shown, in Latin characters; wide East Asian
// ones count double.  Translations keep to it, and windows have the room.
#pragma once

#include <cstddef>

#include "client/windows/dialog.h"

constexpr size_t kTitleColumns = 36;
constexpr size_t kMenuColumns = 28;
constexpr size_t kInstructionColumns = 130;
constexpr size_t kLeadColumns = 24;   // of a status line,
constexpr size_t kStateColumns = 68;  // and what follows
constexpr size_t kBoxColumns = 108;
constexpr size_t kQuestionColumns = 160;
constexpr size_t kNoticeColumns = 280;
constexpr size_t kCaptionColumns = 24;

constexpr size_t ColumnsOf(pavex::ControlKind kind)
{
    switch (kind) {
    case pavex::ControlKind::Button:
        return 14;
    case pavex::ControlKind::Check:
        return 50;
    case pavex::ControlKind::Text:
        return 28;
    case pavex::ControlKind::List:
    case pavex::ControlKind::Edit:
        return 0;
    }
    return 0;
}
