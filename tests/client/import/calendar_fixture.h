// tests/client/import/calendar_fixture.h: calendars read on a day in March 2007, and the notes that came of them.
#pragma once

#include <cstdlib>
#include <string>

#include "client/store/clock.h"
#include "tests/client/import/import_fixture.h"

namespace pavex {

class CalendarTest : public ImportTest {
protected:
    CalendarTest()
    {
        ::setenv("TZ", "Europe/Berlin", 1);
        options_.into = options_.dataDirectory + "/calendar.vlt";
        SetClock(&clock_);
    }
    ~CalendarTest() override
    {
        SetClock(nullptr);
        ::unsetenv("TZ");
    }

    // Reads a calendar file that holds these lines, and gives the last note.
    NoteText Read(const std::string& lines)
    {
        Write("c.ics", Calendar(lines));
        report_ = Run({"c.ics"});
        const std::vector<NoteText> notes = Notes();
        return notes.empty() ? NoteText() : notes.back();
    }
    NoteText ReadEvent(const std::string& lines) { return Read(Event(lines)); }

    static std::string Calendar(const std::string& lines)
    {
        return "BEGIN:VCALENDAR\nVERSION:2.0\n" + lines + "END:VCALENDAR\n";
    }
    static std::string Event(const std::string& lines) { return "BEGIN:VEVENT\nUID:one\n" + lines + "END:VEVENT\n"; }

    static constexpr uint64_t kNoon = 117309600000;  // 2007-03-05 12:00 GMT, in hundredths since 1970
    VirtualClock clock_{kNoon};
    ImportReport report_;
};

}  // namespace pavex
