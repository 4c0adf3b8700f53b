// client/store/time_scanner.h: reads dates and times of day off a text.
#pragma once

#include <cstdint>
#include <string_view>

#include "client/store/civil_date.h"

namespace pavex {

// Each reader answers false, and takes nothing that the caller may rely on, when the text is not of its form.
class TimeScanner {
public:
    explicit TimeScanner(std::string_view text) : text_(text) {}

    bool AtEnd() const { return position_ == text_.size(); }
    size_t Position() const { return position_; }
    void MoveTo(size_t position) { position_ = position; }
    char Next() const { return AtEnd() ? '\0' : text_[position_]; }
    bool Skip(char c)
    {
        if (AtEnd() || text_[position_] != c)
            return false;
        ++position_;
        return true;
    }

    // A decimal number of `least` to `most` digits and at most `limit`.
    bool Number(int least, int most, int limit, int* number)
    {
        int digits = 0;
        int value = 0;
        for (; digits < most && Next() >= '0' && Next() <= '9'; ++digits, ++position_)
            value = value * 10 + (Next() - '0');
        *number = value;
        return digits >= least && value <= limit;
    }

    // "2007-03-05"; years before 0 with a sign.  day: the Julian day number.
    bool Date(uint32_t* day)
    {
        const bool negative = Skip('-');
        CivilDate date{};
        if (!Number(4, 6, 99999, &date.year) || !Skip('-') || !Number(2, 2, 12, &date.month) || !Skip('-') ||
            !Number(2, 2, 31, &date.day))
            return false;
        if (negative)
            date.year = -date.year;
        if (!IsCivilDate(date) || DayFromCivil(date) > kDayMask)
            return false;
        *day = static_cast<uint32_t>(DayFromCivil(date));
        return true;
    }

    // "14:00", "14:00:00" or "14:00:00.25"; further digits of the fraction are dropped.
    bool TimeOfDay(uint32_t* ticks)
    {
        int hour = 0;
        int minute = 0;
        int second = 0;
        int hundredth = 0;
        if (!Number(2, 2, 23, &hour) || !Skip(':') || !Number(2, 2, 59, &minute))
            return false;
        if (Skip(':')) {
            if (!Number(2, 2, 59, &second))
                return false;
            if (Skip('.') && !Hundredths(&hundredth))
                return false;
        }
        *ticks = static_cast<uint32_t>(((hour * 60 + minute) * 60 + second) * 100 + hundredth);
        return true;
    }

private:
    bool Hundredths(int* hundredth)
    {
        const size_t start = position_;
        if (!Number(1, 2, 99, hundredth))
            return false;
        if (position_ - start == 1)
            *hundredth *= 10;
        while (Next() >= '0' && Next() <= '9')
            ++position_;
        return true;
    }

    std::string_view text_;
    size_t position_ = 0;
};

}  // namespace pavex
