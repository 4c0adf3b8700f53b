#!/usr/bin/env python3
"""Writes the sample contacts (contacts/*.vcf) and contacts/README.md.

All people and companies are invented; every address is in example.org, example.com or example.net.
The same bytes come out of every run, so that a change to this file is all that changes the sample.
"""

import base64
import pathlib

from content_lines import escaped, folded

HERE = pathlib.Path(__file__).resolve().parent
CONTACTS = HERE / "contacts"
PIXEL = base64.b64encode(bytes(range(1, 241))).decode()  # stands for a picture: any bytes do


def quoted(text, charset):
    """Quoted-printable with soft line breaks, as version 2.1 has them."""
    codes = []
    for byte in text.encode(charset):
        plain = 32 <= byte < 127 and byte != ord("=")
        codes.append(chr(byte) if plain else f"={byte:02X}")
    lines, line = [], ""
    for code in codes:
        if len(line) + len(code) > 60:
            lines.append(line + "=")
            line = ""
        line += code
    return "\r\n".join(lines + [line])


class Book:
    """A file of cards."""

    def __init__(self, name, version, about):
        self.name, self.version, self.about = name, version, about
        self.raw, self.shows = b"", []

    def card(self, shows, *lines, uid=None, rev=None):
        """lines: content lines as text, folded here; bytes are written as they are."""
        self.shows.append(shows)
        lines = list(lines)
        if uid:
            lines.append(f"UID:{uid}")
        if rev:
            lines.append(f"REV:{rev}")
        self.raw += f"BEGIN:VCARD\r\nVERSION:{self.version}\r\n".encode()
        for line in lines:
            self.raw += line if isinstance(line, bytes) else folded(line)
        self.raw += b"END:VCARD\r\n"


def qp_line(head, text, charset):
    """A quoted-printable line of version 2.1."""
    return f"{head};CHARSET={charset};ENCODING=QUOTED-PRINTABLE:{quoted(text, charset)}\r\n".encode()


def old():
    book = Book("old.vcf", "2.1", "version 2.1, as telephones and older programs write it")
    people = [
        ("German, ISO-8859-1", "ISO-8859-1", "Müßig", "Jürgen", "Grüße aus dem Schwarzwald", "Hauptstraße 5", "Freiburg"),
        ("Polish, ISO-8859-2", "ISO-8859-2", "Żądło", "Łucja", "Zażółć gęślą jaźń", "ulica Długa 7", "Łódź"),
        ("Russian, KOI8-R", "KOI8-R", "Соколова", "Дарья", "Записки о поездке", "улица Садовая 3", "Суздаль"),
        ("Greek, ISO-8859-7", "ISO-8859-7", "Παπαδάκη", "Ελένη", "Καλημέρα από την Πάτρα", "Οδός Ερμού 9", "Πάτρα"),
        ("Japanese, Shift_JIS", "SHIFT_JIS", "表", "能子", "会議は十時です", "本町一丁目", "東京"),
        ("Chinese, GB2312", "GB2312", "王", "小明", "春天来了", "中山路十号", "广州"),
    ]
    for number, (shows, charset, family, given, note, street, city) in enumerate(people):
        book.card(shows + ", quoted-printable with soft line breaks",
                  qp_line("N", f"{family};{given};;;", charset), qp_line("FN", f"{given} {family}", charset),
                  f"TEL;WORK;VOICE:+49 555 010{number}", f"TEL;CELL:+49 555 020{number}",
                  qp_line("ADR;HOME", f";;{street};{city};;1234{number};", charset),
                  qp_line("NOTE", f"{note}\r\n{note}!", charset),
                  f"EMAIL;PREF;INTERNET:person{number}@example.org", "BDAY:19700102")
    book.card("raw bytes of windows-1252 without a declared charset",
              "FN:Zoé Lefèvre\r\n".encode("cp1252"), "N:Lefèvre;Zoé\r\n".encode("cp1252"),
              "TEL;HOME;FAX:+33 555 0107")
    book.card("a picture between other lines, and one whose lines are not indented",
              "N:Stone;Peter", "FN:Peter Stone",
              b"PHOTO;JPEG;ENCODING=BASE64:\r\n" + b"".join(b" " + PIXEL[i:i + 70].encode() + b"\r\n"
                                                           for i in range(0, len(PIXEL), 70)) + b"\r\n",
              "TEL;PAGER:+1 555 0108",
              b"LOGO;BASE64:\r\n" + PIXEL.encode() + b"\r\n\r\n", "TEL;WORK;PAGER:+1 555 0109")
    book.card("a card within the card: the assistant's",
              "FN:Carla Boss", "N:Boss;Carla",
              b"AGENT:\r\nBEGIN:VCARD\r\nVERSION:2.1\r\nFN:Tim Helper\r\nN:Helper;Tim\r\nTEL:+1 555 0110\r\nEND:VCARD\r\n",
              "ORG:Northwind Bakery;Front office", "TITLE:Director", "ROLE:Decides")
    book.card("no FN: the name comes from its parts", "N:Okafor;Chidi;Emeka;Dr.;PhD", "TEL:+234 555 0111",
              "X-MS-SPOUSE:Ngozi", "X-MS-MANAGER:Ada Obi", "X-MS-ANNIVERSARY:20010203")
    return book


def usual():
    book = Book("usual.vcf", "3.0", "version 3.0, as most programs write it")
    people = [
        ("Spanish", "Peña", "Íñigo", "Calle Mayor 1", "Alcalá"),
        ("Czech", "Dvořáčková", "Růžena", "Náměstí 2", "Plzeň"),
        ("Ukrainian", "Шевчук", "Олена", "вулиця Зелена 4", "Львів"),
        ("Arabic, right to left", "الحداد", "ليلى", "شارع النيل ٥", "القاهرة"),
        ("Hebrew, right to left", "לוי", "דוד", "רחוב הרצל 6", "חיפה"),
        ("Hindi", "शर्मा", "अनिता", "गांधी मार्ग ७", "दिल्ली"),
        ("Thai", "ใจดี", "สมชาย", "ถนนสุขุมวิท 8", "กรุงเทพฯ"),
        ("Korean", "김", "민수", "세종대로 9", "서울"),
        ("Vietnamese", "Nguyễn", "Thị Hạnh", "Phố Huế 10", "Hà Nội"),
        ("a family name beyond the first 65,536 characters", "𠮷田", "花子", "港町 11", "横浜"),
    ]
    for number, (shows, family, given, street, city) in enumerate(people):
        place = ("work", "home")[number % 2]
        book.card(f"{shows}; {place} address and number, a UID and a time of change",
                  f"N:{family};{given};;;", f"FN:{given} {family}", f"TEL;TYPE={place},voice:+34 555 030{number}",
                  f"ADR;TYPE={place}:;;{escaped(street)};{city};;5432{number};",
                  f"EMAIL;TYPE=internet,{place}:person3{number}@example.com",
                  f"NOTE:{escaped(street)}\\n{given}\\, {family}\\; {city} " + "und so weiter " * 8,
                  uid=f"usual-{number}@example.org", rev=f"2024-03-0{number % 9 + 1}T10:00:00+01:00")
    book.card("seven e-mail addresses, the third preferred", "N:Many;Mia", "FN:Mia Many",
              *(f"EMAIL;TYPE=internet{',pref' if i == 2 else ''}:mia{i}@example.net" for i in range(7)))
    book.card("more extra values than a contact has fields for", "N:Rich;Rory", "FN:Rory Rich", "NICKNAME:Ro,Ror",
              "X-AIM:rory-aim", "X-JABBER:rory@example.org", "X-ICQ:1234567", "URL;TYPE=home:http\\://home.example.org/",
              "URL;TYPE=work:http\\://work.example.org/", "URL:http\\://more.example.org/",
              "EMAIL:r1@example.org", "EMAIL:r2@example.org", "EMAIL:r3@example.org")
    book.card("several numbers of a kind", "N:Ring;Bella", "FN:Bella Ring", "TEL;TYPE=home:1001", "TEL;TYPE=home,pref:1002",
              "TEL;TYPE=work:1003", "TEL;TYPE=work,fax:1004", "TEL;TYPE=home;TYPE=fax:1005", "TEL;TYPE=CELL:1006",
              "TEL;TYPE=cell,pref:1007", "TEL;TYPE=pager:1008", "TEL;TYPE=work,modem:1009", "TEL:1010")
    book.card("relations by groups and labels", "N:Kin;Kim", "FN:Kim Kin", "item1.X-ABRELATEDNAMES;type=pref:Jo Kin",
              "item1.X-ABLabel:_$!<Spouse>!$_", "item2.X-ABRELATEDNAMES:Al Kin", "item2.X-ABLabel:_$!<Child>!$_",
              "item3.X-ABRELATEDNAMES:Bo Kin", "item3.X-ABLabel:_$!<Child>!$_", "item4.X-ABRELATEDNAMES:Cy Kin",
              "item4.X-ABLabel:_$!<Brother>!$_", "item5.X-ABDATE:1999-12-31", "item5.X-ABLabel:_$!<Anniversary>!$_",
              "item6.TEL:2001", "item6.X-ABLabel:_$!<Mobile>!$_", "item7.TEL:2002", "item7.X-ABLabel:Boat")
    book.card("relations as one desktop writes them", "N:Wood;Eve", "FN:Eve Wood", "X-EVOLUTION-SPOUSE:Sam Wood",
              "X-EVOLUTION-MANAGER:Max Chief", "X-EVOLUTION-ASSISTANT:Ina Help", "X-EVOLUTION-ANNIVERSARY:2005-06-07",
              "X-EVOLUTION-OFFICE:Room 3.12")
    book.card("relations as another desktop writes them", "N:Berg;Kai", "FN:Kai Berg",
              "X-KADDRESSBOOK-X-SpousesName:Ute Berg", "X-KADDRESSBOOK-X-ManagersName:Rolf Boss",
              "X-KADDRESSBOOK-X-AssistantsName:Lea Hand", "X-KADDRESSBOOK-X-Anniversary:2006-07-08",
              "X-KADDRESSBOOK-X-Office:B 12", "X-KADDRESSBOOK-X-IMAddress:kai@example.org")
    book.card("a company without a person", "FN:", "ORG:Harbour Tools\\, Ltd.;Sales;Export", "TEL;TYPE=work:3001",
              "CATEGORIES:suppliers,tools\\, heavy")
    book.card("nothing but an address", "EMAIL:lonely@example.org")
    return book


def new():
    book = Book("new.vcf", "4.0", "version 4.0")
    book.card("URIs for numbers, preferences in numbers", "FN:Simone Perrin", "N:Perrin;Simone;;;",
              'TEL;VALUE=uri;TYPE="voice,work";PREF=2:tel:+1-555-4001;ext=102',
              'TEL;VALUE=uri;TYPE="voice,work";PREF=1:tel:+1-555-4002', "TEL;VALUE=uri;TYPE=cell:tel:+1-555-4003",
              "EMAIL;PREF=50:second@example.org", "EMAIL;PREF=1:first@example.org", "IMPP:xmpp:simone@example.org",
              uid="urn:uuid:4fbe8971-0bc3-424c-9c26-36c3e1eff6b1", rev="20240102T030405Z")
    book.card("dates of every kind", "FN:Dina Datum", "N:Datum;Dina;;;", "BDAY:19531015T231000Z",
              "ANNIVERSARY:20090808T1430-0500")
    book.card("a birthday without its year", "FN:Leap Day", "N:Day;Leap;;;", "BDAY:--0229", "ANNIVERSARY:1985-04")
    book.card("a birthday in words", "FN:Old Timer", "N:Timer;Old;;;", "BDAY;VALUE=text:circa 1800")
    book.card("relations", "FN:Rita Relat", "N:Relat;Rita;;;", "RELATED;TYPE=spouse;VALUE=text:Hans Relat",
              "RELATED;TYPE=child;VALUE=text:Eins Relat", "RELATED;TYPE=child;VALUE=text:Zwei Relat",
              "RELATED;TYPE=friend:urn:uuid:f81d4fae-7dec-11d0-a765-00a0c91e6bf6",
              "RELATED;TYPE=neighbor;VALUE=text:Nora Nebenan")
    book.card("a name in two writings", "FN;ALTID=1;LANGUAGE=ja:山田太郎", "FN;ALTID=1;LANGUAGE=en;PREF=2:Taro Yamada",
              "N;ALTID=1;LANGUAGE=ja:山田;太郎;;;", "N;ALTID=1;LANGUAGE=en:Yamada;Taro;;;")
    book.card("pictures as URIs, a label with separators in quotes", "FN:Paula Bild", "N:Bild;Paula;;;",
              f"PHOTO:data:image/png;base64,{PIXEL}", f"X-ICON:data:image/png;base64,{PIXEL}",
              'ADR;LABEL="Mill Lane 1; rear: left";TYPE=work:Box 12;Floor 2;Mill Lane 1;Brookfield;Kent;AB1 2CD;England')
    book.card("gender, languages and pages", "FN:Gio Lingua", "N:Lingua;Gio;;;", "GENDER:O;it's complicated",
              "LANG;PREF=1:it", "URL:https://gio.example.org/", "URL;TYPE=home:https://home.example.org/~gio",
              "NICKNAME:Gì", "TITLE:Interprete", "ROLE:Traduttore", "ORG:Ponte;Lingue")
    book.card("a group", "KIND:group", "FN:The Choir", "MEMBER:urn:uuid:03a0e51f-d1aa-4385-8a53-e29025acd8af",
              "MEMBER:mailto:tenor@example.org", "CATEGORIES:music")
    book.card("properties that nobody knows", "FN:Xaver Extra", "N:Extra;Xaver;;;", "X-SHOE-SIZE:44",
              "X-MOZILLA-HTML:FALSE", "HOBBY;LEVEL=high:sailing")
    return book


def wide(book):
    """The file as UTF-16, which one mail program exports."""
    return "\ufeff".encode("utf-16-le") + book.raw.decode().encode("utf-16-le")


def wide_book():
    book = Book("wide.vcf", "3.0", "version 3.0 in UTF-16 with a byte order mark")
    book.card("Georgian", "N:ბერიძე;ნინო;;;", "FN:ნინო ბერიძე", "NOTE:თბილისი 𝄞")
    book.card("Armenian", "N:Սարգսյան;Անի;;;", "FN:Անի Սարգսյան", "TEL;TYPE=cell:5001")
    return book


README = """# The sample contacts

Written by `samples/make_contacts.py`; change that, not these files. All people and companies are invented,
all addresses are in `example.org`, `example.com` and `example.net`.

{count} contacts:
"""


def main():
    CONTACTS.mkdir(exist_ok=True)
    books = [old(), usual(), new(), wide_book()]
    text = README.format(count=sum(len(book.shows) for book in books))
    for book in books:
        (CONTACTS / book.name).write_bytes(wide(book) if book.name == "wide.vcf" else book.raw)
        text += f"\n## {book.name}\n\n{book.about[0].upper() + book.about[1:]}.\n\n| card | shows |\n|---|---|\n"
        text += "".join(f"| {number} | {shows} |\n" for number, shows in enumerate(book.shows, 1))
    (CONTACTS / "README.md").write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
