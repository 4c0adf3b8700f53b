#!/usr/bin/env python3
"""Prints what is to become of the cards in files: one JSON object a line, one a card.

    contacts_from_python.py FILE...

Members: items (item name to text, the values of lists joined by "|"), found (texts that the body has to hold).
Reads whole files, by regular expressions: as unlike the importer as can be.
"""

import base64
import json
import quopri
import re
import sys

ADDRESS_ITEMS = ("City", "State", "Zip", "Country")
NUMBERS = [  # the words that must be there, those that must not, the item
    ({"pager", "work"}, set(), "PhoneNumber_6"), ({"pager"}, {"work"}, "PersPager"),
    ({"fax", "work"}, set(), "OfficeFAXPhoneNumber"), ({"fax", "home"}, set(), "HomeFAXPhoneNumber"),
    ({"fax"}, {"home", "work"}, "OfficeFAXPhoneNumber"), ({"cell"}, {"modem", "fax", "pager"}, "CellPhoneNumber"),
    ({"work"}, {"modem", "fax", "pager", "cell"}, "OfficePhoneNumber"),
    ({"home"}, {"modem", "fax", "pager", "cell"}, "PhoneNumber"),
    (set(), {"modem", "fax", "pager", "cell", "home", "work"}, "PhoneNumber"),
]
RELATIONS = {"spouse": "Spouse", "child": "Children", "manager": "Manager", "assistant": "Assistant"}
RELATION_NAMES = re.compile(r"X-(?:EVOLUTION-|KADDRESSBOOK-X-|MS-)?(SPOUSE|MANAGER|ASSISTANT)S?(?:NAME)?$")
ONLINE = re.compile(r"IMPP|X-AIM|X-JABBER|X-ICQ|X-KADDRESSBOOK-X-IMADDRESS")
IGNORED = {"VERSION", "UID", "REV", "KIND", "PHOTO", "LOGO", "X-MOZILLA-HTML", "X-ABLABEL", "BEGIN", "END"}


def text_of(path):
    raw = open(path, "rb").read()
    return raw.decode("utf-16").encode() if raw[:2] in (b"\xff\xfe", b"\xfe\xff") else raw


def cards(raw):
    raw = raw.replace(b"\r\n", b"\n")
    nested = re.compile(rb"AGENT:\nBEGIN:VCARD\n(.*?)END:VCARD\n", re.S)
    raw = nested.sub(lambda m: b"AGENT:" + re.search(rb"^FN:(.*)$", m.group(1), re.M).group(1) + b"\n", raw)
    for card in re.findall(rb"^BEGIN:VCARD\n(.*?)^END:VCARD$", raw, re.S | re.M):
        card = re.sub(rb"\n[ \t]", b"", card)
        while (joined := re.sub(rb"(?m)^([^:\n]*QUOTED-PRINTABLE[^:\n]*:.*)=\n", rb"\1", card)) != card:
            card = joined
        yield [line for line in card.split(b"\n") if re.match(rb"[\w.-]+(;[^:]*|;.*\".*\")?:", line)]


def unescape(text):
    return re.sub(r"\\(.)", lambda m: "\n" if m.group(1) in "nN" else m.group(1), text)


def split(text, separator):
    return [unescape(part).strip() for part in re.split(r"(?<!\\)" + separator, text)]


def read(line):
    """A property: group, name, set of lower-case words, preference, text with its escapes."""
    head, value = re.match(rb'((?:[^":]|"[^"]*")*):(.*)', line, re.S).groups()
    name, *parameters = re.findall(r'(?:[^";]|"[^"]*")+', head.decode("latin-1"))
    words, charset, encoding, preference = set(), "utf-8", "", 101
    for parameter in parameters:
        key, _, said = parameter.rpartition("=")
        said = said.strip('"').lower()
        if key.upper() == "CHARSET":
            charset = said
        elif key.upper() == "ENCODING" or said in ("base64", "quoted-printable"):
            encoding = said
        elif key.upper() == "PREF":
            preference = int(said)
        elif key.upper() in ("TYPE", ""):
            words |= set(said.split(","))
    if encoding == "quoted-printable":
        value = quopri.decodestring(value)
    elif encoding in ("b", "base64"):
        value = base64.b64decode(value) if name not in IGNORED else b""
    try:
        text = value.decode(charset)
    except UnicodeDecodeError:
        text = value.decode("cp1252")
    group, _, name = name.upper().rpartition(".")
    return group, name, words, 1 if "pref" in words else preference, text.replace("\r\n", "\n")


def number_of(text):
    """A number, also of a URI."""
    return re.sub(r"^tel:([^;]*)(?:;ext=(\w+))?.*", lambda m: m[1] + (f" ext. {m[2]}" if m[2] else ""), text)


class Card:
    def __init__(self, lines):
        self.items, self.found = {"Form": "Person"}, []
        properties = [read(line) for line in lines]
        labels = {group: re.sub(r"^_\$!<(.*)>!\$_$", r"\1", text).lower()
                  for group, name, _, _, text in properties if name == "X-ABLABEL"}
        self.open = []
        for group, name, words, preference, text in properties:
            if name in IGNORED or text.startswith(("data:", "urn:uuid:")) or not text.strip(";").strip():
                continue
            label = labels.get(group, "")
            words = words | {"cell" if label == "mobile" else label}
            self.open.append((name, words, preference, text))
        self.extras = 0
        self.fill()

    def take(self, test, wanted=None, all_of=False):
        """The values of a kind that are still open, the preferred one or all of them."""
        fitting = sorted((p for p in self.open if test(p)), key=lambda p: p[2])
        if wanted is not None and wanted in self.items:
            return []
        taken = fitting if all_of else fitting[:1]
        for value in taken:
            self.open.remove(value)
        return taken

    def named(self, *names):
        return lambda p: p[0] in names

    def put(self, item, text):
        if text:
            self.items[item] = text

    def extra(self, label, values):
        if values and self.extras < 3:
            self.extras += 1
            self.items[f"MiscPhone{self.extras}"] = "|".join(values)
            self.items[f"MiscLabel{self.extras}"] = label
        else:
            self.found += values

    def fill(self):
        self.name()
        for name, items in (("TITLE", "JobTitle"), ("ROLE", "JobTitle")):
            for value in self.take(self.named(name), items):
                self.put(items, unescape(value[3]))
        for value in self.take(self.named("X-EVOLUTION-OFFICE", "X-KADDRESSBOOK-X-OFFICE")):
            self.put("Location", unescape(value[3]))
        for value in self.take(self.named("ORG")):
            company, *units = split(value[3], ";")
            self.put("CompanyName", company)
            self.put("Department", ", ".join(units))
        self.addresses()
        for present, absent, item in NUMBERS:
            for value in self.take(lambda p: p[0] == "TEL" and present <= p[1] and not absent & p[1], item):
                self.put(item, number_of(value[3]))
        for item in ("MailAddress", "InternetAddress"):
            for value in self.take(self.named("EMAIL")):
                self.put(item, value[3])
        self.extra("email", [v[3] for v in self.take(self.named("EMAIL"))])
        for value in self.take(lambda p: p[0] == "URL" and "home" not in p[1]):
            self.put("WebSite", unescape(value[3]))
        self.dates()
        self.relations()
        self.put("Categories", "|".join(part for v in self.take(self.named("CATEGORIES"), all_of=True)
                                         for part in split(v[3], ",")))
        self.extra("onlinename", [unescape(v[3]) for v in self.take(lambda p: ONLINE.fullmatch(p[0]), all_of=True)])
        self.extra("nickname", [part for v in self.take(self.named("NICKNAME"), all_of=True)
                                for part in split(v[3], ",")])
        self.extra("homeurl", [unescape(v[3]) for v in self.take(lambda p: p[0] == "URL" and "home" in p[1], all_of=True)])
        self.extra("url", [unescape(v[3]) for v in self.take(self.named("URL"), all_of=True)])
        for value in self.open:
            self.found += [part for part in split(re.sub(r"^mailto:", "", number_of(value[3])), ";") if part]

    def name(self):
        named = [p for p in self.open if p[0] == "N"]
        whole = [p for p in self.open if p[0] == "FN"]
        parts = split(named[0][3], ";") + [""] * 5 if named else [""] * 5
        if whole:
            best = sorted(whole, key=lambda p: p[2])[0]
            self.open.remove(best)
            full = unescape(best[3])
        else:
            full = " ".join(part for part in (parts[3], parts[1], parts[2], parts[0], parts[4]) if part)
        for name in ("ORG", "EMAIL"):
            full = full or next((split(p[3], ";")[0] for p in self.open if p[0] == name), "")
        self.put("FullName", full)
        self.put("LastName", parts[0])
        self.put("FirstName", parts[1])
        if named:
            self.open.remove(named[0])

    def addresses(self):
        for present, absent, prefix in (({"work"}, set(), "Office"), (set(), {"work"}, "")):
            for value in self.take(lambda p: p[0] == "ADR" and present <= p[1] and not absent & p[1]):
                parts = split(value[3], ";") + [""] * 7
                self.put(prefix + "StreetAddress", "\n".join(part for part in parts[:3] if part))
                for item, part in zip(ADDRESS_ITEMS, parts[3:]):
                    self.put(prefix + item, part)

    def dates(self):
        kinds = (("Birthday", self.named("BDAY")),
                 ("Anniversary", lambda p: p[0].endswith("ANNIVERSARY") or p[0] == "X-ABDATE" and "anniversary" in p[1]))
        for item, test in kinds:
            for value in self.take(test):
                day = re.match(r"(\d{4})-?(\d\d)-?(\d\d)(?:T|$)", value[3])
                if day:
                    self.put(item, "-".join(day.groups()))
                else:
                    self.found.append(value[3])

    def relations(self):
        for kind, item in RELATIONS.items():
            def test(p, kind=kind):
                spelt = RELATION_NAMES.match(p[0])
                return (p[0] in ("RELATED", "X-ABRELATEDNAMES") and kind in p[1]
                        or spelt and spelt[1].lower() == kind or p[0] == "AGENT" and kind == "assistant")
            self.put(item, "|".join(unescape(v[3]) for v in self.take(test, all_of=kind == "child")))
        self.found += [line for v in self.take(self.named("NOTE"), all_of=True) for line in unescape(v[3]).strip().split("\n")]


def main():
    for path in sys.argv[1:]:
        for lines in cards(text_of(path)):
            card = Card(lines)
            print(json.dumps({"items": card.items, "found": card.found}))


if __name__ == "__main__":
    main()
