#!/usr/bin/env python3
"""Asks pavex search for what the sample notes hold and holds its answers against the metafiles, read here.

    check_search.py PAVEX HOME QUERIES FIELDS

QUERIES has a line for each query, see its head; FIELDS is the search engine's list of fields. Beside the queries every
property of every kind of note is looked for, by its field and, where it is text, without one. What a word is and which
notes hold it is decided here, from nothing but the metafiles. Prints each answer that is not exactly the expected one,
and ends with status 1 if there is any.
"""

import collections
import datetime
import json
import pathlib
import plistlib
import re
import shlex
import subprocess
import sys
import unicodedata

KINDS = {"Message": "mail", "Calendar": "calendar", "Task": "task", "Contact": "contact", "Journal": "journal",
         "Discussion": "discussion", "History": "history", "Note": "note"}
PREFIXES = ("com_quorvex_morvane_pavex_", "com.quorvex.pavex.")
URI, VERSION, CONTENT = "com.quorvex.pavex.uri", PREFIXES[0] + "metafile_version", "com.quorvex.pavex.content"
# Found by their fields only: addresses of notes, and times that are written as text.
FIELD_ONLY = {URI, PREFIXES[0] + "history_content_url", "recurrence_pattern"}
DATES = ("received", "message_time", "due_date", "start_date", "start_time", "last_modified_time")
PEOPLE = {"author": ("from", "discussion_authors", "organizer", "owner", PREFIXES[0] + "display_name"),
          "recipient": ("to", "attendees", "cc", "bcc")}
SHARED = {"title": ("title", "subject"), "keywords": ("categories",), **PEOPLE}
OTHER_NAMES = {"from": "author", "to": "recipient", "subject": "title", "category": "keywords", "place": "location",
               "start": "startdate", "end": "enddate", "due": "duedate", "company": "companyname", "job": "jobtitle",
               "children": "childrennames", "manager": "managername", "anniversary": "weddinganniversary",
               "office": "businessaddress"}
OPTIONS = ("--kind", "--from", "--after", "--before")
MARKER = "xqzTorvikLeadingMarkervqjx"
# Letters that are typed in more than one way, but have no accent that Unicode could take off.
LETTERS = {"œ": "oe", "æ": "ae", "ø": "o", "ł": "l", "đ": "d", "ı": "i"}
CJK = "\u1100-\u11ff\u3040-\u30ff\u3130-\u318f\u3400-\u9fff\uac00-\ud7af\uf900-\ufaff\uff66-\uff9f"
WORD = re.compile(rf"[{CJK}]|[^\W_{CJK}]+|[\U0001f300-\U0001faff]")


def words(text):
    """What stands in a text, without case and accents; each sign of a script that writes no blanks is one word."""
    composed = unicodedata.normalize("NFC", text)
    bare = []
    for sign in composed:
        if re.match(f"[{CJK}]", sign):
            bare.append(unicodedata.normalize("NFKC", sign))
            continue
        parts = "".join(LETTERS.get(each, each) for each in unicodedata.normalize("NFKD", sign).casefold())
        bare.append("".join(each for each in unicodedata.normalize("NFKD", parts)
                            if unicodedata.category(each) not in ("Mn", "Cf")))
    return WORD.findall("".join(bare))


def holds(text, wanted, forms):
    """wanted: the words of one clause, which must stand together; the last may end with an asterisk."""
    there = words(text)
    parts = words(wanted)

    def fits(word, part, is_last):
        return word in forms.get(part, [part]) or (is_last and wanted.endswith("*") and word.startswith(part))

    return any(all(fits(there[at + i], part, i == len(parts) - 1) for i, part in enumerate(parts))
               for at in range(len(there) - len(parts) + 1))


def field_of(key):
    for prefix in PREFIXES:
        key = key.removeprefix(prefix)
    return re.sub("[^a-z]", "", key)


def as_text(value):
    return value.strftime("%Y-%m-%d %H:%M:%S") if isinstance(value, datetime.datetime) else str(value)


class Note:
    def __init__(self, path):
        self.kind = KINDS[path.suffix.removeprefix(".vPavex")]
        self.properties = plistlib.loads(path.read_bytes())
        self.properties.pop(VERSION)
        self.url = self.properties[URI]
        self.properties[CONTENT] = self.properties.get(CONTENT, "").split(MARKER)[0]
        self.date = next((self.properties[key] for key in DATES if key in self.properties), None)

    def texts(self, field):
        """Of a field; of None those that are found without one."""
        for key, value in self.properties.items():
            if field is None and isinstance(value, str) and key not in FIELD_ONLY:
                yield value
            elif field is not None and (field == field_of(key) or key in SHARED.get(field, ())):
                yield as_text(value)
            elif ((field == "phone" and ("_phone" in key or "_pager" in key)) or (field == "fax" and "_fax" in key) or
                  (field == "address" and ("s_address" in key or "home_address" in key))):
                yield as_text(value)

    def has(self, clause, fields, forms):
        name, colon, rest = clause.partition(":")
        field = OTHER_NAMES.get(name.lower(), name.lower())
        if colon and field in fields:
            return any(holds(text, rest, forms) for text in self.texts(field))
        return any(holds(text, clause, forms) for text in self.texts(None))


def moment(text):
    if "T" in text:
        return datetime.datetime.fromisoformat(text.replace("Z", "+00:00")).replace(tzinfo=None)
    return datetime.datetime.fromisoformat(text)  # the home's time zone is GMT


class Search:
    def __init__(self, pavex, home, fields):
        self.command = [pavex, "--home", home, "search", "--json", "--limit", "1000"]
        self.notes = [Note(path) for path in pathlib.Path(home, "caches").rglob("*.vPavex*")]
        listed = re.findall(r"^(\w+) = XY", pathlib.Path(fields).read_text(), re.MULTILINE)
        self.fields = {*listed, *SHARED}
        self.asked = self.failures = 0

    def expected(self, arguments, forms):
        listed = self.options(arguments)
        options = dict(zip(listed[::2], listed[1::2]))
        clauses = arguments[len(listed):]
        clauses += [f"author:{word}" for word in options.get("--from", "").split()]
        return {note.url for note in self.notes
                if options.get("--kind", note.kind) == note.kind
                and ("--after" not in options or note.date >= moment(options["--after"]))
                and ("--before" not in options or note.date < moment(options["--before"]))
                and all(note.has(clause, self.fields, forms) for clause in clauses)}

    def shows_hit(self, line, clauses):
        """Words that are looked for everywhere are marked in the snippet, where the note's text has them."""
        note = next(note for note in self.notes if note.url == line["url"])
        free = [clause for clause in clauses if not self.names_a_field(clause)]
        return bool(line["hits"]) or not any(holds(note.properties[CONTENT], clause, {}) for clause in free)

    @staticmethod
    def options(arguments):
        """They stand first, each with its value."""
        count = next((at for at in range(0, len(arguments), 2) if arguments[at] not in OPTIONS), len(arguments))
        return arguments[:count]

    def ask(self, language, arguments, forms, fewest=0):
        options = self.options(arguments)
        run = subprocess.run([*self.command, *options, "--", *arguments[len(options):]], capture_output=True, text=True, check=False,
                             env={"PATH": "/usr/bin:/bin", "LC_ALL": language, "TZ": "UTC"})
        lines = [json.loads(line) for line in run.stdout.splitlines()]
        found, wanted = {line["url"] for line in lines}, self.expected(arguments, forms)
        self.asked += 1
        unmarked = [line for line in lines if not self.shows_hit(line, arguments[len(options):])]
        if (run.returncode == 0 and found == wanted and len(found) == len(lines) and len(found) >= fewest
                and not unmarked):
            return
        self.failures += 1
        titles = {note.url: note.kind + " " + note.properties.get("title", note.properties.get("subject", ""))
                  for note in self.notes}
        print(f"{language} {arguments}: status {run.returncode}, {len(found)} found, {len(wanted)} expected,"
              f" at least {fewest} of them {run.stderr}")
        for line in unmarked:
            print("    no hit is marked:", line["title"], "|", line["snippet"])
        for url in found - wanted:
            print("    not expected:", titles.get(url, url))
        for url in wanted - found:
            print("    not found:", titles[url])

    def names_a_field(self, text):
        """A text that begins so is no words to look for everywhere."""
        name, colon, _ = text.partition(":")
        return bool(colon) and name.lower() in {*self.fields, *OTHER_NAMES}

    def ask_for_each_property(self):
        """The first words of one value of each property of each kind, in every home the same."""
        seen = collections.Counter()
        for note in sorted(self.notes, key=lambda note: (note.kind, note.properties[CONTENT], str(note.date))):
            for key, value in note.properties.items():
                first = " ".join(as_text(value).split()[:3])
                if not words(first) or seen[(note.kind, key)]:
                    continue
                seen[(note.kind, key)] += 1
                if field_of(key) not in {*self.fields, *OTHER_NAMES, "content", "categories", "discussionauthors"}:
                    self.failures += 1
                    print(f"{note.kind}: the property {key} is no field")
                elif key != CONTENT:
                    field = {"categories": "keywords", "discussionauthors": "author"}.get(field_of(key), field_of(key))
                    self.ask("ja", [f"{field}:{first}"], {}, fewest=1)
                if isinstance(value, str) and key not in FIELD_ONLY and not self.names_a_field(first):
                    self.ask("ja", [first], {}, fewest=1)
        kinds = {kind for kind, _ in seen}
        if kinds != set(KINDS.values()):
            self.failures += 1
            print("kinds of note:", kinds)
        return len(seen)


def main():
    pavex, home, queries, fields = sys.argv[1:5]
    search = Search(pavex, home, fields)
    for line in pathlib.Path(queries).read_text().splitlines():
        if not line or line.startswith("#"):
            continue
        language, fewest, arguments, *forms = (part.strip() for part in line.split("|"))
        alike = {each.split()[0]: each.split() for each in forms}
        search.ask(language, shlex.split(arguments), alike, int(fewest))
    queried = search.asked
    properties = search.ask_for_each_property()
    print(f"{queried} queries, {properties} properties of {len(search.notes)} notes, {search.failures} failures")
    return 1 if search.failures or queried < 100 else 0


if __name__ == "__main__":
    sys.exit(main())
