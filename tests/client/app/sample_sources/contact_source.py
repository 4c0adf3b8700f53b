"""What vCards say, as the items that a reader in Python makes of them, and what is to become of the items."""

import datetime
import re

import contacts_from_python
from properties import CONTENT, Between, Expected, Holding

# Property (after its prefix) and items; the first item that has text counts.
TEXTS = {"business_phone": ["OfficePhoneNumber"], "company_phone": ["OfficePhoneNumber"],
         "mobile_phone": ["CellPhoneNumber", "PersPager"], "pager": ["PhoneNumber_6", "PersPager"],
         "home_phone": ["PhoneNumber"], "business_fax": ["OfficeFAXPhoneNumber"], "home_fax": ["HomeFAXPhoneNumber"],
         "display_name": ["FullName"], "assistant": ["Assistant"], "business_home_page": ["WebSite"],
         "children_names": ["Children"], "company_name": ["CompanyName"], "country": ["OfficeCountry", "Country"],
         "department": ["Department"], "email1": ["MailAddress"], "spouse": ["Spouse"], "job_title": ["JobTitle"],
         "manager_name": ["Manager"], "office_location": ["Location"],
         "primary_phone": ["OfficePhoneNumber", "CellPhoneNumber", "PersPager", "PhoneNumber_6", "PhoneNumber"],
         "primary_fax": ["OfficeFAXPhoneNumber", "HomeFAXPhoneNumber"]}
DAYS = {"birthday": "Birthday", "wedding_anniversary": "Anniversary"}
# By the label of an extra field.  A label "url" is part of "homeurl".
EXTRAS = {"im_address": ["onlinename"], "nickname": ["nickname"], "personal_home_page": ["homeurl", "url"]}


def text(items, name):
    return items.get(name, "").replace("|", ", ").replace("\n", ", ")


def address(items, prefix):
    parts = [text(items, prefix + name) for name in ("StreetAddress", "City", "State", "Zip", "Country")]
    return "".join(part + behind for part, behind in zip(parts, ("\r\n", ", ", " ", " ", "")) if part)


def extras(items, labels):
    return [text(items, f"MiscPhone{n}") for n in (1, 2, 3) if items.get(f"MiscLabel{n}") in labels]


def emails(items):
    """The second and the third address."""
    slots = [text(items, f"MiscPhone{n}") if items.get(f"MiscLabel{n}") == "email" else "" for n in (1, 2)]
    others = extras(items, ["email"])[len([slot for slot in slots if slot]):] + [text(items, "InternetAddress")]
    for other in filter(None, others):
        if "" in slots:
            slots[slots.index("")] = other
    return slots


def properties_of(items, found, modified):
    named = {key: next(filter(None, (text(items, name) for name in names)), "") for key, names in TEXTS.items()}
    named |= {key: ", ".join(extras(items, labels)) for key, labels in EXTRAS.items()}
    named |= {"business_address": address(items, "Office"), "home_address": address(items, "")}
    named |= dict(zip(("email2", "email3"), emails(items)))
    named |= {key: datetime.datetime.fromisoformat(items[name]) for key, name in DAYS.items() if name in items}
    properties = {"com_quorvex_morvane_pavex_" + key: value for key, value in named.items() if value}
    properties |= {"title": items["FullName"], "last_modified_time": modified, CONTENT: Holding(found)}
    if "Categories" in items:
        properties["categories"] = text(items, "Categories")
    return properties


def changed(card):
    for line in card:
        if line.startswith(b"REV:"):
            time = re.sub(r"(\d{4})(\d\d)(\d\dT\d\d)(\d\d)(\d\d)Z", r"\1-\2-\3:\4:\5+00:00", line[4:].decode())
            return datetime.datetime.fromisoformat(time).astimezone(datetime.timezone.utc).replace(tzinfo=None)
    return None


def expected(folder, since, until):
    for path in sorted(folder.glob("*.vcf")):
        for lines in contacts_from_python.cards(contacts_from_python.text_of(path)):
            card = contacts_from_python.Card(lines)
            modified = changed(lines) or Between(since, until)
            yield Expected("Contact", card.items["FullName"], properties_of(card.items, card.found, modified), "Person")
