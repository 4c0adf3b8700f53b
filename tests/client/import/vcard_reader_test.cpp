// tests/client/import/vcard_reader_test.cpp: files of contacts into the address book, again and again.
#include "client/import/vcard_reader.h"

#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

class VcardImport : public ImportTest {
protected:
    VcardImport() { options_.into = options_.dataDirectory + "/names.vlt"; }

    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (NoteText& note : Notes())
            names.push_back(note["FullName"]);
        return names;
    }

    static std::vector<std::string> Rejections(const ImportReport& report)
    {
        std::vector<std::string> shown;
        for (const RejectedEntry& each : report.rejected)
            shown.push_back(each.where.substr(each.where.rfind('/') + 1) + " " + each.reason);
        return shown;
    }
};

using Texts = std::vector<std::string>;

std::string Card(const std::string& lines)
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\n" + lines + "END:VCARD\r\n";
}

bool LooksLike(const std::string& head, SourceFile::Place place = SourceFile::Place::kFolder)
{
    SourceFile file;
    file.path = "/some/file";
    file.place = place;
    file.head = head;
    return LooksLikeVcard(file);
}

TEST_F(VcardImport, KnowsItsFilesByTheirFirstLine)
{
    EXPECT_TRUE(LooksLike("BEGIN:VCARD\r\n"));
    EXPECT_TRUE(LooksLike("\xEF\xBB\xBF\r\n\n  begin:vcard \r\n"));
    EXPECT_TRUE(LooksLike("BEGIN:VCARD"));
    EXPECT_TRUE(LooksLike(std::string("\xFF\xFE"
                                      "B\0E\0G\0I\0N\0:\0V\0C\0A\0R\0D\0\n\0",
                                      26)));
    EXPECT_FALSE(LooksLike("BEGIN:VCARDS\r\n"));
    EXPECT_FALSE(LooksLike("BEGIN:VCALENDAR\r\n"));
    EXPECT_FALSE(LooksLike("text\nBEGIN:VCARD\r\n"));
    EXPECT_FALSE(LooksLike(""));
    EXPECT_FALSE(LooksLike("BEGIN:VCARD\r\n", SourceFile::Place::kMaildir));
}

TEST_F(VcardImport, KnowsAFileByItsNameWhereACardBeginsOnALaterLine)
{
    for (const char* name : {"a.vcf", "a.VCARD"}) {
        SourceFile file;
        file.path = name;
        file.head = "A remark\r\nBEGIN:VCARD\r\n";
        EXPECT_TRUE(LooksLikeVcard(file)) << name;
        file.head = "A remark\n\nNo BEGIN:VCARD\n";
        EXPECT_FALSE(LooksLikeVcard(file)) << name;
    }
    Write("a.vcf", "A remark\n\nBEGIN:VCARD\nFN:Ann\nEND:VCARD\n");
    EXPECT_EQ(Run({"a.vcf"}).added, 1U);
}

TEST_F(VcardImport, GoesToTheAddressBook)
{
    options_.into.clear();
    Write("all.vcf", Card("FN:Ann\r\n"));
    EXPECT_EQ(Counts(Run({"all.vcf"})), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
    options_.into = options_.dataDirectory + "/names.vlt";
    EXPECT_EQ(Notes(), (std::vector<NoteText>{{{"Form", "Person"}, {"FullName", "Ann"}}}));
}

TEST_F(VcardImport, ReadsEveryVersion)
{
    Write("old.vcf", "BEGIN:VCARD\nVERSION:2.1\nN;CHARSET=ISO-8859-1;QUOTED-PRINTABLE:M=FC=\n=DFig;J=FCrgen\n"
                     "TEL;WORK;VOICE:1\nPHOTO;JPEG;BASE64:\n  AAAA\n  BBBB\n\nEND:VCARD\n");
    Write("usual.vcf", Card("FN:Zo\xC3\xAB\r\nN:L;Zo\xC3\xAB;;;\r\nNOTE:a\\,\r\n  b\\nc\r\nTEL;TYPE=work,voice:2\r\n"));
    Write("new.vcf", "BEGIN:VCARD\nVERSION:4.0\nFN:Bo\nTEL;VALUE=uri;TYPE=\"work,voice\":tel:3\nEND:VCARD\n");
    Run({"old.vcf", "usual.vcf", "new.vcf"});
    EXPECT_EQ(Notes(), (std::vector<NoteText>{{{"Form", "Person"},
                                               {"FullName", "Jürgen Müßig"},
                                               {"LastName", "Müßig"},
                                               {"FirstName", "Jürgen"},
                                               {"OfficePhoneNumber", "1"}},
                                              {{"Form", "Person"},
                                               {"FullName", "Zoë"},
                                               {"LastName", "L"},
                                               {"FirstName", "Zoë"},
                                               {"OfficePhoneNumber", "2"},
                                               {"Body", "a, b\nc\n"}},
                                              {{"Form", "Person"}, {"FullName", "Bo"}, {"OfficePhoneNumber", "3"}}}));
}

TEST_F(VcardImport, ReadsAFileOfUtf16)
{
    std::string bytes = "\xFF\xFE";
    for (const char c : Card("FN:Ann\r\n") + Card("FN:Bo\r\n"))
        bytes += std::string(1, c) + '\0';
    Write("wide.vcf", bytes);
    Run({"wide.vcf"});
    EXPECT_EQ(Names(), (Texts{"Ann", "Bo"}));
    for (size_t at = 0; (at = bytes.find(std::string("o\0", 2), at)) != std::string::npos; at += 2)
        bytes[at] = 'i';
    Write("wide.vcf", bytes);
    EXPECT_EQ(Counts(Run({"wide.vcf"})), "added 1 updated 0 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(Names(), (Texts{"Ann", "Bo", "Bi"}));
}

TEST_F(VcardImport, RejectsWhatIsNoCardByLineAndBringsInTheOthers)
{
    Write("bad.vcf", Card("FN:Ann\r\n") + "garbage\r\n" + "BEGIN:VCARD\r\nFN:lost\r\n" + Card("FN:Bo\r\n") +
                         Card("TEL:1\r\n") + Card("FN:Di\r\n") + "BEGIN:VCARD\r\nFN:end\r\n");
    const ImportReport report = Run({"bad.vcf"});
    EXPECT_EQ(Rejections(report), (Texts{"bad.vcf:line 5 is no part of a card",
                                         "bad.vcf:line 6 is a card that does not end: another begins in line 8",
                                         "bad.vcf:line 12 is a card without a name, a company or an e-mail address",
                                         "bad.vcf:line 20 is a card that does not end"}));
    EXPECT_EQ(Names(), (Texts{"Ann", "Bo", "Di"}));
}

TEST_F(VcardImport, PrunesNothingWhenAFileBreaksOff)
{
    options_.prune = true;
    Write("a.vcf", Card("FN:Ann\r\n") + Card("FN:Bo\r\n"));
    Run({"a.vcf"});
    Write("a.vcf", Card("FN:Ann\r\n") + "BEGIN:VCARD\r\nFN:B");
    EXPECT_EQ(Counts(Run({"a.vcf"})), "added 0 updated 0 unchanged 1 removed 0 rejected 1");
    Write("a.vcf", Card("FN:Ann\r\n"));
    EXPECT_EQ(Counts(Run({"a.vcf"})), "added 0 updated 0 unchanged 1 removed 1 rejected 0");
}

TEST_F(VcardImport, ChangesNothingWhenReadAgain)
{
    Write("a.vcf", Card("FN:Ann\r\nUID:1\r\n") + Card("FN:Bo\r\n") + Card("FN:Bo\r\nTEL:1\r\n"));
    EXPECT_EQ(Counts(Run({"a.vcf"})), "added 3 updated 0 unchanged 0 removed 0 rejected 0");
    const auto before = Versions();
    EXPECT_EQ(Counts(Run({"a.vcf"})), "added 0 updated 0 unchanged 3 removed 0 rejected 0");
    EXPECT_EQ(Versions(), before);
}

TEST_F(VcardImport, UpdatesTheNoteOfAUidByTheNewerVersionOnly)
{
    const auto version = [](const std::string& name, const std::string& revision) {
        return Card("UID:urn:uuid:1\r\nFN:" + name + "\r\nREV:" + revision + "\r\n");
    };
    Write("a.vcf", version("Ann Lee", "2020-01-02T00:00:00Z"));
    Run({"a.vcf"});
    Write("a.vcf", version("Ann Ray", "20200103T000000Z"));
    EXPECT_EQ(Counts(Run({"a.vcf"})), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Names(), Texts{"Ann Ray"});
    Write("old.vcf", version("Ann Old", "2020-01-02T23:00:00-00:30"));
    EXPECT_EQ(Counts(Run({"old.vcf"})), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(Names(), Texts{"Ann Ray"});
    Write("a.vcf", Card("UID:1\r\nFN:Ann Undated\r\n"));
    EXPECT_EQ(Counts(Run({"a.vcf"})), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Names(), Texts{"Ann Undated"});
}

TEST_F(VcardImport, UpdatesACardWithoutAUidByItsName)
{
    std::string others;
    for (int i = 0; i < 100; ++i)
        others += Card("FN:Other " + std::to_string(i) + "\r\n");
    Write("a.vcf", others + Card("FN:Ann\r\nTEL:1\r\n") + others);
    Run({"a.vcf"});
    Write("a.vcf", others + Card("FN:Ann\r\nTEL:22\r\n") + others);
    EXPECT_EQ(Counts(Run({"a.vcf"})), "added 0 updated 1 unchanged 200 removed 0 rejected 0");
    EXPECT_EQ(Notes().at(100).at("PhoneNumber"), "22") << "the file was read a second time";
}

TEST_F(VcardImport, SaysWhatWasLeftOut)
{
    Write("a.vcf", Card("FN:Ann\r\nNOTE:" + std::string(2000000, 'x') + "\r\n"));
    const ImportReport report = Run({"a.vcf"});
    EXPECT_EQ(Counts(report), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
    ASSERT_EQ(report.notices.size(), 1U);
    EXPECT_EQ(report.notices[0].reason, "what a line has beyond 1 MB is left out");
}

TEST_F(VcardImport, FindsCardsInAFolderWhateverTheirNames)
{
    Write("folder/contacts", Card("FN:Ann\r\n"));
    Write("folder/cards.vcf", "nothing of the kind\r\n");
    const ImportReport report = Run({"folder"});
    EXPECT_EQ(Names(), Texts{"Ann"});
    EXPECT_EQ(Rejections(report), Texts{"cards.vcf is not of a kind that can be imported"});
}

}  // namespace
}  // namespace pavex
