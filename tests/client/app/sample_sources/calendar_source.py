"""What calendar files say, by regular expressions and plain arithmetic on dates.

Times are naive and of UTC; a day is its midnight. Knows the rules and zones that the samples have, and stops at others.
"""

import collections
import datetime
import itertools
import re

from properties import CONTENT, Expected, lines

DAY = datetime.timedelta(days=1)
MOST_OCCURRENCES = 100
WEEKDAYS = ["MO", "TU", "WE", "TH", "FR", "SA", "SU"]
Property = collections.namedtuple("Property", "name parameters value")
STATUS = {"overdue": 3, "current": 1, "future": 0, "cancelled": 4, "done": 2}


# ---- zones ------------------------------------------------------------------------------------

def sunday(year, month, number):
    """The number-th Sunday of a month, -1: the last."""
    days = [day for day in (datetime.datetime(year, month, 1) + n * DAY for n in range(31))
            if day.month == month and day.weekday() == 6]
    return days[number - 1 if number > 0 else number]


def hours_of_berlin(local):
    return 2 if sunday(local.year, 3, -1).replace(hour=2) <= local < sunday(local.year, 10, -1).replace(hour=3) else 1


def hours_of_new_york(local):
    return -4 if sunday(local.year, 3, 2).replace(hour=2) <= local < sunday(local.year, 11, 1).replace(hour=2) else -5


# The empty one is that of times without a zone: the test runs in Berlin.
ZONES = {"": hours_of_berlin, "Europe/Berlin": hours_of_berlin, "W. Europe Standard Time": hours_of_berlin,
         "America/New_York": hours_of_new_york}


class Time:
    def __init__(self, prop, zones, value=None):
        value = value or prop.value
        self.date = "T" not in value
        self.local = datetime.datetime.strptime(value.rstrip("Z"), "%Y%m%d" if self.date else "%Y%m%dT%H%M%S")
        self.hours = (lambda _: 0) if self.date or value.endswith("Z") else zones[prop.parameters.get("TZID", "")]

    def utc(self, local=None):
        local = local or self.local
        return local - datetime.timedelta(hours=self.hours(local))


def zones_of(text):
    """Those of the file that never change are read from it; the others are known by name."""
    zones = dict(ZONES)
    for name, definition in re.findall(r"BEGIN:VTIMEZONE\nTZID:([^\n]*)\n(.*?)END:VTIMEZONE", text, re.S):
        if "DAYLIGHT" not in definition:
            sign, hours, minutes = re.search(r"TZOFFSETTO:([+-])(\d\d)(\d\d)", definition).groups()
            zones[name] = lambda _, offset=int(sign + hours) + int(sign + minutes) / 60: offset
    return zones


# ---- rules ------------------------------------------------------------------------------------

def months(start, step):
    for number in itertools.count(start.month - 1, step):
        yield start.year + number // 12, number % 12 + 1


def days_of_month(start, year, month, by_day):
    number, weekday = re.fullmatch(r"(-?\d)([A-Z]{2})", by_day).groups()
    first = datetime.datetime(year, month, 1, start.hour, start.minute, start.second)
    days = [first + n * DAY for n in range(31)]
    days = [day for day in days if day.month == month and day.weekday() == WEEKDAYS.index(weekday)]
    return days[int(number) - 1 if int(number) > 0 else int(number)]


def matches(start, rule):
    """All local times of a rule, without regard to its end."""
    step = int(rule.get("INTERVAL", 1))
    if rule["FREQ"] == "DAILY":
        yield from (start + n * step * DAY for n in itertools.count())
    elif rule["FREQ"] == "WEEKLY":
        monday = start - start.weekday() * DAY
        days = sorted(WEEKDAYS.index(day) for day in rule["BYDAY"].split(",")) if "BYDAY" in rule else [start.weekday()]
        for week in itertools.count():
            yield from (day for day in (monday + (7 * step * week + n) * DAY for n in days) if day >= start)
    elif rule["FREQ"] == "MONTHLY" and "BYDAY" in rule:
        yield from (days_of_month(start, year, month, rule["BYDAY"]) for year, month in months(start, step))
    else:  # on the same day of a month, or of one month; where there is none, not at all
        for year, month in months(start, {"MONTHLY": 1, "YEARLY": 12}[rule["FREQ"]] * step):
            try:
                yield start.replace(year=year, month=month)
            except ValueError:
                continue


def rule_starts(start, rule, today):
    """Times of UTC; of a rule without an end as many as can be listed."""
    left = int(rule.get("COUNT", 0)) or None
    until = rule.get("UNTIL")
    until = until and datetime.datetime.strptime(until, "%Y%m%dT%H%M%SZ")
    to_come = 0
    for local in itertools.islice(matches(start.local, rule), left):
        utc = start.utc(local)
        if until and utc > until or to_come > MOST_OCCURRENCES:
            return
        to_come += utc >= today
        yield utc


def window(starts, today):
    """At most a hundred: what is to come goes before what is past."""
    to_come = [start for start in starts if start >= today][:MOST_OCCURRENCES]
    past = [start for start in starts if start < today]
    return past[len(past) - min(len(past), MOST_OCCURRENCES - len(to_come)):] + to_come


# ---- entries ----------------------------------------------------------------------------------

class Entry:
    """A component, with the instances of it that are changed."""

    def __init__(self, kind, properties, zones):
        self.kind, self.properties, self.zones, self.changes = kind, properties, zones, []

    def all(self, name):
        return [prop for prop in self.properties if prop.name == name]

    def text(self, name):
        return unescaped(self.all(name)[0].value) if self.all(name) else ""

    def time(self, name):
        return Time(self.all(name)[0], self.zones) if self.all(name) else None

    def instants(self, name):
        return {Time(prop, self.zones, value).utc() for prop in self.all(name) for value in prop.value.split(",")}

    def starts(self, today):
        start = self.time("DTSTART")
        starts = {start.utc()} | self.instants("RDATE")
        for prop in self.all("RRULE"):
            starts |= set(rule_starts(start, dict(part.split("=") for part in prop.value.split(";")), today))
        starts -= self.instants("EXDATE")
        for change in self.changes:
            starts -= change.instants("RECURRENCE-ID")
        starts |= {change.time("DTSTART").utc() for change in self.changes if change.text("STATUS") != "CANCELLED"}
        return window(sorted(starts), today)

    def end(self, name):
        start = self.time("DTSTART")
        if self.all(name):
            return self.time(name).utc()
        if self.all("DURATION"):
            return start.utc() + datetime.timedelta(hours=int(re.fullmatch(r"PT(\d+)H", self.text("DURATION"))[1]))
        return start.utc() + (DAY if start.date else 0 * DAY)

    def people(self, role):
        chosen = [prop for prop in self.all("ATTENDEE") if prop.parameters["ROLE"] == role]
        return ", ".join(map(person, chosen))

    def categories(self):
        return ", ".join(unescaped(value) for prop in self.all("CATEGORIES")
                         for value in re.split(r"(?<!\\),", prop.value))

    def content(self):
        said = [self.text("DESCRIPTION"), self.text("COMMENT")]
        said += [label + self.text(name) for label, name in (("Contact: ", "CONTACT"), ("Resources: ", "RESOURCES"),
                                                            ("", "URL")) if self.text(name)]
        for change in self.changes:
            said += [change.text(name) for name in ("SUMMARY", "LOCATION", "DESCRIPTION")
                     if change.text(name) != self.text(name)]
        return lines("\n".join(text for text in said if text))


def person(prop):
    return f"{prop.parameters['CN']} <{prop.value.removeprefix('mailto:')}>"


def unescaped(text):
    return re.sub(r"\\(.)", lambda match: "\n" if match[1] in "nN" else match[1], text)


def read(path):
    text = path.read_bytes().decode().replace("\r\n", "\n")
    text = re.sub(r"\n[ \t]", "", text)
    zones, entries = zones_of(text), {}
    for kind, component in re.findall(r"BEGIN:(VEVENT|VTODO|VJOURNAL)\n(.*?)END:\1\n", text, re.S):
        properties = []
        for line in component.splitlines():
            name, parameters, value = re.fullmatch(r"([\w-]+)((?:;[^:]*)?):(.*)", line).groups()
            properties.append(Property(name, dict(p.split("=") for p in parameters.split(";")[1:]), value))
        entry = Entry(kind, properties, zones)
        master = entries.setdefault(entry.text("UID"), entry)
        if master is not entry:
            master.changes.append(entry)
    return list(entries.values())


# ---- what becomes of them ---------------------------------------------------------------------

def shown(time):
    return f"{time.month:2}-{time.day:2}-{time.year:4} {time.hour:2}:{time.minute:2}:{time.second:2}"


def times(pairs, end_name, now):
    """The next occurrence, and all of them when there are several."""
    start, end = next((pair for pair in pairs if pair[0] > now), pairs[0])
    found = {"start_date": start, end_name: end}
    if len(pairs) > 1:
        found["recurrence_pattern"] = "; ".join(f"{shown(a)} / {shown(b)}" for a, b in pairs)
    return found


def common(entry):
    properties = {"title": entry.text("SUMMARY"), CONTENT: entry.content(), "categories": entry.categories(),
                  "last_modified_time": entry.time("LAST-MODIFIED").utc()}
    return {key: value for key, value in properties.items() if value or key == CONTENT}


def calendar(entry, pairs, now):
    properties = common(entry) | times(pairs, "end_date", now)
    if pairs[0][0] != pairs[0][1]:
        properties["duration"] = int((pairs[0][1] - pairs[0][0]).total_seconds())
    if entry.all("ORGANIZER"):
        properties["organizer"] = person(entry.all("ORGANIZER")[0])
    required, optional = entry.people("REQ-PARTICIPANT"), entry.people("OPT-PARTICIPANT")
    if required or optional:  # the comma stays where nobody follows it
        between = ", " if required and optional else "," if required else ""
        properties["attendees"] = required + between + optional
    if entry.text("LOCATION"):
        properties["location"] = entry.text("LOCATION")
    return properties


def state(entry, today):
    start, due = entry.time("DTSTART"), entry.time("DUE")
    if entry.text("STATUS") == "COMPLETED" or entry.text("PERCENT-COMPLETE") == "100" or entry.all("COMPLETED"):
        return "done"
    if entry.text("STATUS") == "CANCELLED":
        return "cancelled"
    if due and due.utc() < today:
        return "overdue"
    return "future" if start and start.utc() > today and entry.text("STATUS") != "IN-PROCESS" else "current"


def task(entry, array, now, today):
    """A task has the dates that the calendar entry indexed before it left in the array, as many as are its own."""
    properties = common(entry) | {"status": STATUS[state(entry, today)]}
    if entry.all("DTSTART") and entry.all("DUE"):
        properties |= times(array[:len(entry.starts(today))], "due_date", now)
    if entry.all("ORGANIZER"):
        properties["owner"] = person(entry.all("ORGANIZER")[0])
    if entry.all("COMPLETED"):
        properties["date_completed"] = entry.time("COMPLETED").utc()
    priority = int(entry.text("PRIORITY") or 0)
    if priority:
        properties["importance"] = 2 if priority < 5 else 1 if priority == 5 else 0
    return properties


def journal(entry):
    time = entry.time("DTSTART") or entry.time("CREATED")
    return common(entry) | {"start_time": time.utc()}


def expected(folder, order, today, now):
    """What is to become of the entries.  order: titles, as their notes are indexed."""
    entries = [entry for path in sorted(folder.glob("*.ics")) for entry in read(path)]
    titles = [entry.text("SUMMARY") for entry in entries]
    assert len(set(titles)) == len(titles), "two entries have one title"
    array = [(datetime.datetime(2001, 1, 1),) * 2] * MOST_OCCURRENCES
    for entry in sorted(entries, key=lambda entry: order.index(entry.text("SUMMARY"))):
        title = entry.text("SUMMARY")
        if entry.kind == "VEVENT":
            length = entry.end("DTEND") - entry.time("DTSTART").utc()
            pairs = [(start, start + length) for start in entry.starts(today)]
            array[:len(pairs)] = pairs
            yield Expected("Calendar", title, calendar(entry, pairs, now), "Appointment")
        elif entry.kind == "VTODO":
            yield Expected("Task", title, task(entry, array, now, today), "Task")
        else:
            yield Expected("Journal", title, journal(entry), "JournalEntry")
