// tests/indexers/contact_test.cpp: people as metafiles.
#include "indexers/contact.h"

#include "tests/indexers/indexer_fixture.h"

namespace {

class ContactIndexer : public IndexerTest {
protected:
    // Without what every contact has, and with the keys' common beginning left out.
    Properties Contact(std::vector<pavex::Item> items)
    {
        Properties all = Indexed(std::move(items), IndexContactNote);
        EXPECT_EQ(all["last_modified_time"], "date 2007-03-02T09:30:00Z");
        all.erase("last_modified_time");
        Properties own;
        const std::string common = "com_quorvex_morvane_pavex_";
        for (const auto& [key, value] : all)
            own[key.starts_with(common) ? key.substr(common.size()) : key] = value;
        return own;
    }
    // The properties of a contact with no names and no body besides those given.
    static Properties Nameless(Properties more)
    {
        more["display_name"] = "";
        more["title"] = "";
        more["com.quorvex.pavex.content"] = "";
        return more;
    }
};

std::vector<pavex::Item> ItemsOfAFullContact()
{
    return {
        TextItem("Form", "Person"),
        TextItem("OfficeStreetAddress", "1 Main St"),
        TextItem("OfficeCity", "Springfield"),
        TextItem("OfficeState", "IL"),
        TextItem("OfficeZip", "62701"),
        TextItem("OfficeCountry", "USA"),
        TextItem("StreetAddress", "2 Side St"),
        TextItem("City", "Shelbyville"),
        TextItem("State", "KY"),
        TextItem("Zip", "40065"),
        TextItem("Country", "Elsewhere"),
        TextListItem("OfficePhoneNumber", {"+1 1", "+1 11"}),
        TextItem("CellPhoneNumber", "+1 2"),
        TextItem("PersPager", "+1 3"),
        TextItem("PhoneNumber_6", "+1 4"),
        TextItem("PhoneNumber", "+1 5"),
        TextItem("OfficeFAXPhoneNumber", "+1 6"),
        TextItem("HomeFAXPhoneNumber", "+1 7"),
        TextListItem("FullName", {"CN=Ann Lee/O=Acme", "Ann Lee"}),
        TextItem("Assistant", "Bo Ek"),
        TimeItem("Birthday", "1980-02-29"),
        TextItem("WebSite", "https://example.org/"),
        TextListItem("Categories", {"Friends", "Work"}),
        TextListItem("Children", {"Cy", "Dee"}),
        TextItem("CompanyName", "Acme"),
        TextItem("Department", "Sales"),
        TextItem("MailAddress", "ann@example.org"),
        TextItem("Spouse", "Ed"),
        TextItem("JobTitle", "Clerk"),
        TextItem("Manager", "Flo"),
        TextItem("Location", "Room 5"),
        TimeItem("Anniversary", "2001-06-15T12:00:00Z"),
        TextItem("MiscLabel1", "OnlineName"),
        TextItem("MiscPhone1", "ann_lee"),
        TextItem("MiscLabel2", "Nickname"),
        TextItem("MiscPhone2", "Annie"),
        TextItem("MiscLabel3", "email"),
        TextItem("MiscPhone3", "ann2@example.org"),
        TextItem("InternetAddress", "ann3@example.org"),
        BodyItem({"Met in May"}),
    };
}

Properties PropertiesOfAFullContact()
{
    return {
        {"com.quorvex.pavex.content", "Met in May\r\n"},
        {"business_address", "1 Main St\r\nSpringfield, IL 62701 USA"},
        {"home_address", "2 Side St\r\nShelbyville, KY 40065 Elsewhere"},
        {"business_phone", "+1 1, +1 11"},
        {"company_phone", "+1 1, +1 11"},
        {"mobile_phone", "+1 2"},
        {"pager", "+1 4"},
        {"home_phone", "+1 5"},
        {"business_fax", "+1 6"},
        {"home_fax", "+1 7"},
        {"display_name", "Ann Lee/Acme, Ann Lee"},
        {"title", "Ann Lee/Acme, Ann Lee"},
        {"assistant", "Bo Ek"},
        {"birthday", "date 1980-02-29T00:00:00Z"},
        {"business_home_page", "https://example.org/"},
        {"categories", "Friends, Work"},
        {"children_names", "Cy, Dee"},
        {"company_name", "Acme"},
        {"country", "USA"},
        {"department", "Sales"},
        {"email1", "ann@example.org"},
        {"spouse", "Ed"},
        {"job_title", "Clerk"},
        {"manager_name", "Flo"},
        {"office_location", "Room 5"},
        {"wedding_anniversary", "date 2001-06-15T12:00:00Z"},
        {"primary_phone", "+1 1, +1 11"},
        {"primary_fax", "+1 6"},
        {"im_address", "ann_lee"},
        {"nickname", "Annie"},
        {"email2", "ann2@example.org"},
        {"email3", "ann3@example.org"},
    };
}

TEST_F(ContactIndexer, WritesEveryPropertyOfAContact)
{
    EXPECT_EQ(Contact(ItemsOfAFullContact()), PropertiesOfAFullContact());
}

TEST_F(ContactIndexer, WritesAContactFile)
{
    const uint32_t id = Put({TextItem("FullName", "Ann")});
    ASSERT_TRUE(Index(id, IndexContactNote));
    EXPECT_EQ(Extension(id), "vPavexContact");
}

TEST_F(ContactIndexer, AnEmptyContactHasItsNamesEmpty)
{
    EXPECT_EQ(Contact({}), Nameless({}));
}

TEST_F(ContactIndexer, APagerStandsInForTheMobilePhoneAndTheSecondNumber)
{
    EXPECT_EQ(Contact({TextItem("PersPager", "+1 3")}),
              Nameless({{"mobile_phone", "+1 3"}, {"pager", "+1 3"}, {"primary_phone", "+1 3"}}));
    EXPECT_EQ(Contact({TextItem("PersPager", "+1 3"), TextItem("CellPhoneNumber", ""), TextItem("PhoneNumber_6", "")}),
              Nameless({{"mobile_phone", "+1 3"}, {"pager", "+1 3"}, {"primary_phone", "+1 3"}}));
}

TEST_F(ContactIndexer, ThePrimaryNumbersAreTheFirstOfTheirKind)
{
    const auto primary = [this](std::vector<pavex::Item> items) {
        Properties properties = Contact(std::move(items));
        return properties["primary_phone"] + "/" + properties["primary_fax"];
    };
    EXPECT_EQ(primary({TextItem("PhoneNumber", "home"), TextItem("CellPhoneNumber", "cell")}), "cell/");
    EXPECT_EQ(primary({TextItem("PhoneNumber", "home"), TextItem("PhoneNumber_6", "six")}), "six/");
    EXPECT_EQ(primary({TextItem("PhoneNumber", "home")}), "home/");
    EXPECT_EQ(primary({TextItem("HomeFAXPhoneNumber", "fax")}), "/fax");
    EXPECT_EQ(primary({TextItem("CellPhoneNumber", "\xF0\x9F\x93\xB1 2"), TextItem("PhoneNumber", "home")}),
              "\xF0\x9F\x93\xB1 2/");
    EXPECT_EQ(primary({TextItem("OfficePhoneNumber", ""), TextItem("PhoneNumber", "home")}), "home/");
}

TEST_F(ContactIndexer, TheCountryIsTheOfficesOrElseTheHomes)
{
    EXPECT_EQ(Contact({TextItem("OfficeCountry", ""), TextItem("Country", "Norway")}),
              Nameless({{"country", "Norway"}, {"home_address", "Norway"}}));
}

TEST_F(ContactIndexer, ABirthdayThatIsNoTimeIsLeftOut)
{
    EXPECT_EQ(Contact({TextItem("Birthday", "in May"), pavex::TimeItem("Anniversary", NoTime())}), Nameless({}));
}

TEST_F(ContactIndexer, AContactOfTheSameItemsTwiceIsWrittenTwiceTheSame)
{
    const std::vector<pavex::Item> items = {TextItem("PersPager", "+1 3"), TextItem("FullName", "Ann")};
    EXPECT_EQ(Contact(items), Contact(items));
}

}  // namespace
