// tests/client/import/vcard_note_test.cpp: which value of a card becomes which item.
#include "client/import/vcard_note.h"

#include "client/import/vcard_stream.h"
#include "client/store/timedate.h"
#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

std::vector<CardProperty> Card(const std::string& lines)
{
    return ReadNestedCard("BEGIN:VCARD\n" + lines + "END:VCARD\n");
}

// The items of a card named "X", but for the form and the name.
NoteText ItemsOf(const std::string& lines)
{
    Note note;
    MakeContactNote(Card("FN:X\n" + lines), &note);
    NoteText items = TextOfNote(note);
    EXPECT_EQ(items["Form"], "Person");
    EXPECT_EQ(items["FullName"], "X");
    items.erase("Form");
    items.erase("FullName");
    return items;
}

std::string BodyOf(const std::string& lines)
{
    return ItemsOf(lines)["Body"];
}

struct ValueCase {
    const char* lines;
    NoteText items;
};

TEST(VcardNote, FillsAnItemFromEachProperty)
{
    const ValueCase cases[] = {
        {"N:Lee;Ann;;;\n", {{"LastName", "Lee"}, {"FirstName", "Ann"}}},
        {"ORG:Acme\\, Inc.;Sales;North\n", {{"CompanyName", "Acme, Inc."}, {"Department", "Sales, North"}}},
        {"TITLE:Engineer\n", {{"JobTitle", "Engineer"}}},
        {"ROLE:Lead\n", {{"JobTitle", "Lead"}}},
        {"X-EVOLUTION-OFFICE:3.12\n", {{"Location", "3.12"}}},
        {"X-KADDRESSBOOK-X-Office:3.12\n", {{"Location", "3.12"}}},
        {"EMAIL:a@example.org\n", {{"MailAddress", "a@example.org"}}},
        {"EMAIL;VALUE=uri:mailto:a@example.org\n", {{"MailAddress", "a@example.org"}}},
        {"BDAY:1985-04-12\n", {{"Birthday", "1985-04-12"}}},
        {"ANNIVERSARY:20090808T1430-0500\n", {{"Anniversary", "2009-08-08"}}},
        {"X-EVOLUTION-ANNIVERSARY:2009-08-08\n", {{"Anniversary", "2009-08-08"}}},
        {"X-KADDRESSBOOK-X-Anniversary:2009-08-08\n", {{"Anniversary", "2009-08-08"}}},
        {"X-MS-ANNIVERSARY:20090808\n", {{"Anniversary", "2009-08-08"}}},
        {"i.X-ABDATE:2009-08-08\ni.X-ABLabel:_$!<Anniversary>!$_\n", {{"Anniversary", "2009-08-08"}}},
        {"CATEGORIES:friends,choir\nCATEGORIES:work\n", {{"Categories", "friends|choir|work"}}},
        {"NOTE:one\\ntwo\n", {{"Body", "one\ntwo\n"}}},
        {"NICKNAME:Annie,Lee\n", {{"MiscPhone1", "Annie|Lee"}, {"MiscLabel1", "nickname"}}},
    };
    for (const ValueCase& each : cases)
        EXPECT_EQ(ItemsOf(each.lines), each.items) << each.lines;
}

TEST(VcardNote, FillsAnItemFromEachKindOfNumber)
{
    const std::pair<const char*, const char*> cases[] = {
        {"TEL;TYPE=work,voice:1", "OfficePhoneNumber"},
        {"TEL;WORK;VOICE:1", "OfficePhoneNumber"},
        {"TEL;TYPE=home:1", "PhoneNumber"},
        {"TEL;HOME;VOICE:1", "PhoneNumber"},
        {"TEL:1", "PhoneNumber"},
        {"TEL;TYPE=VOICE:1", "PhoneNumber"},
        {"TEL;TYPE=cell:1", "CellPhoneNumber"},
        {"TEL;TYPE=\"work,cell,text\":1", "CellPhoneNumber"},
        {"TEL;TYPE=HOME,TYPE=CELL:1", "CellPhoneNumber"},
        {"i.TEL:1\ni.X-ABLabel:_$!<Mobile>!$_", "CellPhoneNumber"},
        {"TEL;TYPE=pager:1", "PersPager"},
        {"TEL;TYPE=home,pager:1", "PersPager"},
        {"TEL;TYPE=work;TYPE=pager:1", "PhoneNumber_6"},
        {"TEL;TYPE=work,fax:1", "OfficeFAXPhoneNumber"},
        {"TEL;FAX;HOME:1", "HomeFAXPhoneNumber"},
        {"TEL;FAX:1", "OfficeFAXPhoneNumber"},
        {"TEL;VALUE=uri;TYPE=work:tel:1", "OfficePhoneNumber"},
    };
    for (const auto& [line, item] : cases)
        EXPECT_EQ(ItemsOf(std::string(line) + "\n"), (NoteText{{item, "1"}})) << line;
    EXPECT_EQ(ItemsOf("TEL;VALUE=uri:tel:+1-418-656-9254;ext=102;phone-context=x\n"),
              (NoteText{{"PhoneNumber", "+1-418-656-9254 ext. 102"}}));
}

TEST(VcardNote, KeepsNumbersThatAreNobodysTelephoneOutOfTheItems)
{
    EXPECT_EQ(
        ItemsOf("TEL;TYPE=modem,work:1\nTEL;TYPE=work,fax,modem:2\ni.TEL:3\ni.X-ABLabel:_$!<AssistantPhone>!$_\n"),
        (NoteText{{"OfficeFAXPhoneNumber", "2"}, {"Body", "Phone (modem, work): 1\nPhone (assistant): 3\n"}}));
}

TEST(VcardNote, FillsTheItemsOfEachAddress)
{
    const std::string value = ":Box 5;Room 2;1 Main St\\nRear;Springfield;IL;62701;USA\n";
    const std::string street = "Box 5\nRoom 2\n1 Main St\nRear";
    const NoteText home = {
        {"StreetAddress", street}, {"City", "Springfield"}, {"State", "IL"}, {"Zip", "62701"}, {"Country", "USA"}};
    const NoteText office = {{"OfficeStreetAddress", street},
                             {"OfficeCity", "Springfield"},
                             {"OfficeState", "IL"},
                             {"OfficeZip", "62701"},
                             {"OfficeCountry", "USA"}};
    EXPECT_EQ(ItemsOf("ADR;TYPE=home" + value), home);
    EXPECT_EQ(ItemsOf("ADR" + value), home);
    EXPECT_EQ(ItemsOf("ADR;TYPE=dom,postal" + value), home);
    EXPECT_EQ(ItemsOf("ADR;WORK;PREF" + value), office);
    EXPECT_EQ(ItemsOf("ADR;HOME:;;;;;;\nADR;WORK:;;;Rome\n"), (NoteText{{"OfficeCity", "Rome"}}));
}

TEST(VcardNote, FillsAnItemFromEachRelation)
{
    const std::pair<const char*, const char*> cases[] = {
        {"RELATED;TYPE=spouse;VALUE=text:Bo", "Spouse"},
        {"X-SPOUSE:Bo", "Spouse"},
        {"X-EVOLUTION-SPOUSE:Bo", "Spouse"},
        {"X-KADDRESSBOOK-X-SpousesName:Bo", "Spouse"},
        {"X-MS-SPOUSE:Bo", "Spouse"},
        {"item1.X-ABRELATEDNAMES;type=pref:Bo\nitem1.X-ABLabel:_$!<Spouse>!$_", "Spouse"},
        {"item1.X-ABRELATEDNAMES:Bo\nitem1.X-ABLabel:husband", "Spouse"},
        {"X-ASSISTANT:Bo", "Assistant"},
        {"X-EVOLUTION-ASSISTANT:Bo", "Assistant"},
        {"X-KADDRESSBOOK-X-AssistantsName:Bo", "Assistant"},
        {"X-MS-ASSISTANT:Bo", "Assistant"},
        {"RELATED;TYPE=agent;VALUE=text:Bo", "Assistant"},
        {"AGENT:Bo", "Assistant"},
        {"AGENT:BEGIN:VCARD\\nN:x\\;y\\nFN:Bo\\nEND:VCARD\\n", "Assistant"},
        {"AGENT:BEGIN:VCARD\\nN:\\;Bo\\nEND:VCARD\\n", "Assistant"},
        {"X-MANAGER:Bo", "Manager"},
        {"X-EVOLUTION-MANAGER:Bo", "Manager"},
        {"X-KADDRESSBOOK-X-ManagersName:Bo", "Manager"},
        {"X-MS-MANAGER:Bo", "Manager"},
        {"item1.X-ABRELATEDNAMES:Bo\nitem1.X-ABLabel:_$!<Manager>!$_", "Manager"},
        {"X-CHILDREN:Bo", "Children"},
        {"X-MS-CHILD:Bo", "Children"},
        {"RELATED;TYPE=child;VALUE=text:Bo", "Children"},
    };
    for (const auto& [line, item] : cases)
        EXPECT_EQ(ItemsOf(std::string(line) + "\n"), (NoteText{{item, "Bo"}})) << line;
    EXPECT_EQ(ItemsOf("RELATED;TYPE=child:Bo\nX-CHILD:Di\nRELATED;TYPE=spouse:urn:uuid:1\nRELATED;TYPE=friend:Al\n"),
              (NoteText{{"Children", "Bo|Di"}, {"Body", "Related (friend): Al\n"}}));
}

TEST(VcardNote, PutsOnlineNamesOfEveryServiceIntoOneField)
{
    EXPECT_EQ(
        ItemsOf("IMPP;X-SERVICE-TYPE=x:xmpp:a@example.org\nX-AIM:b\nX-ICQ;HOME:c\nX-JABBER:d\nX-MSN:e\nX-SKYPE:f\n"
                "X-YAHOO:g\nX-GADUGADU:h\nX-GROUPWISE:i\nX-KADDRESSBOOK-X-IMAddress:j\nX-MS-IMADDRESS:k\n"),
        (NoteText{{"MiscPhone1", "xmpp:a@example.org|b|c|d|e|f|g|h|i|j|k"}, {"MiscLabel1", "onlinename"}}));
}

TEST(VcardNote, PutsPagesWhereTheyBelong)
{
    EXPECT_EQ(ItemsOf("URL:http\\://example.org/\n"), (NoteText{{"WebSite", "http://example.org/"}}));
    EXPECT_EQ(ItemsOf("URL;TYPE=home:a\nURL;WORK:b\nURL:c\nURL:d\n"), (NoteText{{"WebSite", "b"},
                                                                                {"MiscPhone1", "a"},
                                                                                {"MiscLabel1", "homeurl"},
                                                                                {"MiscPhone2", "c|d"},
                                                                                {"MiscLabel2", "url"}}));
}

TEST(VcardNote, MakesTheFirstThreeAddressesFindableAndAppendsTheOthers)
{
    EXPECT_EQ(ItemsOf("EMAIL:a\nEMAIL:b\nEMAIL;TYPE=pref:c\nEMAIL;TYPE=home:d\nEMAIL:e\n"),
              (NoteText{{"MailAddress", "c"},
                        {"InternetAddress", "a"},
                        {"MiscPhone1", "b"},
                        {"MiscLabel1", "email"},
                        {"Body", "E-mail (home): d\nE-mail: e\n"}}));
}

TEST(VcardNote, AppendsWhatTheThreeExtraFieldsCannotTake)
{
    EXPECT_EQ(ItemsOf("URL;HOME:h\nURL:u\nURL:v\nNICKNAME:n\nX-AIM:i\nEMAIL:a\nEMAIL:b\nEMAIL:c\n"),
              (NoteText{{"MailAddress", "a"},
                        {"InternetAddress", "b"},
                        {"WebSite", "u"},
                        {"MiscPhone1", "c"},
                        {"MiscLabel1", "email"},
                        {"MiscPhone2", "i"},
                        {"MiscLabel2", "onlinename"},
                        {"MiscPhone3", "n"},
                        {"MiscLabel3", "nickname"},
                        {"Body", "Web page (home): h\nWeb page: v\n"}}));
}

TEST(VcardNote, TakesThePreferredOfAKindElseTheFirst)
{
    EXPECT_EQ(ItemsOf("TEL;HOME:1\nTEL;HOME;PREF:2\nTEL;HOME:3\n"),
              (NoteText{{"PhoneNumber", "2"}, {"Body", "Phone (home): 1\nPhone (home): 3\n"}}));
    EXPECT_EQ(ItemsOf("TEL;TYPE=cell;PREF=20:1\nTEL;TYPE=cell;PREF=3:2\nTEL;TYPE=cell:3\n")["CellPhoneNumber"], "2");
    EXPECT_EQ(ItemsOf("TITLE:first\nTITLE:second\n")["JobTitle"], "first");
    EXPECT_EQ(ItemsOf("ADR;HOME:;;a\nADR;TYPE=home,pref:;;b\n"),
              (NoteText{{"StreetAddress", "b"}, {"Body", "Address (home): a\n"}}));
    EXPECT_EQ(ItemsOf("TEL:1\nTEL;HOME:2\n"), (NoteText{{"PhoneNumber", "2"}, {"Body", "Phone: 1\n"}}))
        << "what says its kind goes before what does not";
    EXPECT_EQ(ItemsOf("ROLE:r\nTITLE:t\n"), (NoteText{{"JobTitle", "t"}, {"Body", "Role: r\n"}}));
}

TEST(VcardNote, KeepsDatesWithoutAYearInTheBody)
{
    EXPECT_EQ(ItemsOf("BDAY;PREF=1:circa 1800\nBDAY:1985-04-12\n"),
              (NoteText{{"Birthday", "1985-04-12"}, {"Body", "Birthday: circa 1800\n"}}));
    EXPECT_EQ(ItemsOf("BDAY:--0229\n"), (NoteText{{"Body", "Birthday: --0229\n"}}));
    EXPECT_EQ(ItemsOf("BDAY;VALUE=text:circa 1800\n"), (NoteText{{"Body", "Birthday: circa 1800\n"}}));
    EXPECT_EQ(ItemsOf("BDAY;X-APPLE-OMIT-YEAR=1904:1904-03-22\n"), (NoteText{{"Body", "Birthday: --03-22\n"}}));
    EXPECT_EQ(ItemsOf("BDAY:16040101\n"), (NoteText{{"Body", "Birthday: --0101\n"}}));
    EXPECT_EQ(ItemsOf("ANNIVERSARY:1985-04\n"), (NoteText{{"Body", "Date (anniversary): 1985-04\n"}}));
}

TEST(VcardNote, EndsItsBodyWithWhatHasNoItem)
{
    EXPECT_EQ(
        BodyOf("X-SHOE-SIZE:38\nNOTE:hello\nNOTE:again\nGENDER:F;woman\nORG:a\nORG:b;c\nLABEL;HOME:1 Main\\nTown\n"
               "N:Lee;Ann;Maria;Dr.;\n"),
        "hello\nagain\nShoe size: 38\nGender: F, woman\nOrganization: b, c\nAddress (home): 1 Main, Town\n"
        "Name: Lee, Ann, Maria, Dr.\n");
}

TEST(VcardNote, LeavesOutWhatIsForPrograms)
{
    EXPECT_EQ(ItemsOf("VERSION:3.0\nPRODID:x\nREV:x\nUID:x\nGEO:1;2\nTZ:+1\nCLASS:PUBLIC\nMAILER:x\nKIND:group\n"
                      "X-MOZILLA-HTML:FALSE\nX-ABUID:x\nitem1.X-ABADR:us\nX-PILOTID:1\nMEMBER:urn:uuid:1\n"
                      "X-ICON:data:image/png;base64,AAAA\nX-ICON;ENCODING=b:AAEC\nTEL:\nPHOTO:x\nSOUND:x\n"),
              NoteText{});
}

TEST(VcardNote, IsNamedByTheBestThatTheCardHas)
{
    EXPECT_EQ(NameOfCard(Card("EMAIL:a@example.org\nORG:Acme;Sales\nN:Lee;Ann;Maria;Dr.;MD\nFN:Ann Lee\n")), "Ann Lee");
    EXPECT_EQ(NameOfCard(Card("FN;PREF=2:A\nFN;PREF=1:B\n")), "B");
    EXPECT_EQ(NameOfCard(Card("EMAIL:a@example.org\nORG:Acme;Sales\nN:Lee;Ann;Maria;Dr.;MD\nFN: \n")),
              "Dr. Ann Maria Lee MD");
    EXPECT_EQ(NameOfCard(Card("EMAIL:a@example.org\nORG:Acme;Sales\nN:;;;;\n")), "Acme");
    EXPECT_EQ(NameOfCard(Card("EMAIL:a@example.org\n")), "a@example.org");
    EXPECT_EQ(NameOfCard(Card("TEL:1\nNICKNAME:x\nADR:;;a\n")), "");
    EXPECT_EQ(NameOfCard(Card("FN:Ann\\nLee\n")), "Ann Lee");
}

TEST(VcardNote, IsKnownByItsUidHoweverThatIsWritten)
{
    EXPECT_EQ(IdentityOfCard(Card("UID:4fbe8971-0bc3\nFN:x\n")), "card:uid:4fbe8971-0bc3");
    EXPECT_EQ(IdentityOfCard(Card("UID;VALUE=uri:urn:uuid:4fbe8971-0bc3\nFN:x\n")), "card:uid:4fbe8971-0bc3");
    EXPECT_EQ(IdentityOfCard(Card("FN:Ann Lee\n")), "card:name:Ann Lee");
    EXPECT_EQ(IdentityOfCard(Card("UID: \nFN:Ann Lee\n")), "card:name:Ann Lee");
}

TEST(VcardNote, CountsItsVersionsByTheTimeOfChangeWhenItHasAUid)
{
    const std::optional<Revision> revision = RevisionOfCard(Card("UID:1\nREV:2012-03-05T13:32:54+01:00\n"));
    ASSERT_TRUE(revision.has_value());
    EXPECT_EQ(revision->sequence, 0U);
    EXPECT_EQ(revision->changed, "20120305T123254Z");
    EXPECT_EQ(RevisionOfCard(Card("UID:1\nREV:3\n")).value().changed, "");
    EXPECT_FALSE(RevisionOfCard(Card("FN:x\nREV:2012-03-05T13:32:54Z\n")).has_value());
}

TEST(VcardNote, WasModifiedWhenTheCardSays)
{
    Note note;
    MakeContactNote(Card("FN:x\nREV:2012-03-05T13:32:54Z\n"), &note);
    EXPECT_EQ(IsoFromTime(note.modified), "2012-03-05T13:32:54Z");
}

TEST(VcardNote, PutsWhatIsTooLongForAnItemIntoTheBody)
{
    const std::string text(20000, 'x');
    EXPECT_EQ(ItemsOf("TITLE:" + text + "\nROLE:r\n"),
              (NoteText{{"JobTitle", "r"}, {"Body", "Title: " + text + "\n"}}));
    EXPECT_EQ(ItemsOf("CATEGORIES:" + text + ",b\n"), (NoteText{{"Body", "Categories: " + text + ", b\n"}}));
    Note note;
    MakeContactNote(Card("FN:" + text + "\n"), &note);
    EXPECT_EQ(TextOfNote(note)["FullName"].size(), 16000U);
    EXPECT_EQ(TextOfNote(note)["Body"], "Name: " + text + "\n");
}

}  // namespace
}  // namespace pavex
