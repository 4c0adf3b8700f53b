"""What mailing lists, bookmark files and texts say."""

import datetime
import html.parser
import re

import expected_from_python
from properties import CONTENT, Expected, lines

FORMS = ["MainTopic", "Response", "ResponseToResponse"]


def moment(seconds):
    return datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc).replace(tzinfo=None)


# ---- a mailing list ---------------------------------------------------------------------------

def depth(identity, answered):
    """Postings that lie before one; what the list does not hold answers nothing."""
    before = answered.get(identity, [])
    return max([len(before)] + [1 + depth(other, answered) for other in before[-1:]])


def postings(folder):
    raw = [raw for path in sorted(folder.glob("*.mbox")) for raw in expected_from_python.split_mbox(path.read_bytes())]
    answered = {}
    for message in raw:
        head = message.split(b"\n\n")[0].decode()
        field = {name: re.findall(r"<([^>]+)>", value)
                 for name, value in re.findall(r"^(Message-ID|In-Reply-To|References): (.*(?:\n .*)*)", head, re.M)}
        before = field.get("References", []) + field.get("In-Reply-To", [])
        answered[field["Message-ID"][0]] = list(dict.fromkeys(before))
    for message in raw:
        said = expected_from_python.describe(message, folder)
        properties = {"message_time": moment(said["date"]), "title": said["subject"],
                      "discussion_authors": ", ".join(said["from"]), CONTENT: lines(said["text"][0].strip("\n"))}
        if not properties["title"]:
            del properties["title"]
        form = FORMS[min(depth(said["message_id"], answered), 2)]
        yield Expected("Discussion", properties["message_time"], properties, form)


# ---- bookmarks --------------------------------------------------------------------------------

class Bookmarks(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.found, self.into = [], None

    def handle_starttag(self, tag, attributes):
        self.into = {"a": "title", "dd": "text"}.get(tag)
        if tag == "a":
            self.found.append(dict(attributes) | {"title": "", "text": ""})

    def handle_endtag(self, tag):
        self.into = None

    def handle_data(self, data):
        if self.into:
            self.found[-1][self.into] += data


def seconds_of(bookmark):
    time = max(int(bookmark.get("last_modified", 0)), int(bookmark.get("add_date", 0)))
    while time > 10 ** 11:  # thousandths, or less
        time //= 1000
    return time


def merged(found):
    """The bookmarks of a file, an address once with all that is said of it."""
    by_address = {}
    for bookmark in found:
        address = bookmark["href"]
        mark = by_address.setdefault(address, {"title": bookmark["title"], "texts": [], "time": 0})
        if bookmark["title"] != mark["title"]:
            mark["texts"].append(bookmark["title"])
        if bookmark["text"].strip():
            mark["texts"].append(bookmark["text"].strip())
        mark["time"] = max(mark["time"], seconds_of(bookmark))
    return by_address


def bookmarks(folder):
    seen = set()
    for path in sorted(folder.glob("*.html")):
        reader = Bookmarks()
        reader.feed(path.read_text(encoding="utf-8"))
        for address, mark in merged(reader.found).items():
            if address in seen:
                continue
            seen.add(address)
            properties = {"title": mark["title"] or address, "last_modified_time": moment(mark["time"])}
            link = re.fullmatch(r"pavex:///([0-9a-f]{16})//([0-9a-f]{32})/?", address, re.I)
            if link:
                url = f"Pavex:///{link[1].upper()}//{link[2].upper()}"
                properties["com_quorvex_morvane_pavex_history_content_url"] = url
                yield Expected("History", url, properties, "HistoryListEntry")
            else:
                properties[CONTENT] = lines("\n".join(mark["texts"] + [address]))
                yield Expected("Note", properties["title"], properties, "Bookmark")


# ---- texts ------------------------------------------------------------------------------------

def text_of(path):
    raw = path.read_bytes()
    for charset in ("utf-16", "utf-8-sig", "cp1252"):
        if charset == "utf-16" and raw[:2] not in (b"\xff\xfe", b"\xfe\xff"):
            continue
        try:
            return raw.decode(charset).removeprefix("\ufeff").replace("\r\n", "\n")
        except UnicodeDecodeError:
            pass
    raise AssertionError(path)


def title_of(path, text):
    if path.suffix == ".md":
        settings = re.match(r"---\n.*?^title: \"?(.*?)\"?$.*?^---$", text, re.S | re.M)
        heading = re.search(r"^#+ (.*?)[# ]*$", text, re.M)
        if settings or heading:
            return (settings or heading)[1]
    return text.strip().split("\n")[0].strip()


def documents(folders):
    for path in sorted(path for folder in folders for path in folder.rglob("*")):
        if path.suffix in (".md", ".txt"):
            text = text_of(path)
            properties = {"title": title_of(path, text), CONTENT: lines(text),
                          "last_modified_time": moment(int(path.stat().st_mtime))}
            yield Expected("Note", properties["title"], properties, "Document")
