#!/usr/bin/env python3
"""Prints what Python's email package reads from mail: one JSON object a line, one a message.

    expected_from_python.py SOURCE...       SOURCE: mbox file, Maildir, message file, or a folder of them

Members: source, index (in an mbox, from 0), message_id, from, sender, to, cc, bcc, reply_to (lists of display
forms, "Ann Lee <ann@example.org>"), subject, date (seconds since 1970, null when there is none to read), draft,
unread, text (the plain texts shown in line, in order), html (true when there is only HTML), html_words (those of its
text and of its pictures), flowed, attachments.
"""

import datetime
import email
import email.header
import email.utils
import html.parser
import json
import os
import pathlib
import re
import sys

FROM_LINE = re.compile(rb"From .*\d{1,2}:\d{2}.*\d{4}")
# Names that mail uses for more than the standard set of that name.
CHARSETS = {"gb2312": "gb18030", "ks_c_5601-1987": "cp949", "x-sjis": "cp932", "shift_jis": "cp932",
            "iso-8859-8-i": "iso-8859-8", "iso-8859-1": "cp1252", "us-ascii": "utf-8", "unknown-8bit": "utf-8"}


def decode(raw, charset):
    """Bytes as text, also where the declared charset is of no use."""
    for candidate in (CHARSETS.get(charset.lower(), charset), "utf-8", "cp1252"):
        try:
            return raw.decode(candidate)
        except (LookupError, UnicodeDecodeError):
            continue
    return raw.decode("cp1252", "replace")


def unfolded(raw):
    return re.sub(r"\s*[\r\n]+\s*", " ", raw).strip()


def decoded(raw):
    """An unfolded header value, encoded words and raw 8-bit text decoded."""
    raw = decode(raw.encode("utf-8", "surrogateescape"), "utf-8")
    text = ""
    for part, charset in email.header.decode_header(raw):
        text += part if isinstance(part, str) else decode(part, charset or "utf-8") if charset else \
            part.decode("raw-unicode-escape")
    return re.sub(r"\s+", " ", text).strip()


def values(message, name):
    return [unfolded(value) for key, value in message.raw_items() if key.lower() == name]


def people(message, name):
    shown = []
    for person, address in email.utils.getaddresses(values(message, name)):
        person, address = decoded(person), decoded(address)
        if person and address and person.lower() != address.lower():
            shown.append(f"{person} <{address}>")
        elif person or address:
            shown.append(address or person)
    return shown


def date_of(message):
    candidates = values(message, "date") + [value.rpartition(";")[2] for value in values(message, "received")]
    for value in candidates:
        parts = email.utils.parsedate_tz(value)
        try:
            if parts is not None:
                return int((datetime.datetime(*parts[:6], tzinfo=datetime.timezone.utc)
                            - datetime.timedelta(seconds=parts[9] or 0)).timestamp())
        except ValueError:
            continue
    return None


def shown_parts(part):
    """The leaves that are shown in line: of alternatives the plain one unless it is empty, else the last."""
    if part.get_content_type() == "message/rfc822":
        return
    if not part.is_multipart():
        if part.get_content_maintype() == "text" and part.get_content_disposition() != "attachment":
            yield part
        return
    children = part.get_payload()
    if part.get_content_subtype() == "alternative":
        choices = [list(shown_parts(child)) for child in children]
        plain = [c for c in choices if len(c) == 1 and c[0].get_content_subtype() == "plain" and text_of(c[0]).strip()]
        rest = [c for c in choices if any(text_of(leaf).strip() for leaf in c)]
        yield from (plain or rest or [[]])[-1]
    elif part.get_content_subtype() == "related":
        yield from shown_parts(children[0])
    else:
        for child in children:
            yield from shown_parts(child)


def text_of(leaf):
    return decode(leaf.get_payload(decode=True) or b"", leaf.get_content_charset() or "utf-8")


class HtmlText(html.parser.HTMLParser):
    SILENT, INLINE = {"title", "style", "script"}, {"a", "b", "em", "i", "span"}

    def __init__(self, leaf):
        super().__init__()
        self.text, self.silent = "", 0
        raw = leaf.get_payload(decode=True)
        said = re.search(rb"charset=([\w-]+)", raw)
        self.feed(decode(raw, said[1].decode() if said else leaf.get_content_charset() or "utf-8"))

    def handle_starttag(self, tag, attributes):
        self.silent += tag in self.SILENT
        self.text += ("" if tag in self.INLINE else " ") + (dict(attributes).get("alt") or "")

    def handle_endtag(self, tag):
        self.silent -= tag in self.SILENT
        self.text += "" if tag in self.INLINE else " "

    def handle_data(self, data):
        self.text += "" if self.silent else data


def file_names(message):
    names = []
    for part in message.walk():
        name = part.get_filename()
        if name:
            names.append(decoded(name))
    return names


def describe(raw, source, index=0, flags=None):
    message = email.message_from_bytes(raw)
    leaves = list(shown_parts(message))
    plain = [leaf for leaf in leaves if leaf.get_content_subtype() == "plain"]
    identity = re.search(r"<([^>]*)>", " ".join(values(message, "message-id")))
    subjects = values(message, "subject")
    return {
        "source": str(source), "index": index,
        "message_id": identity.group(1) if identity else None,
        "from": people(message, "from"), "sender": people(message, "sender"), "to": people(message, "to"),
        "cc": people(message, "cc"), "bcc": people(message, "bcc"), "reply_to": people(message, "reply-to"),
        "subject": decoded(subjects[0]) if subjects else "",
        "date": date_of(message),
        "draft": flags is not None and "D" in flags,
        "unread": None if flags is None else "S" not in flags,
        "text": [text_of(leaf) for leaf in plain],
        "html": not plain and bool(leaves),
        "html_words": [] if plain else [word for leaf in leaves for word in HtmlText(leaf).text.split()],
        "flowed": any(leaf.get_param("format") == "flowed" for leaf in plain),
        "attachments": file_names(message),
    }


def split_mbox(raw):
    """The messages of an mboxrd file, unquoted."""
    message, blank = None, True
    for line in raw.splitlines(keepends=True):
        if blank and FROM_LINE.match(line):
            if message is not None:
                yield b"".join(message)
            message = []
        elif message is not None:
            message.append(line[1:] if re.match(rb">+From ", line) else line)
        blank = not line.strip(b"\r\n")
    if message is not None:
        yield b"".join(message)


def files(source):
    source = pathlib.Path(source)
    if source.is_file():
        yield source
        return
    for folder, folders, names in os.walk(source):
        folders.sort()
        if "cur" in folders or "new" in folders:
            folders[:] = [name for name in folders if name != "tmp"]
        for name in sorted(names):
            if not name.startswith("."):
                yield pathlib.Path(folder) / name


def main():
    for source in sys.argv[1:]:
        for path in files(source):
            raw = path.read_bytes()
            if raw.startswith(b"From "):
                for index, message in enumerate(split_mbox(raw)):
                    print(json.dumps(describe(message, path, index)))
                continue
            flags = None
            if path.parent.name in ("cur", "new"):
                flags = path.name.partition(":2,")[2]
                if "T" in flags:
                    continue
            print(json.dumps(describe(raw, path, 0, flags)))


if __name__ == "__main__":
    main()
