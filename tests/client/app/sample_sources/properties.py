"""The properties of metafiles: as they are, and as they are to be."""

import collections
import dataclasses
import plistlib
import re

URI = "com.quorvex.pavex.uri"
CONTENT = "com.quorvex.pavex.content"
VERSION = "com_quorvex_morvane_pavex_metafile_version"
# What tells the notes of a kind apart.
IDENTITY = collections.defaultdict(lambda: "title", {
    "Discussion": "message_time", "History": "com_quorvex_morvane_pavex_history_content_url"})

# identity: value of the kind's key above.  properties: all but the URL and the version.  form: of the note.
Expected = collections.namedtuple("Expected", "kind identity properties form")


@dataclasses.dataclass
class Between:
    """Any time from one to another, both included."""
    first: object
    last: object

    def __eq__(self, value):
        return self.first <= value <= self.last


@dataclasses.dataclass
class Holding:
    """A text of these and nothing else but labels before them."""
    texts: list

    def __eq__(self, value):
        for text in sorted(self.texts, key=len, reverse=True):
            if text not in value:
                return False
            value = value.replace(text, "", 1)
        return all(re.fullmatch(r"([A-Z][\w ,()-]*:)?[ ,]*", line) for line in value.splitlines())


def lines(text):
    """Text as bodies are exported: without blanks before it, each line ended, a tab as a blank."""
    text = text.lstrip(" \t\r\n").replace("\t", " ")
    return "".join(line + "\r\n" for line in text.removesuffix("\n").split("\n")) if text else ""


def read_metafile(path):
    with open(path, "rb") as file:
        properties = plistlib.load(file)
    replica, unid = properties.pop(URI).removeprefix("Pavex:///").split("//")
    assert path.parent.name == replica and path.stem == unid, f"{path} is not where its URL says"
    assert properties.pop(VERSION) == "1.0.0", f"{path} is of another version"
    return properties


def differences(wanted, properties):
    for key in sorted(wanted.keys() | properties.keys()):
        if key not in wanted:
            yield f"{key}: {properties[key]!r}, expected none"
        elif key not in properties:
            yield f"{key}: none, expected {wanted[key]!r}"
        elif not wanted[key] == properties[key]:
            yield f"{key}: {properties[key]!r}, expected {wanted[key]!r}"
