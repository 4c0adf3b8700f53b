#!/usr/bin/env python3
"""Holds metafiles against what Python's email package reads from the mail they were made of.

    compare_with_email.py SPOTLIGHT_FOLDER EXPECTED_FROM_PYTHON SOURCE...

Every message must have one metafile of the kind vPavexMessage with its people, subject, time and text. Prints what
differs and ends with status 1 if anything does.
"""

import datetime
import json
import pathlib
import plistlib
import re
import subprocess
import sys

PEOPLE = {"to": "to", "cc": "cc", "bcc": "bcc", "replyto": "reply_to"}
URI = "com.quorvex.pavex.uri"
CONTENT = "com.quorvex.pavex.content"
LIST_MARK = re.compile(r"-|\d+\.")


def words(text):
    return re.sub(r"\s+", " ", text).strip()


def bare(text):
    return re.sub(r"[\s>]+", "", text)


def people(shown):
    """Display forms, whichever way a list was joined and names were quoted."""
    return [re.sub(r'[\s"\\]+', " ", person).strip() for person in shown]


def from_metafile(path):
    with open(path, "rb") as file:
        properties = plistlib.load(file)
    replica, unid = properties[URI].removeprefix("Pavex:///").split("//")
    assert path.parent.name == replica and path.stem == unid, f"{path} is not where its URL {properties[URI]} says"
    return properties


def time_of(properties):
    return int(properties["received"].replace(tzinfo=datetime.timezone.utc).timestamp())


def differences(expected, properties):
    sender = expected["sender"] if expected["sender"] and expected["sender"] != expected["from"] else expected["from"]
    wanted = {"from": sender, **{key: expected[member] for key, member in PEOPLE.items()}}
    for key, value in wanted.items():
        got = properties.get(key, "")
        if people([got]) != people([", ".join(value)]):
            yield f"{key}: {got!r}, expected {value!r}"
    if words(properties.get("subject", "")) != words(expected["subject"]):
        yield f"subject: {properties.get('subject')!r}, expected {expected['subject']!r}"
    if expected["date"] is not None and time_of(properties) != expected["date"]:
        yield f"received: {properties['received']}, expected {expected['date']}"
    content = words(properties.get(CONTENT, ""))
    if not expected["html"]:
        rest = bare(content)
        for text in expected["text"]:
            if bare(text) not in rest:
                yield f"content: {content[:300]!r}, expected {words(text)[:300]!r}"
            rest = rest.replace(bare(text), "", 1)
        if not rest.startswith("Subject:"[:len(rest)]):  # of an attached message
            yield f"content: {rest[:300]!r} is too much"
    elif (shown := [word for word in content.split() if not LIST_MARK.fullmatch(word)]) != expected["html_words"]:
        yield f"content: {shown!r}, expected {expected['html_words']!r}"


def main():
    root, expected_path, sources = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3:]
    lines = subprocess.run([sys.executable, expected_path, *sources], check=True, capture_output=True).stdout

    metafiles = [from_metafile(path) for path in sorted(root.rglob("*.vPavexMessage"))]
    left = list(metafiles)
    failures = messages = 0
    for expected in map(json.loads, lines.splitlines()):
        messages += 1
        found = [(list(differences(expected, properties)), properties) for properties in left]
        best = min(found, key=lambda pair: len(pair[0]), default=(["no metafile is left"], None))
        if best[0]:
            failures += 1
            print(f"{expected['source']} {expected['index']}:", *best[0], sep="\n    ")
        if best[1] is not None and len(best[0]) < 3:
            left.remove(best[1])
    for properties in left:
        failures += 1
        print(f"a metafile too many: {properties[URI]} {properties.get('subject')!r}")
    print(f"{messages} messages, {len(metafiles)} metafiles, {failures} differences")
    return 1 if failures or not messages else 0


if __name__ == "__main__":
    sys.exit(main())
