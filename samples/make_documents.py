#!/usr/bin/env python3
"""Writes a mailing list (list/), bookmark files (bookmarks/), texts (documents/) and documents.md.

All people and events are invented; every address is in example.org, example.com or example.net.
The same bytes come out of every run, so that a change to this file is all that changes the sample.
"""

import base64
import datetime
import html
import pathlib
import shutil

HERE = pathlib.Path(__file__).resolve().parent
WEEKDAYS = "Mon Tue Wed Thu Fri Sat Sun".split()
MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()
BEGIN = datetime.datetime(2023, 5, 1, 7, 0, tzinfo=datetime.timezone.utc)


def write(path, raw):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(raw if isinstance(raw, bytes) else raw.encode())


# ---- the mailing list -------------------------------------------------------------------------

ANN, BO, GRETA = "Ann Lee <ann@example.org>", "Bo Chen <bo@example.org>", "Greta Müller <greta@example.com>"
DARIA, KENJI = "Дарья Соколова <daria@example.net>", "佐藤健二 <kenji@example.org>"

# Number of the posting that is answered (0: none), author, subject, text, charset, how it names what it answers.
POSTINGS = [
    (0, ANN, "Slugs in the lettuce", "They came again last night.\nWhat do you do against them?", "us-ascii", ""),
    (1, BO, "Re: Slugs in the lettuce", "> What do you do against them?\n\nA ring of wood ash.", "us-ascii", "both"),
    (2, GRETA, "Re: Slugs in the lettuce", "Asche hilft nur, solange es trocken ist. Übrigens: Bier geht auch.",
     "iso-8859-1", "both"),
    (3, ANN, "Re: Slugs in the lettuce", "Beer is for gardeners.", "us-ascii", "both"),
    (2, DARIA, "Re: Slugs in the lettuce", "Зола с песком держится дольше.", "koi8-r", "both"),
    (1, KENJI, "Re: Slugs in the lettuce", "夜に手で取ります。", "iso-2022-jp", "reply"),
    (6, BO, "Re: Slugs in the lettuce", "By hand? All of them?", "us-ascii", "reply"),
    (0, GRETA, "Kompost: wie oft umsetzen?", "Alle sechs Wochen, oder reicht zweimal im Jahr?", "utf-8", ""),
    (8, BO, "Re: Kompost: wie oft umsetzen?", "Twice is plenty.", "us-ascii", "both"),
    (9, GRETA, "Re: Kompost: wie oft umsetzen?", "Danke!", "us-ascii", "both"),
    (8, KENJI, "Re: Kompost: wie oft umsetzen?", "月に一度です。", "utf-8", "both"),
    (0, DARIA, "Обмен семенами в субботу", "Приходите к десяти. У меня есть укроп и бархатцы.", "utf-8", ""),
    (12, ANN, "Re: Обмен семенами в субботу", "I bring beans & peas <both>.", "us-ascii", "both"),
    (13, DARIA, "Re: Обмен семенами в субботу", "Отлично!", "utf-8", "both"),
    (14, ANN, "Beans (was: Обмен семенами в субботу)", "Runner beans, to be exact.\n\nFrom my own garden.",
     "us-ascii", "both"),
    (0, KENJI, "苗の写真", "写真はまた明日。", "utf-8", ""),
    (0, "List owner <owner@example.org>", "Rules of this list", "Be kind.\n\n-- \nThe list", "us-ascii", ""),
    (0, ANN, "", "No subject, sorry.", "us-ascii", ""),
    (0, BO, "Re: A posting of last year", "I only now read it.", "us-ascii", "lost"),
    (0, BO, "Re: A long talk of last year", "And this one too.", "us-ascii", "lost twice"),
    (19, GRETA, "Re: A posting of last year", "Besser spät als nie.", "utf-8", "reply"),
    (0, "someone@example.com", "Unsubscribe", "Please.", "us-ascii", ""),
    (22, "List owner <owner@example.org>", "Re: Unsubscribe", "Done.", "us-ascii", "both"),
    (0, GRETA, "Ernte", "Heute die ersten Erdbeeren – 300 g.", "windows-1252", ""),
    (24, KENJI, "Re: Ernte", "🍓", "utf-8", "both"),
    (25, GRETA, "Re: Ernte", "🍓🍓", "utf-8", "both"),
]


def word(text):
    return text if text.isascii() else f"=?utf-8?b?{base64.b64encode(text.encode()).decode()}?="


def author_of(author):
    name, _, address = author.rpartition(" ")
    return f"{word(name)} {address}" if name else address


def identity(number):
    return f"<garden-{number:02}@example.org>"


def ancestors(number):
    answered = POSTINGS[number - 1][0]
    return ancestors(answered) + [identity(answered)] if answered else []


def thread_fields(number, how):
    if how == "lost":
        return ["In-Reply-To: <garden-2022-7@example.org>"]
    if how == "lost twice":
        return ["References: <garden-2022-1@example.org>\n <garden-2022-2@example.org>"]
    fields = [f"In-Reply-To: {ancestors(number)[-1]}"] if how else []
    if how == "both":
        fields.append("References: " + "\n ".join(ancestors(number)))
    return fields


def posting(number, row):
    _, author, subject, text, charset, how = row
    when = BEGIN + datetime.timedelta(hours=5 * number, minutes=7 * number)
    day = f"{WEEKDAYS[when.weekday()]}, {when.day} {MONTHS[when.month - 1]} {when.year} {when:%H:%M:%S} +0000"
    fields = [f"Message-ID: {identity(number)}", f"Date: {day}", f"From: {author_of(author)}",
              "To: gardeners@example.org", *([f"Subject: {word(subject)}"] if subject else []),
              "List-Id: Gardeners <gardeners.example.org>",
              *thread_fields(number, how), "MIME-Version: 1.0", f"Content-Type: text/plain; charset={charset}",
              f"Content-Transfer-Encoding: {'7bit' if charset == 'us-ascii' else '8bit'}"]
    body = "\n".join(">" + line if line.startswith("From ") else line for line in text.split("\n"))
    separator = (f"From list@example.org {WEEKDAYS[when.weekday()]} {MONTHS[when.month - 1]} {when.day:2} "
                 f"{when:%H:%M:%S} {when.year}")
    return f"{separator}\n".encode() + "\n".join(fields).encode() + b"\n\n" + body.encode(charset) + b"\n\n"


# ---- bookmarks --------------------------------------------------------------------------------

REPLICA = "8025749100001A2B"


def note_link(number):
    return f"Pavex:///{REPLICA}//{0x1F2E3D4C5B6A7980 + number:016X}{0x00257291002BF200 + number:016X}"


def bookmark(address, title, added=0, changed=0, tags="", text=""):
    times = (f' ADD_DATE="{added}"' if added else "") + (f' LAST_MODIFIED="{changed}"' if changed else "")
    tags = f' TAGS="{html.escape(tags)}"' if tags else ""
    line = f'<DT><A HREF="{html.escape(address)}"{times}{tags}>{html.escape(title)}</A>'
    return [line] + ([f"<DD>{html.escape(text)}"] if text else [])


def folder(title, *content):
    return [f"<DT><H3>{html.escape(title)}</H3>", "<DL><p>",
            *("    " + line for lines in content for line in lines), "</DL><p>"]


def bookmark_file(*content):
    lines = ["<!DOCTYPE NETSCAPE-Bookmark-file-1>",
             '<META HTTP-EQUIV="Content-Type" CONTENT="text/html; charset=UTF-8">',
             "<TITLE>Bookmarks</TITLE>", "<H1>Bookmarks</H1>", "<DL><p>",
             *("    " + line for lines in content for line in lines), "</DL><p>"]
    return "\n".join(lines) + "\n"


def browser():
    return bookmark_file(
        bookmark("https://garden.example.org/", "Garden society", 1551000000, 1551003600, "garden,plants"),
        folder("Reading",
               bookmark("https://library.example.org/?a=1&b=2", "Library <new>", 1551100000,
                        text="Open until eight.\nClosed on Mondays."),
               folder("日本語", bookmark("https://hanami.example.com/", "花見の名所", 1551200000, 1551300000),
                      bookmark("https://ramen.example.com/", "", 1551200500)),
               bookmark("https://poems.example.net/", "Стихи", 1551400000, text="Каждый день одно.")),
        folder("Empty"),
        bookmark("https://garden.example.org/", "Garden society, once more", 1551500000),
        bookmark("https://maps.example.org/", "خرائط", 1551600000000000))


def visited():
    return bookmark_file(
        folder("Visited notes",
               bookmark(note_link(0), "Minutes of the meeting", 1552000000, 1552000600),
               bookmark(note_link(1), "Besprechung: Übersicht", 1552100000),
               bookmark(note_link(2).replace("Pavex", "pavex") + "/", "議事録", 1552200000, 1552300000, "会議"),
               bookmark(note_link(3).lower().replace("pavex", "Pavex"), "Приказ № 7", 1552400000),
               bookmark(note_link(4), "", 1552500000)),
        bookmark("https://wiki.example.org/", "The team's pages", 1552600000, text="Ask Ann for the password."))


# ---- texts ------------------------------------------------------------------------------------

TEXTS = [
    ("bread.md", "Markdown with a heading", "# Rye bread\n\nMix, wait, bake.\n\n- 500 g of rye\n- 10 g of salt\n"),
    ("garden-plan.md", "Markdown with settings between dashes",
     "---\nauthor: Ann\ntitle: \"The garden in spring\"\ntags: [garden]\n---\n\n# Beds\n\nPeas along the fence.\n"),
    ("notiz.md", "Markdown whose heading comes after a text",
     "Noch ein Entwurf.\n\n## Überschrift des Entwurfs ##\n\nÄpfel und Nüsse.\n"),
    ("plain.md", "Markdown without a heading", "Just a line.\nAnd another one.\n"),
    ("shopping.txt", "a text, its first line is not at its beginning", "\n\n  Shopping list\n\n\tmilk\n\tbread\n"),
    ("brief.txt", "German in windows-1252, CRLF", "Liebe Größe,\r\n\r\nder Käse kostet 3 €.\r\n".encode("cp1252")),
    ("письмо.txt", "Russian, a name that is not ASCII", "Здравствуй, друг!\n\nУ нас уже весна.\n"),
    ("haiku.txt", "Japanese, with a byte order mark", b"\xef\xbb\xbf" + "古池や\n蛙飛びこむ\n水の音\n".encode()),
    ("wide.txt", "Greek in UTF-16", "\ufeffΤο ταξίδι\n\nΑύριο φεύγουμε.\n".encode("utf-16-le")),
    ("archive/قصة.md", "Arabic in a folder within", "# القصة الثالثة\n\nكان يا ما كان.\n"),
]


def page(list_shows):
    rows = [("list/gardeners.mbox", f"a mailing list, to be read with `--as discussion`: {list_shows}"),
            ("bookmarks/browser.html",
             "folders in folders, tags, descriptions, one address twice, a bookmark without a title"),
            ("bookmarks/visited.html",
             "bookmarks that lead to notes, in every way of writing their address, and one that leads to a page"),
            *((f"documents/{name}", shows) for name, shows, _ in TEXTS)]
    return ("# The sample mailing list, bookmarks and texts\n\n"
            "Written by `samples/make_documents.py`; change that, not these files. All people and events are\n"
            "invented, all addresses are in `example.org`, `example.com` and `example.net`.\n\n"
            "| file | shows |\n|---|---|\n" + "".join(f"| {name} | {shows} |\n" for name, shows in rows))


def main():
    for name in ("list", "bookmarks", "documents"):
        if (HERE / name).exists():
            shutil.rmtree(HERE / name)
    write(HERE / "list" / "gardeners.mbox", b"".join(posting(number, row) for number, row in enumerate(POSTINGS, 1)))
    write(HERE / "bookmarks" / "browser.html", browser())
    write(HERE / "bookmarks" / "visited.html", visited())
    for name, _, text in TEXTS:
        write(HERE / "documents" / name, text)
    topics = sum(1 for row in POSTINGS if row[5] == "")
    shows = f"{len(POSTINGS)} postings, {topics} topics, answers to answers, answers to what is lost"
    write(HERE / "documents.md", page(shows))


if __name__ == "__main__":
    main()
