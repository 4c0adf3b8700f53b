#!/usr/bin/env python3
"""Writes the sample calendars (calendar/*.ics) and calendar.md.

All people and events are invented; every address is in example.org, example.com or example.net.
The same bytes come out of every run, so that a change to this file is all that changes the sample. Nothing depends on
the day on which the sample is read, but for what repeats without end.
"""

import pathlib
import shutil

from content_lines import escaped, folded

HERE = pathlib.Path(__file__).resolve().parent
CALENDAR = HERE / "calendar"

BERLIN = """BEGIN:VTIMEZONE
TZID:Europe/Berlin
BEGIN:DAYLIGHT
TZNAME:CEST
TZOFFSETFROM:+0100
TZOFFSETTO:+0200
DTSTART:19810329T020000
RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU
END:DAYLIGHT
BEGIN:STANDARD
TZNAME:CET
TZOFFSETFROM:+0200
TZOFFSETTO:+0100
DTSTART:19961027T030000
RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU
END:STANDARD
END:VTIMEZONE
"""
# A zone that only this calendar knows.
VILLAGE = """BEGIN:VTIMEZONE
TZID:Village Time
BEGIN:STANDARD
TZOFFSETFROM:+0245
TZOFFSETTO:+0245
DTSTART:19700101T000000
END:STANDARD
END:VTIMEZONE
"""


class Calendar:
    """A file of entries."""

    def __init__(self, name, about, zones=""):
        self.name, self.about, self.zones = name, about, zones
        self.lines, self.shows = [], []
        self.number = 0

    def entry(self, component, shows, title, *lines, uid=None):
        """lines: content lines as they stand. With a uid the entry is an instance of the one that has it already."""
        if uid is None:
            self.number += 1
            self.shows.append((component, title, shows))
            stamp = f"202401{self.number:02}T0{self.number % 10}1500Z"
            uid = f"{self.name.removesuffix('.ics')}-{self.number}@example.org"
            lines = (f"CREATED:{stamp}", f"LAST-MODIFIED:{stamp[:4]}02{stamp[6:]}", *lines)
        self.lines += [f"BEGIN:{component}", f"UID:{uid}", "DTSTAMP:20240301T120000Z", f"SUMMARY:{escaped(title)}",
                       *lines, f"END:{component}"]
        return uid

    def raw(self):
        lines = ["BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//example.org//sample//EN", *self.zones.splitlines(),
                 *self.lines, "END:VCALENDAR"]
        return b"".join(folded(line) for line in lines)


def people(organizer, required=(), optional=()):
    lines = [f"ORGANIZER;CN={organizer[0]}:mailto:{organizer[1]}"] if organizer else []
    lines += [f"ATTENDEE;ROLE=REQ-PARTICIPANT;CN={name}:mailto:{address}" for name, address in required]
    lines += [f"ATTENDEE;ROLE=OPT-PARTICIPANT;CN={name}:mailto:{address}" for name, address in optional]
    return lines


ANN, BO, CEM = ("Ann Lee", "ann@example.org"), ("Bo Chen", "bo@example.org"), ("Cem Işık", "cem@example.com")
DARIA, ELENI = ("Дарья Соколова", "daria@example.net"), ("Ελένη Παπαδάκη", "eleni@example.com")


def single():
    calendar = Calendar("single.ics", "Entries that take place once", BERLIN + VILLAGE)
    add = calendar.entry
    add("VEVENT", "required and optional attendees, a place, categories, a text of several lines",
        "Review of the plans", "DTSTART:20190305T140000Z", "DTEND:20190305T153000Z", "LOCATION:Room 7\\; east wing",
        "DESCRIPTION:Bring the drawings\\, please.\\n\\nTea will be served.", "CATEGORIES:Work,Plans\\, big",
        *people(ANN, [BO, CEM], [DARIA]))
    add("VEVENT", "required attendees only", "Kurzes Treffen", "DTSTART;TZID=Europe/Berlin:20190701T090000",
        "DTEND;TZID=Europe/Berlin:20190701T091500", *people(BO, [ANN, CEM]))
    add("VEVENT", "optional attendees only, nobody organizes", "Ouvert à tous", "DTSTART:20190702T160000Z",
        "DURATION:PT2H", "LOCATION:Café du Marché", *people(None, [], [ELENI, BO]))
    add("VEVENT", "all day, one day without an end", "День рождения Дарьи", "DTSTART;VALUE=DATE:20190412",
        "DESCRIPTION:Торт и чай.")
    add("VEVENT", "all day, three days", "Διακοπές στην Πάτρα", "DTSTART;VALUE=DATE:20190812",
        "DTEND;VALUE=DATE:20190815", "CATEGORIES:Ταξίδι")
    add("VEVENT", "no end: it takes no time", "花見の集合", "DTSTART:20190330T010000Z", "LOCATION:公園の入口")
    add("VEVENT", "floating: at this time wherever one is", "Mittagessen", "DTSTART:20190715T123000",
        "DTEND:20190715T133000")
    add("VEVENT", "a zone by name only", "Call across the ocean", "DTSTART;TZID=America/New_York:20190320T170000",
        "DTEND;TZID=America/New_York:20190320T174500")
    add("VEVENT", "a zone by the name that another system gives it", "Anruf",
        "DTSTART;TZID=W. Europe Standard Time:20190110T080000",
        "DTEND;TZID=W. Europe Standard Time:20190110T083000")
    add("VEVENT", "a zone that only its definition explains", "Village council",
        "DTSTART;TZID=Village Time:20190601T200000",
        "DTEND;TZID=Village Time:20190601T213000")
    add("VEVENT", "over the hour that the change from summer time repeats", "Nachtwache",
        "DTSTART:20191027T003000Z", "DTEND:20191027T013000Z")
    add("VEVENT", "far in the future, right to left", "اجتماع المكتبة",
        "DTSTART:20910305T140000Z", "DTEND:20910305T150000Z",
        "LOCATION:المكتبة", "DESCRIPTION:نقرأ القصة الثالثة معاً.")
    add("VEVENT", "contact, resources, an address and a remark", "Film evening",
        "DTSTART:20190911T180000Z", "DTEND:20190911T203000Z", "COMMENT:Doors open early.",
        "CONTACT:Front desk\\, ext. 7", "RESOURCES:Projector", "URL:https://films.example.org/11")
    return calendar


def repeating():
    calendar = Calendar("repeating.ics", "Entries that repeat", BERLIN)
    add = calendar.entry
    add("VEVENT", "weekly across the change to summer time: nine o'clock stays nine o'clock", "Chorprobe",
        "DTSTART;TZID=Europe/Berlin:20190313T190000", "DTEND;TZID=Europe/Berlin:20190313T203000",
        "RRULE:FREQ=WEEKLY;COUNT=6", "LOCATION:Gemeindesaal")
    add("VEVENT", "the same in another country, whose clocks change on another day", "Choir abroad",
        "DTSTART;TZID=America/New_York:20190304T183000", "DURATION:PT1H", "RRULE:FREQ=WEEKLY;COUNT=4")
    add("VEVENT", "several days a week until a time of UTC", "Schwimmen", "DTSTART;TZID=Europe/Berlin:20191021T070000",
        "DTEND;TZID=Europe/Berlin:20191021T074500", "RRULE:FREQ=WEEKLY;BYDAY=MO,WE,FR;UNTIL=20191104T060000Z")
    add("VEVENT", "every second week", "Müll", "DTSTART;VALUE=DATE:20190107", "RRULE:FREQ=WEEKLY;INTERVAL=2;COUNT=5")
    add("VEVENT", "monthly by weekday: the second Tuesday", "Клуб читателей", "DTSTART:20190108T170000Z",
        "DTEND:20190108T190000Z", "RRULE:FREQ=MONTHLY;BYDAY=2TU;COUNT=7", "LOCATION:Библиотека")
    add("VEVENT", "monthly by weekday: the last Friday", "月末の会議", "DTSTART:20190125T060000Z", "DTEND:20190125T070000Z",
        "RRULE:FREQ=MONTHLY;BYDAY=-1FR;UNTIL=20190630T000000Z")
    add("VEVENT", "monthly on the 31st: only where there is one", "Rent", "DTSTART;VALUE=DATE:20190131",
        "RRULE:FREQ=MONTHLY;COUNT=5")
    add("VEVENT", "yearly", "Ετήσια συνάντηση", "DTSTART:20160229T100000Z", "DTEND:20160229T120000Z",
        "RRULE:FREQ=YEARLY;COUNT=3")
    stand_up = add("VEVENT", "days left out, one moved, one cancelled, one more, told by the entry's text too",
                   "Stand-up", "DTSTART:20190603T080000Z", "DTEND:20190603T081500Z", "RRULE:FREQ=DAILY;COUNT=10",
                   "EXDATE:20190605T080000Z,20190606T080000Z", "RDATE:20190620T100000Z", "DESCRIPTION:Standing.",
                   *people(ANN, [BO]))
    add("VEVENT", "", "Stand-up, on the roof", "RECURRENCE-ID:20190607T080000Z", "DTSTART:20190607T140000Z",
        "DTEND:20190607T141500Z", "DESCRIPTION:Sitting.", "LOCATION:Roof", uid=stand_up)
    add("VEVENT", "", "Stand-up", "RECURRENCE-ID:20190608T080000Z", "DTSTART:20190608T080000Z", "STATUS:CANCELLED",
        "DESCRIPTION:Standing.", uid=stand_up)
    add("VEVENT", "dates only, no rule", "מפגשים", "DTSTART:20190204T160000Z", "DTEND:20190204T180000Z",
        "RDATE:20190211T160000Z,20190225T160000Z", "RDATE:20190304T150000Z")
    add("VEVENT", "the first day itself left out", "Aerobics", "DTSTART:20190902T100000Z", "DTEND:20190902T110000Z",
        "RRULE:FREQ=WEEKLY;COUNT=3", "EXDATE:20190902T100000Z")
    add("VEVENT", "partly past until the end of the century", "Olympiad", "DTSTART:20040813T180000Z",
        "DTEND:20040813T200000Z", "RRULE:FREQ=YEARLY;INTERVAL=4;COUNT=20")
    add("VEVENT", "never ending, weekly", "Market day", "DTSTART;TZID=Europe/Berlin:20200104T080000",
        "DTEND;TZID=Europe/Berlin:20200104T130000", "RRULE:FREQ=WEEKLY")
    add("VEVENT", "never ending, daily, all day", "Пить воду", "DTSTART;VALUE=DATE:20240101", "RRULE:FREQ=DAILY")
    add("VEVENT", "never ending, monthly by weekday", "茶会", "DTSTART:20240104T050000Z", "DTEND:20240104T060000Z",
        "RRULE:FREQ=MONTHLY;BYDAY=1TH")
    return calendar


def tasks():
    calendar = Calendar("tasks.ics", "Tasks in every state", BERLIN)
    add = calendar.entry
    add("VTODO", "overdue; high importance", "Hand in the form", "DTSTART:20190304T090000Z", "DUE:20190308T170000Z",
        "PRIORITY:1", "CATEGORIES:Office", "DESCRIPTION:In three copies.",
        "ORGANIZER;CN=Ann Lee:mailto:ann@example.org")
    add("VTODO", "overdue; due on a day, without a start; low importance", "Bücher zurückgeben",
        "DUE;VALUE=DATE:20190401", "PRIORITY:9")
    add("VTODO", "current; medium importance", "Сад", "DTSTART:20190301T080000Z", "DUE:20910301T080000Z", "PRIORITY:5",
        "DESCRIPTION:Полить\\nи прополоть.")
    add("VTODO", "future; importance not said", "読書会の準備", "DTSTART:20910401T080000Z", "DUE:20910402T080000Z",
        "PRIORITY:0")
    add("VTODO", "begun before its start", "Early bird", "DTSTART:20910501T080000Z", "DUE:20910502T080000Z",
        "STATUS:IN-PROCESS", "PERCENT-COMPLETE:40")
    add("VTODO", "cancelled", "Repaint the fence", "DTSTART:20190504T080000Z", "DUE:20190505T080000Z",
        "STATUS:CANCELLED")
    add("VTODO", "done, with its time", "Φόροι", "DTSTART:20190201T080000Z", "DUE:20190228T080000Z", "STATUS:COMPLETED",
        "COMPLETED:20190220T113000Z", "PRIORITY:3")
    add("VTODO", "done, by its share only", "Count to hundred",
        "DUE;TZID=Europe/Berlin:20190701T120000", "PERCENT-COMPLETE:100")
    add("VTODO", "assigned to others", "שיעורי בית", "DTSTART:20190901T060000Z", "DUE:20910901T060000Z", "PRIORITY:2",
        *people(BO, [CEM, DARIA]))
    add("VTODO", "without any date", "Some day", "DESCRIPTION:No hurry.", "CATEGORIES:Dreams,Travel")
    add("VTODO", "repeating", "Water the plants", "DTSTART:20190107T070000Z", "DUE:20190107T080000Z",
        "RRULE:FREQ=WEEKLY;COUNT=4")
    return calendar


def journal():
    calendar = Calendar("journal.ics", "Journal entries")
    add = calendar.entry
    add("VJOURNAL", "a day, categories, a text", "Erster Schnee", "DTSTART;VALUE=DATE:20190112",
        "DESCRIPTION:Zwanzig Zentimeter.\\nDer Zug fiel aus.", "CATEGORIES:Wetter,Reise")
    add("VJOURNAL", "a time", "会議の記録", "DTSTART:20190214T013000Z", "DESCRIPTION:全員出席。")
    add("VJOURNAL", "no time of its own: when it was written", "دفتر اليوم", "DESCRIPTION:يوم هادئ في الحديقة.")
    add("VJOURNAL", "nothing but a title", "Quiet day", "DTSTART:20190302T200000Z")
    return calendar


def page(calendars):
    count = sum(len(calendar.shows) for calendar in calendars)
    text = ("# The sample calendars\n\n"
            "Written by `samples/make_calendar.py`; change that, not these files. All people and events are invented,\n"
            "all addresses are in `example.org`, `example.com` and `example.net`.\n\n"
            f"{count} entries:\n")
    kinds = {"VEVENT": "event", "VTODO": "task", "VJOURNAL": "journal entry"}
    for calendar in calendars:
        text += f"\n## {calendar.name}\n\n{calendar.about}.\n\n| entry | kind | shows |\n|---|---|---|\n"
        text += "".join(f"| {title} | {kinds[kind]} | {shows} |\n" for kind, title, shows in calendar.shows)
    return text


def main():
    if CALENDAR.exists():
        shutil.rmtree(CALENDAR)
    CALENDAR.mkdir()
    calendars = [single(), repeating(), tasks(), journal()]
    for calendar in calendars:
        (CALENDAR / calendar.name).write_bytes(calendar.raw())
    (HERE / "calendar.md").write_text(page(calendars), encoding="utf-8")


if __name__ == "__main__":
    main()
