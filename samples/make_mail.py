#!/usr/bin/env python3
"""Writes the sample mailbox (mail/inbox.mbox, mail/maildir/, mail/messages/) and mail.md.

All people, companies and events are invented; every address is in example.org, example.com or example.net.
The same bytes come out of every run, so that a change to this file is all that changes the sample.
"""

import base64
import datetime
import pathlib
import quopri
import shutil
import struct
import zlib

HERE = pathlib.Path(__file__).resolve().parent
MAIL = HERE / "mail"
BASE = datetime.datetime(2024, 3, 4, 8, 0, tzinfo=datetime.timezone.utc)
WEEKDAYS = "Mon Tue Wed Thu Fri Sat Sun".split()
MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()


def mail_date(when, offset=0):
    """The Date field's form, by hand: the process's locale must not change the sample."""
    local = when + datetime.timedelta(minutes=offset)
    sign = "-" if offset < 0 else "+"
    return (f"{WEEKDAYS[local.weekday()]}, {local.day} {MONTHS[local.month - 1]} {local.year} "
            f"{local:%H:%M:%S} {sign}{abs(offset) // 60:02}{abs(offset) % 60:02}")


def from_line(address, when):
    return f"From {address} {WEEKDAYS[when.weekday()]} {MONTHS[when.month - 1]} {when.day:2} {when:%H:%M:%S} {when.year}"


def word(text, charset="utf-8", how="b"):
    """One encoded word, or several of at most 45 bytes cut between characters."""
    pieces, piece = [], ""
    for character in text:
        if len((piece + character).encode(charset)) > (45 if how == "b" else 20):
            pieces.append(piece.encode(charset))
            piece = ""
        piece += character
    pieces.append(piece.encode(charset))

    def one(raw):
        if how == "b":
            return base64.b64encode(raw).decode()
        return "".join(chr(b) if chr(b).isalnum() and b < 128 else "_" if b == 32 else f"={b:02X}" for b in raw)

    return "\n ".join(f"=?{charset}?{how.upper()}?{one(raw)}?=" for raw in pieces)


def base64_lines(raw):
    return base64.encodebytes(raw).decode().strip()


def quoted(text, charset):
    return quopri.encodestring(text.encode(charset)).decode("ascii")


def tiny_png(red, green, blue):
    """A picture of one pixel."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 1, 1, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(bytes([0, red, green, blue]), 9)) + chunk(b"IEND", b""))


class Message:
    """A message as bytes, and what it shows."""

    def __init__(self, shows, headers, body, when, sender):
        self.shows, self.when, self.sender = shows, when, sender
        raw = headers if isinstance(headers, bytes) else headers.encode("utf-8")
        self.raw = raw.rstrip(b"\n") + b"\n\n" + (body if isinstance(body, bytes) else body.encode("utf-8"))
        if not self.raw.endswith(b"\n"):
            self.raw += b"\n"


class Sample:
    def __init__(self):
        self.number = 0
        self.messages = []

    def header(self, sender, to, subject, offset=0, extra="", identity=None):
        self.number += 1
        when = BASE + datetime.timedelta(hours=7 * self.number, minutes=13 * self.number)
        identity = identity or f"sample-{self.number:03}@example.org"
        lines = [f"Message-ID: <{identity}>", f"Date: {mail_date(when, offset)}", f"From: {sender}", f"To: {to}"]
        if subject is not None:
            lines.append(f"Subject: {subject}")
        if extra:
            lines.append(extra.strip("\n"))
        lines.append("MIME-Version: 1.0")
        return when, "\n".join(lines) + "\n"

    def add(self, shows, when, headers, body, sender="sender@example.org"):
        message = Message(shows, headers, body, when, sender)
        self.messages.append(message)
        return message

    def plain(self, shows, sender, to, subject, text, charset="utf-8", encoding="8bit", offset=0, extra="",
              parameters=""):
        when, headers = self.header(sender, to, subject, offset, extra)
        headers += f"Content-Type: text/plain; charset={charset}{parameters}\n"
        headers += f"Content-Transfer-Encoding: {encoding}\n"
        python_name = {"x-sjis": "shift_jis", "gb2312": "gb18030", "ks_c_5601-1987": "cp949",
                       "iso-8859-8-i": "iso-8859-8"}.get(charset, charset)
        if encoding == "base64":
            body = base64_lines(text.encode(python_name))
        elif encoding == "quoted-printable":
            body = quoted(text, python_name)
        else:
            body = text.encode(python_name)
        return self.add(shows, when, headers, body)


# One message a language: name, people, subject, text, charset, transfer encoding, encoded word form.
LANGUAGES = [
    ("German, quoted-printable, Latin-1", "Jürgen Müßig", "Grüße aus dem Schwarzwald",
     "Liebe Anna,\n\nder Zug war pünktlich und das Frühstück köstlich. Übermorgen wandern wir zum Schluchsee.\n\n"
     "Viele Grüße\nJürgen\n", "iso-8859-1", "quoted-printable", "q", 60),
    ("French, 8 bit, Latin-9 with the euro and ligature oe", "Zoé Lefèvre", "Le cœur du marché à 12 €",
     "Bonjour,\n\nle marché de Noël ouvre à huit heures. L'œuf coûte 1 €.\n\nÀ bientôt\nZoé\n",
     "iso-8859-15", "8bit", "q", 60),
    ("Spanish, UTF-8 8 bit", "Íñigo Peña", "¿Mañana a las diez?",
     "¡Hola!\n\n¿Quedamos mañana en la plaza? Traeré el pingüino de peluche para la niña.\n\nUn abrazo\nÍñigo\n",
     "utf-8", "8bit", "b", 60),
    ("Polish, Latin-2", "Łucja Żądło", "Zażółć gęślą jaźń",
     "Cześć,\n\nkolejka do teatru była długa, ale sztuka świetna. Bilety są w załączniku.\n\nŁucja\n",
     "iso-8859-2", "quoted-printable", "q", 60),
    ("Czech, windows-1250", "Růžena Dvořáčková", "Příliš žluťoučký kůň",
     "Dobrý den,\n\nschůzka je přeložena na čtvrtek. Žádné další změny.\n\nRůžena\n",
     "windows-1250", "8bit", "q", 60),
    ("Greek, ISO-8859-7", "Ελένη Παπαδάκη", "Καλημέρα από την Πάτρα",
     "Καλημέρα,\n\nη θάλασσα είναι ήρεμη και ο καφές δυνατός. Τα λέμε αύριο.\n\nΕλένη\n",
     "iso-8859-7", "base64", "b", 120),
    ("Russian, KOI8-R", "Дарья Соколова", "Заметки о поездке в Суздаль",
     "Здравствуйте!\n\nПоезд пришёл вовремя, а музей уже закрыт. Завтра попробуем ещё раз.\n\nДарья\n",
     "koi8-r", "8bit", "b", 180),
    ("Ukrainian, windows-1251", "Їжакевич Ґанна", "Зустріч у п'ятницю",
     "Вітаю!\n\nЗустріч переноситься на п'ятницю, о дев'ятій. Ґудзики вже куплено.\n\nГанна\n",
     "windows-1251", "quoted-printable", "b", 120),
    ("Arabic, right to left, UTF-8 base64", "ليلى حداد", "موعد القراءة يوم الخميس",
     "مرحباً،\n\nنلتقي يوم الخميس في المكتبة لقراءة القصة الثالثة.\n\nليلى\n",
     "utf-8", "base64", "b", 180),
    ("Arabic, windows-1256", "سامر النجار", "الطاولة الجديدة",
     "السلام عليكم،\n\nالطاولة جاهزة ويمكن استلامها غداً.\n\nسامر\n",
     "windows-1256", "base64", "b", 180),
    ("Hebrew, ISO-8859-8-I", "נועה ברק", "שיעור ציור ביום שני",
     "שלום,\n\nשיעור הציור יתקיים ביום שני בשעה שמונה.\n\nנועה\n",
     "iso-8859-8-i", "base64", "b", 120),
    ("Hindi, Devanagari", "मीरा जोशी", "रविवार की चाय",
     "नमस्ते,\n\nरविवार को चार बजे चाय पर मिलते हैं। किताब साथ लाना।\n\nमीरा\n",
     "utf-8", "base64", "b", 330),
    ("Bengali", "অনন্যা সেন", "নৌকা ভ্রমণ",
     "প্রিয় বন্ধু,\n\nআগামী শনিবার নৌকা ভ্রমণে যাব। ছাতা এনো।\n\nঅনন্যা\n",
     "utf-8", "8bit", "b", 360),
    ("Tamil", "கவிதா", "மழைக்காலம்",
     "வணக்கம்,\n\nமழை நின்றதும் தோட்டத்தில் சந்திப்போம்.\n\nகவிதா\n",
     "utf-8", "8bit", "b", 330),
    ("Chinese simplified, GB2312 declared for GB18030 text", "陈晓雨", "周末爬山计划",
     "你好，\n\n周六早上七点在北门集合，带好水和雨衣。朱镕说他也来。\n\n晓雨\n",
     "gb2312", "8bit", "b", 480),
    ("Chinese simplified, UTF-8", "李明远", "图书馆的新书到了",
     "同学们：\n\n新书已经上架，请在三楼借阅。\n\n李明远\n",
     "utf-8", "base64", "b", 480),
    ("Chinese traditional, Big5", "林淑芬", "茶園參觀通知",
     "各位好：\n\n茶園參觀改到星期日下午兩點，請攜帶遮陽帽。\n\n淑芬\n",
     "big5", "base64", "b", 480),
    ("Japanese, ISO-2022-JP in subject and body", "山田花子", "花見のお知らせ",
     "みなさま\n\n土曜日の十時に公園の入口でお会いしましょう。お弁当を忘れずに。\n\n花子\n",
     "iso-2022-jp", "7bit", "b", 540),
    ("Japanese, Shift_JIS under the name x-sjis", "佐藤健一", "写真展のご案内",
     "お世話になっております。\n\n写真展は来週の水曜日からです。\n\n佐藤\n",
     "x-sjis", "base64", "b", 540),
    ("Korean, ks_c_5601-1987 declared for CP949 text", "김하늘", "한강 산책 모임",
     "안녕하세요,\n\n토요일 오후 세 시에 다리 밑에서 만나요. 똠방각하 연극표도 있어요.\n\n하늘\n",
     "ks_c_5601-1987", "base64", "b", 540),
    ("Thai, TIS-620", "สมหญิง ใจดี", "ตลาดน้ำวันเสาร์",
     "สวัสดีค่ะ\n\nวันเสาร์นี้ไปตลาดน้ำด้วยกันนะคะ เจอกันแปดโมงเช้า\n\nสมหญิง\n",
     "tis-620", "base64", "b", 420),
    ("Turkish, ISO-8859-9", "Gülşah Işık", "İzmir'de çay saati",
     "Merhaba,\n\nçayı saat beşte ığdır balıyla içeceğiz. Şemsiyeni unutma.\n\nGülşah\n",
     "iso-8859-9", "quoted-printable", "q", 180),
    ("Vietnamese, UTF-8 quoted-printable", "Nguyễn Thị Ánh", "Phở sáng thứ bảy",
     "Chào bạn,\n\nsáng thứ bảy mình đi ăn phở ở phố cổ nhé. Đừng quên mang ô.\n\nÁnh\n",
     "utf-8", "quoted-printable", "b", 420),
    ("Georgian", "ნინო ბერიძე", "მთის ბილიკი",
     "გამარჯობა,\n\nბილიკი უკვე გაიწმინდა. დილით ვიწყებთ.\n\nნინო\n",
     "utf-8", "8bit", "b", 240),
    ("Hungarian, double acute letters in Latin-2", "Őrsi Tűnde", "Árvíztűrő tükörfúrógép",
     "Kedves Mindenki!\n\nA tükörfúrógép megérkezett, a hűtő viszont késik.\n\nTűnde\n",
     "iso-8859-2", "quoted-printable", "q", 60),
    ("Icelandic, windows-1252", "Þórdís Æsa", "Ferð að fossinum",
     "Sæl,\n\nvið förum að fossinum á þriðjudaginn, ef veðrið leyfir.\n\nÞórdís\n",
     "windows-1252", "8bit", "q", 0),
]
PYTHON_CHARSETS = {"x-sjis": "shift_jis", "gb2312": "gb18030", "ks_c_5601-1987": "cp949", "iso-8859-8-i": "iso-8859-8"}


def add_languages(sample):
    for index, (shows, name, subject, text, charset, encoding, how, offset) in enumerate(LANGUAGES):
        # Headers in the body's charset where encoded words of it are sound everywhere, else in UTF-8.
        header_charset = charset if charset not in PYTHON_CHARSETS and charset not in ("tis-620",) else "utf-8"
        sender = f"{word(name, header_charset, how)} <person{index:02}@example.org>"
        sample.plain(shows, sender, "Anna Reader <anna@example.com>", word(subject, header_charset, how), text,
                     charset, encoding, offset)


def add_thread(sample):
    """A long thread: each answer refers to all before it."""
    people = ["Ann Lee <ann@example.org>", "Ben Okafor <ben@example.com>", "Chloé Martin <chloe@example.net>"]
    references = []
    for turn in range(9):
        who, other = people[turn % 3], people[(turn + 1) % 3]
        extra = ""
        if references:
            extra = f"In-Reply-To: <{references[-1]}>\nReferences: " + "\n ".join(f"<{each}>" for each in references)
        who = who if who.isascii() else f"{word('Chloé Martin', how='q')} <chloe@example.net>"
        other = other if other.isascii() else f"{word('Chloé Martin', how='q')} <chloe@example.net>"
        subject = "Boat house roof" if turn == 0 else "Re: Boat house roof"
        text = f"Turn {turn + 1} of the talk about the boat house.\n"
        if turn:
            text += f"\nOn an earlier day somebody wrote:\n> Turn {turn} of the talk about the boat house.\n"
        references.append(f"sample-{sample.number + 1:03}@example.org")
        sample.plain(f"turn {turn + 1} of a thread of nine", who, other, subject, text, "us-ascii", "7bit", extra=extra)


def add_headers(sample):
    ann = "Ann Lee <ann@example.org>"
    sample.plain("many people: To, Cc, Bcc, Reply-To, a group, an address without a name", ann,
                 "Ben Okafor <ben@example.com>, carol@example.net,\n \"Dee, Dora\" <dora@example.com>",
                 "Who brings what", "Ben: bread. Carol: cheese. Dora: dates.\n", extra=
                 "Cc: Friends: eve@example.org, Finn Hall <finn@example.org>;, gail@example.com\n"
                 "Bcc: hidden@example.org\nReply-To: Picnic List <picnic@example.org>")
    sample.plain("Sender differs from From", "Ivo Chief <ivo@example.com>", ann, "Dictated, not read",
                 "Typed by my assistant.\n", extra="Sender: Jo Typist <jo@example.com>")
    sample.plain("no recipients but an empty group", ann, "undisclosed-recipients:;", "To whom it may concern",
                 "The bridge is closed on Monday.\n")
    sample.plain("old address form: the name is a comment", "kim@example.org (Kim Stone)", "lea@example.org (Lea Wood)",
                 "Comments as names", "This is how it was done once.\n")
    sample.plain("encoded words inside quotes", "\"=?utf-8?B?TcOpbGluYSBSb3V4?=\" <melina@example.net>", ann,
                 "Quoted twice", "Some programs quote what needs no quotes.\n")
    split = "日本語".encode("utf-8")
    first, second = base64.b64encode(split[:4]).decode(), base64.b64encode(split[4:]).decode()
    sample.plain("a character cut in two over adjacent encoded words", ann, "lea@example.org",
                 f"=?utf-8?B?{first}?=\n =?utf-8?B?{second}?=", "The subject is three characters.\n")
    sample.plain("encoded word without its padding", ann, "lea@example.org", "=?utf-8?B?w6TDtsO8w58gdW5k?= mehr",
                 "Base64 without the last equals signs.\n")
    sample.plain("raw UTF-8 in subject and names", "Søren Ærø <soren@example.net>", "Åse Øst <aase@example.net>",
                 "Rå blåbær på fjellet", "Uncoded, as some programs send it.\n")
    when, headers = sample.header(ann, "lea@example.org", "RAWSUBJECT")
    headers = headers.encode().replace(b"RAWSUBJECT", "Café crème".encode("iso-8859-1"))
    headers += b"Content-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: 8bit\n"
    sample.add("raw Latin-1 in the subject", when, headers, "Un café crème, s'il vous plaît.\n".encode("iso-8859-1"))
    sample.plain("emoji in subject, name and text", f"{word('Max 🦊')} <max@example.org>", ann, word("Party 🎉🎂 tonight"),
                 "Bring cake 🍰 and a torch 🔦. Family 👨‍👩‍👧 welcome, flags 🇳🇴 too.\n", encoding="base64")
    sample.plain("a very long folded subject", ann, "lea@example.org",
                 "Minutes of the meeting about the repair of the old mill,\n the new path along the brook,"
                 "\n and the question who keeps the key", "See above.\n")
    sample.plain("no subject at all", ann, "lea@example.org", None, "I forgot the subject.\n")
    sample.plain("empty body", ann, "lea@example.org", "Nothing to add", "")
    sample.plain("an importance and fields nobody knows", ann, "lea@example.org", "Urgent: the kettle boils",
                 "Come quickly.\n", extra="X-Priority: 1\nX-Kettle: boiling\nImportance: high")


def add_dates(sample):
    ann = "Ann Lee <ann@example.org>"

    def dated(shows, date, text, extra=""):
        when, headers = sample.header(ann, "lea@example.org", shows.capitalize())
        lines = [line for line in headers.splitlines() if not line.startswith("Date:")]
        if date is not None:
            lines.insert(1, f"Date: {date}")
        headers = "\n".join(lines) + "\n" + extra + "Content-Type: text/plain; charset=us-ascii\n"
        sample.add(shows, when, headers, text)

    dated("a date with a named zone", "Tue, 12 Mar 2024 09:30:00 EST", "Half past nine in the east.\n")
    dated("a date with a comment and no weekday", "12 Mar 2024 22:05 +0100 (CET)", "Without seconds.\n")
    dated("a date of two digits", "Fri, 05 Mar 99 14:00:00 GMT", "From the last century.\n")
    dated("no date, dated by its delivery", None, "The Received field tells.\n",
          "Received: from a.example.org by b.example.org; Sat, 16 Mar 2024 07:08:09 +0000\n")
    dated("an impossible date, dated by its delivery", "Fri, 32 Foo 2024 99:00:00 +0000", "That day never was.\n",
          "Received: from a.example.org by b.example.org; Sun, 17 Mar 2024 10:11:12 +0200\n")


def multipart(sample, shows, subject, kind, parts, preamble="", extra="", sender="Ann Lee <ann@example.org>"):
    boundary = f"=_sample_{sample.number + 1:03}"
    when, headers = sample.header(sender, "lea@example.org", subject, extra=extra)
    headers += f'Content-Type: multipart/{kind}; boundary="{boundary}"\n'
    body = preamble
    for part in parts:
        body += f"--{boundary}\n{part}\n"
    return sample.add(shows, when, headers, body + f"--{boundary}--\n")


def text_part(text, subtype="plain", charset="utf-8", extra=""):
    return f"Content-Type: text/{subtype}; charset={charset}\nContent-Transfer-Encoding: 8bit\n{extra}\n{text}"


def file_part(raw, media_type, disposition):
    return (f"Content-Type: {media_type}\nContent-Transfer-Encoding: base64\nContent-Disposition: {disposition}\n\n"
            + base64_lines(raw))


HTML_PAGE = """<html><head><title>Not text</title><style>p { color: red }</style>
<script>alert("not text")</script></head><body>
<div style="display:none">Preheader: prices inside</div>
<h1>Spring &amp; summer</h1>
<p>Dear Lea,<br>here are the <b>new</b> <a href="https://shop.example.com/">garden tools</a>:</p>
<table><tr><th>Tool</th><th>Price</th></tr><tr><td>Rake</td><td>12&nbsp;&euro;</td></tr>
<tr><td>Spade</td><td>&#8364;&#x31;9</td></tr></table>
<ul><li>sharp</li><li>light</li></ul><ol><li>order</li><li>dig</li></ol>
<pre>code  keeps
  its  spaces</pre>
<p>Caf&eacute; &lt;open&gt;</p></body></html>
"""


def add_structures(sample):
    when, headers = sample.header("Shop <shop@example.com>", "lea@example.org", "Garden tools")
    sample.add("HTML only: table, lists, entities, preformatted text, hidden preheader", when,
               headers + "Content-Type: text/html; charset=utf-8\n", HTML_PAGE)
    when, headers = sample.header("Shop <shop@example.com>", "lea@example.org", "Charset in meta")
    sample.add("HTML whose charset stands only in its meta element", when, headers + "Content-Type: text/html\n",
               '<html><head><meta http-equiv="Content-Type" content="text/html; charset=windows-1251"></head>'
               "<body><p>Привет из сада</p></body></html>".encode("windows-1251"))
    multipart(sample, "alternative: plain and HTML, the plain one counts", "Two forms of one text", "alternative",
              [text_part("The plain form.\n"), text_part("<p>The <i>HTML</i> form.</p>", "html")])
    multipart(sample, "alternative whose plain part is empty: the HTML one counts", "Only HTML after all", "alternative",
              [text_part(" \n\n"), text_part("<p>All the text is <em>here</em>.</p>", "html")])
    multipart(sample, "related: HTML with its picture", "A picture in the text", "related",
              [text_part('<p>See <img src="cid:pic@example.org" alt="a red dot"> there.</p>', "html"),
               file_part(tiny_png(255, 0, 0), "image/png",
                         'inline; filename="dot.png"').replace("\n\n", "\nContent-ID: <pic@example.org>\n\n", 1)])
    multipart(sample, "mixed: text, attachments with plain, RFC 2231 and RFC 2047 names", "Papers attached", "mixed",
              [text_part("Three papers are attached.\n"),
               file_part(b"a,b\n1,2\n", "text/csv; charset=us-ascii", 'attachment; filename="numbers.csv"'),
               file_part(tiny_png(0, 255, 0), "image/png", "attachment; filename*=utf-8''gr%C3%BCn%20%E2%9C%93.png"),
               file_part(b"%PDF-1.4\n% nothing inside\n", "application/pdf",
                         'attachment; filename="' + word("Übersicht.pdf") + '"')])
    multipart(sample, "mixed: two texts in line around a picture", "Text, picture, text", "mixed",
              [text_part("Before the picture.\n"),
               file_part(tiny_png(0, 0, 255), "image/png", 'inline; filename="blue.png"'),
               text_part("After the picture.\n")], preamble="This is a message in several parts.\n")
    inner = ("From: Quinn Far <quinn@example.net>\nTo: Ann Lee <ann@example.org>\nSubject: " + word("Étoile filante")
             + "\nDate: Mon, 4 Mar 2024 20:00:00 +0000\nMessage-ID: <inner-1@example.net>\nMIME-Version: 1.0\n"
             "Content-Type: text/plain; charset=utf-8\n\nI saw it over the étang.\n")
    multipart(sample, "an attached message: its subject, people and text follow the body", "Fwd: shooting star", "mixed",
              [text_part("What Quinn wrote:\n"), "Content-Type: message/rfc822\n\n" + inner])
    multipart(sample, "alternative inside mixed, with an attachment", "Nested parts", "mixed",
              ['Content-Type: multipart/alternative; boundary="=_inside"\n\n--=_inside\n' +
               text_part("Nested plain text.\n") + "\n--=_inside\n" + text_part("<p>Nested HTML.</p>", "html") +
               "\n--=_inside--\n",
               file_part(b"hello\n", "application/octet-stream", 'attachment; filename="greeting.bin"')])
    sample.plain("format=flowed: lines are joined, quotes keep their depth", "Ann Lee <ann@example.org>",
                 "lea@example.org", "Flowing text",
                 "This paragraph was broken \nby the program and is \none line.\n\n> A quoted one \n> too.\n"
                 " From here it is stuffed.\n-- \nAnn\n", "us-ascii", "7bit", parameters="; format=flowed")
    sample.plain("format=flowed with DelSp: words cut by the line are whole again", "Ann Lee <ann@example.org>",
                 "lea@example.org", "Flowing Japanese", "これは長い \n文です。\n", parameters="; format=flowed; delsp=yes")
    sample.plain("lines that begin with From and with >From", "Ann Lee <ann@example.org>", "lea@example.org",
                 "Quoting in mailboxes", "\nFrom here on it gets steep.\n>From there on it is flat.\n\nFrom me\n",
                 "us-ascii", "7bit")
    when, headers = sample.header("Ann Lee <ann@example.org>", "lea@example.org", "No charset named")
    sample.add("UTF-8 text without any MIME fields", when, headers.replace("MIME-Version: 1.0\n", ""),
               "Smørrebrød without a label.\n")
    sample.plain("UTF-7", "Ann Lee <ann@example.org>", "lea@example.org", "Seven bits",
                 "Dvě žáby & one pond.\n", "utf-7", "7bit")


def write(path, raw):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(raw)


def as_mbox(messages):
    """mboxrd: every line of the body that begins with '>'s and 'From ' gets one '>' more."""
    out = b""
    for message in messages:
        out += from_line(message.sender, message.when).encode() + b"\n"
        for line in message.raw.splitlines(keepends=True):
            out += (b">" if line.lstrip(b">").startswith(b"From ") else b"") + line
        out += b"\n"
    return out


def page(places):
    lines = ["# The sample mailbox", "",
             "Written by `samples/make_mail.py`; change that, not these files. All people and events are invented,",
             "all addresses are in `example.org`, `example.com` and `example.net`.", "",
             "- `mail/inbox.mbox`: a mailbox file (mboxrd)",
             "- `mail/maildir/`: a Maildir; `new` is unread, `cur` says by flags what was read, drafts have the flag D.",
             "  Git keeps no empty folder: `tmp/.gitkeep` is there for its sake and is no message.",
             "- `mail/messages/`: single files, with LF and with CRLF line ends", ""]
    count = sum(len(rows) for rows in places.values())
    lines.append(f"{count} messages:")
    for place, rows in places.items():
        lines += ["", f"## {place}", "", "| message | shows |", "|---|---|"]
        lines += [f"| {name} | {shows} |" for name, shows in rows]
    return "\n".join(lines) + "\n"


def drafts():
    sample = Sample()
    sample.number = 200
    sample.plain("a draft: flag D, never sent", "Anna Reader <anna@example.com>", "Ann Lee <ann@example.org>",
                 "Draft: the answer", "I would like to say that\n", "us-ascii", "7bit")
    sample.plain("a draft in another script", "Anna Reader <anna@example.com>", "person17@example.org",
                 word("花見について"), "まだ書いている途中です。\n", encoding="base64")
    sample.plain("a draft without recipient or text", "Anna Reader <anna@example.com>", "", "Untitled thought", "")
    return sample.messages


def main():
    if MAIL.exists():
        shutil.rmtree(MAIL)
    sample = Sample()
    add_languages(sample)
    add_thread(sample)
    add_headers(sample)
    add_dates(sample)
    add_structures(sample)
    messages = sample.messages
    inbox, maildir, single = messages[:40], messages[40:-8], messages[-8:]
    places = {"inbox.mbox": [], "maildir": [], "messages": []}

    write(MAIL / "inbox.mbox", as_mbox(inbox))
    places["inbox.mbox"] = [(str(number), message.shows) for number, message in enumerate(inbox, 1)]
    for number, message in enumerate(maildir, 1):
        name = f"{int(message.when.timestamp())}.S{number:03}.sample"
        folder, flags = [("cur", ":2,S"), ("cur", ":2,"), ("cur", ":2,RS"), ("new", "")][number % 4]
        write(MAIL / "maildir" / folder / (name + flags), message.raw)
        places["maildir"].append((f"{folder}/{name}{flags}", message.shows))
    for number, message in enumerate(drafts(), 1):
        name = f"{int(message.when.timestamp())}.D{number:03}.sample:2,DS"
        write(MAIL / "maildir" / ".Drafts" / "cur" / name, message.raw)
        places["maildir"].append((f".Drafts/cur/{name}", message.shows))
    for keeper in ("tmp", ".Drafts/new", ".Drafts/tmp"):
        write(MAIL / "maildir" / keeper / ".gitkeep", b"")
    for number, message in enumerate(single, 1):
        crlf = number % 2 == 0
        raw = message.raw.replace(b"\n", b"\r\n") if crlf else message.raw
        write(MAIL / "messages" / f"{number:02}.eml", raw)
        places["messages"].append((f"{number:02}.eml", message.shows + (" (CRLF)" if crlf else "")))
    write(HERE / "mail.md", page(places).encode())


if __name__ == "__main__":
    main()
