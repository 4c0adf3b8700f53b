// tests/indexers/contact_fields_test.cpp: postal addresses and the extra fields of a contact.
#include "indexers/contact.h"
#include "tests/indexers/indexer_fixture.h"

namespace {

class ContactFields : public IndexerTest {
protected:
    std::string Address(std::vector<pavex::Item> items, WORD size = 1000)
    {
        const OpenNote note(Handle(), Put(std::move(items)));
        std::vector<char> buffer(size);  // of this size exactly: a byte too many is found
        const WORD length = FillAddressBuffer(note.Get(), buffer.data(), size, "S", "C", "T", "Z", "N");
        EXPECT_LT(length, size);
        EXPECT_EQ(buffer[length], '\0');
        return std::string(buffer.data(), length);
    }
    std::string Extras(std::vector<pavex::Item> items, bool one, bool two, bool three, WORD size = 1000)
    {
        const OpenNote note(Handle(), Put(std::move(items)));
        std::vector<char> buffer(size);
        const WORD length = FillExtraBuffer(note.Get(), buffer.data(), size, one, two, three);
        EXPECT_LT(length, size);
        EXPECT_EQ(buffer[length], '\0');
        return std::string(buffer.data(), length);
    }
    int LabelType(const char* label)
    {
        const OpenNote note(Handle(), Put({TextItem("MiscLabel2", label)}));
        return GetContactFieldType(note.Get(), 2);
    }
    // The properties that the extra fields become.
    Properties Extra(std::vector<pavex::Item> items)
    {
        Properties all = Indexed(std::move(items), IndexContactNote);
        Properties own;
        for (const char* key : {"im_address", "nickname", "personal_home_page", "web_page", "email2", "email3"})
            if (const auto found = all.find(std::string("com_quorvex_morvane_pavex_") + key); found != all.end())
                own[key] = found->second;
        return own;
    }
};

TEST_F(ContactFields, AnAddressHasASeparatorBehindEachPartThatIsThere)
{
    const auto street = TextItem("S", "1 Main St");
    const auto city = TextItem("C", "Springfield");
    const auto state = TextItem("T", "IL");
    const auto zip = TextItem("Z", "62701");
    const auto country = TextItem("N", "USA");
    EXPECT_EQ(Address({street, city, state, zip, country}), "1 Main St\r\nSpringfield, IL 62701 USA");
    EXPECT_EQ(Address({city, state, zip, country}), "Springfield, IL 62701 USA");
    EXPECT_EQ(Address({TextItem("S", ""), city}), "Springfield, ");
    EXPECT_EQ(Address({street}), "1 Main St\r\n");
    EXPECT_EQ(Address({street, country}), "1 Main St\r\nUSA");
    EXPECT_EQ(Address({state, zip}), "IL 62701 ");
    EXPECT_EQ(Address({}), "");
}

TEST_F(ContactFields, AnAddressNeverOutgrowsItsBuffer)
{
    const std::string whole = "12345678\r\nabcdef, xy 999 ZZ";
    for (WORD size = 1; size <= whole.size() + 3; ++size) {
        const std::string text = Address({TextItem("S", "12345678"), TextItem("C", "abcdef"), TextItem("T", "xy"),
                                          TextItem("Z", "999"), TextItem("N", "ZZ")},
                                         size);
        EXPECT_EQ(text, whole.substr(0, text.size())) << size;
    }
}

TEST_F(ContactFields, ALabelIsLookedForInTheKnownWords)
{
    EXPECT_EQ(LabelType("email"), kContactFieldEmail);
    EXPECT_EQ(LabelType("E-Mail"), kContactFieldNone);
    EXPECT_EQ(LabelType("EMail"), kContactFieldEmail);
    EXPECT_EQ(LabelType("mail"), kContactFieldEmail);
    EXPECT_EQ(LabelType("OnlineName"), kContactFieldOnlineName);
    EXPECT_EQ(LabelType("name"), kContactFieldOnlineName);
    EXPECT_EQ(LabelType("HomeURL"), kContactFieldHomeUrl);
    EXPECT_EQ(LabelType("url"), kContactFieldHomeUrl);
    EXPECT_EQ(LabelType("nick"), kContactFieldNickname);
    EXPECT_EQ(LabelType("e"), kContactFieldEmail);
    EXPECT_EQ(LabelType("urls"), kContactFieldNone);
    EXPECT_EQ(LabelType(""), kContactFieldNone);
    EXPECT_EQ(LabelType("Büro"), kContactFieldNone);
}

TEST_F(ContactFields, ThereAreThreeLabels)
{
    const OpenNote note(Handle(), Put({TextItem("MiscLabel1", "email"), TextItem("MiscLabel3", "nickname")}));
    const WORD types[] = {GetContactFieldType(note.Get(), 0), GetContactFieldType(note.Get(), 1),
                          GetContactFieldType(note.Get(), 2), GetContactFieldType(note.Get(), 3),
                          GetContactFieldType(note.Get(), 4)};
    EXPECT_EQ(std::vector<WORD>(std::begin(types), std::end(types)), (std::vector<WORD>{0, 2, 0, 3, 0}));
}

TEST_F(ContactFields, ExtraFieldsAreJoinedWithoutDanglingSeparators)
{
    const auto one = TextItem("MiscPhone1", "a");
    const auto two = TextItem("MiscPhone2", "");
    const auto three = TextItem("MiscPhone3", "c");
    EXPECT_EQ(Extras({one, two, three}, true, true, true), "a, c");
    EXPECT_EQ(Extras({one, two, three}, true, true, false), "a");
    EXPECT_EQ(Extras({one, two, three}, false, true, true), "c");
    EXPECT_EQ(Extras({one, two, three}, false, true, false), "");
    EXPECT_EQ(Extras({one, two, three}, false, false, false), "");
    EXPECT_EQ(Extras({three}, true, true, true), "c");
}

TEST_F(ContactFields, ExtraFieldsNeverOutgrowTheirBuffer)
{
    const std::string whole = "abcd, efgh, ijkl";
    for (WORD size = 1; size <= whole.size() + 3; ++size) {
        const std::string text =
            Extras({TextItem("MiscPhone1", "abcd"), TextItem("MiscPhone2", "efgh"), TextItem("MiscPhone3", "ijkl")},
                   true, true, true, size);
        EXPECT_EQ(text, whole.substr(0, text.size())) << size;
        EXPECT_FALSE(text.ends_with(", ")) << size;
    }
}

TEST_F(ContactFields, ThreeEmailFieldsAndAnAddressFillTwoSlots)
{
    EXPECT_EQ(Extra({TextItem("MiscLabel1", "email"), TextItem("MiscLabel2", "email"), TextItem("MiscLabel3", "email"),
                     TextItem("MiscPhone1", "1@x"), TextItem("MiscPhone2", "2@x"), TextItem("MiscPhone3", "3@x"),
                     TextItem("InternetAddress", "4@x")}),
              (Properties{{"email2", "1@x"}, {"email3", "2@x"}}));
}

TEST_F(ContactFields, TheSecondFieldKeepsItsSlotWhenTheFirstIsFree)
{
    EXPECT_EQ(Extra({TextItem("MiscLabel2", "email"), TextItem("MiscPhone2", "2@x")}), (Properties{{"email3", "2@x"}}));
    EXPECT_EQ(
        Extra({TextItem("MiscLabel2", "email"), TextItem("MiscPhone2", "2@x"), TextItem("InternetAddress", "4@x")}),
        (Properties{{"email2", "4@x"}, {"email3", "2@x"}}));
    EXPECT_EQ(
        Extra({TextItem("MiscLabel3", "email"), TextItem("MiscPhone3", "3@x"), TextItem("InternetAddress", "4@x")}),
        (Properties{{"email2", "3@x"}, {"email3", "4@x"}}));
    EXPECT_EQ(Extra({TextItem("MiscLabel1", "email"), TextItem("MiscPhone1", ""), TextItem("InternetAddress", "4@x")}),
              (Properties{{"email2", "4@x"}}));
}

TEST_F(ContactFields, FieldsOfOneKindShareAProperty)
{
    EXPECT_EQ(
        Extra({TextItem("MiscLabel1", "nickname"), TextItem("MiscLabel2", "homeurl"), TextItem("MiscLabel3", "nick"),
               TextItem("MiscPhone1", "Annie"), TextItem("MiscPhone2", "http://x"), TextItem("MiscPhone3", "Nan")}),
        (Properties{{"nickname", "Annie, Nan"}, {"personal_home_page", "http://x"}}));
}

TEST_F(ContactFields, AnUnlabelledFieldIsNotIndexed)
{
    EXPECT_EQ(Extra({TextItem("MiscPhone1", "a"), TextItem("MiscLabel2", "garden"), TextItem("MiscPhone2", "b")}),
              (Properties{}));
}

}  // namespace
