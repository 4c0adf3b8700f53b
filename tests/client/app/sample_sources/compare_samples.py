#!/usr/bin/env python3
"""Holds every property of the metafiles that were made of the samples against what the samples say.

    compare_samples.py SPOTLIGHT_FOLDER NOTE_LISTS SAMPLES SINCE

NOTE_LISTS holds a file DATABASE.vlt for each database, as "pavex note list --json" printed it. SINCE is the second
since 1970 in which the first import began. Every note must have one metafile, of the kind of its source. Prints what
differs, and ends with status 1 if anything does.
"""

import collections
import itertools
import json
import pathlib
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
READERS = HERE.parent.parent / "import" / "sample_comparison"
sys.path.append(str(READERS))

import calendar_source
import contact_source
import text_sources
from properties import CONTENT, IDENTITY, differences, read_metafile

MAIL_KEYS = {"received", "from", "to", "subject", "cc", "bcc", "replyto", CONTENT}
DATABASES = {"mail": ["Message"], "names": ["Contact"], "calendar": ["Calendar", "Task", "Journal"],
             "documents": ["Discussion", "Note"], "bookmark": ["History"]}


class Comparison:
    def __init__(self, root, lists):
        self.failures, self.compared = 0, collections.Counter()
        self.metafiles = {path.stem: (path.suffix.removeprefix(".vPavex"), read_metafile(path))
                          for path in sorted(root.rglob("*.vPavex*"))}
        self.notes = {}  # id to the note, of each database, in the order in which they are indexed
        for database in DATABASES:
            listed = [json.loads(line) for line in (lists / f"{database}.vlt").read_text().splitlines()]
            self.notes[database] = {note["unid"]: note for note in listed if note["form"]}  # design notes have none
        files = len(list(root.rglob("*.vPavex*")))
        if files != len(self.metafiles):
            self.fail(f"{files} metafiles for {len(self.metafiles)} notes")

    def fail(self, *said):
        self.failures += 1
        print(*said, sep="\n    ")

    def check_places(self):
        """Each note has a metafile of a kind that its database holds, and each metafile a note."""
        for database, kinds in DATABASES.items():
            for unid, note in self.notes[database].items():
                kind, _ = self.metafiles.get(unid, (None, None))
                if kind not in kinds:
                    self.fail(f"{database}: {note} has a metafile of the kind {kind}")
        for unid in self.metafiles.keys() - {unid for notes in self.notes.values() for unid in notes}:
            self.fail(f"metafile without a note: {self.metafiles[unid]}")

    def of_kind(self, kind):
        return {unid: properties for unid, (its, properties) in self.metafiles.items() if its == kind}

    def form(self, unid):
        return next((notes[unid]["form"] for notes in self.notes.values() if unid in notes), None)

    def compare(self, wanted):
        """wanted: what one note is to be, in every way that the time of day may make it."""
        first = wanted[0]
        found = [unid for unid, properties in self.of_kind(first.kind).items()
                 if properties.get(IDENTITY[first.kind]) == first.identity]
        self.compared[first.kind] += 1
        if len(found) != 1:
            self.fail(f"{first.kind} {first.identity!r}: {len(found)} metafiles")
            return
        said = min((list(differences(each.properties, self.metafiles[found[0]][1])) for each in wanted), key=len)
        if self.form(found[0]) != first.form:
            said.append(f"form: {self.form(found[0])!r}, expected {first.form!r}")
        if said:
            self.fail(f"{first.kind} {first.identity!r}:", *said)

    def compare_mail(self, root, samples):
        """The values by another program, the keys here."""
        command = [HERE.parent / "compare_with_email.py", root, READERS / "expected_from_python.py", samples / "mail"]
        run = subprocess.run([sys.executable, *command], capture_output=True, text=True, check=False)
        if run.returncode != 0:
            self.fail("mail:", run.stdout, run.stderr)
        for properties in self.of_kind("Message").values():
            self.compared["Message"] += 1
            empty = [key for key, value in properties.items() if value == "" and key != CONTENT]
            if properties.keys() - MAIL_KEYS or empty:
                self.fail(f"mail with a property too many: {properties}")


def main():
    root, lists, samples = map(pathlib.Path, sys.argv[1:4])
    since, until = (text_sources.moment(seconds) for seconds in (int(sys.argv[4]), int(time.time()) + 1))
    comparison = Comparison(root, lists)
    comparison.check_places()

    order = [comparison.metafiles[unid][1].get("title") for unid in comparison.notes["calendar"]
             if unid in comparison.metafiles]
    moments = [(today.replace(hour=0, minute=0, second=0), now)
               for today, now in itertools.product((since, until), repeat=2)]
    wanted = list(zip(*(calendar_source.expected(samples / "calendar", order, *pair) for pair in moments)))
    wanted += [(each,) for each in itertools.chain(
        contact_source.expected(samples / "contacts", since, until), text_sources.postings(samples / "list"),
        text_sources.bookmarks(samples / "bookmarks"),
        text_sources.documents([samples / "documents", samples / "contacts"]))]
    for each in wanted:
        comparison.compare(each)
    comparison.compare_mail(root, samples)
    for kind, count in comparison.compared.items():
        if count != len(comparison.of_kind(kind)):
            comparison.fail(f"{count} of the kind {kind} in the samples, {len(comparison.of_kind(kind))} metafiles")
    print(dict(comparison.compared), f"{comparison.failures} differences")
    return 1 if comparison.failures or len(comparison.compared) != 8 else 0


if __name__ == "__main__":
    sys.exit(main())
