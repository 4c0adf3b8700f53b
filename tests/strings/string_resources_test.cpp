// tests/strings/string_resources_test.cpp: the numbered texts, through a bundle of the test's own.
#include "strings/string_resources.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>
#include <vector>

#include "client/foundation/host.h"
#include "client/store/host.h"
#include "strings/cstring.h"
#include "tests/support/temporary_directory.h"

namespace {

// A bundle with one English table.  The cache lives as long as the process, so that each test asks for
// numbers of its own.
class Bundle {
public:
    explicit Bundle(const std::string& table)
    {
        pavex::SetUserLanguages({"en"});
        Replace(table);
    }
    ~Bundle() { pavex::SetAddInBundle(""); }
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    void Replace(const std::string& table)
    {
        const std::string folder = folder_ / std::to_string(++made_);
        std::filesystem::create_directories(folder + "/en.lproj");
        WriteWholeFile(folder + "/en.lproj/libtorvik.strings", table);
        pavex::SetAddInBundle(folder);
    }

private:
    TemporaryDirectory folder_;
    int made_ = 0;
};

std::wstring Text(unsigned int id)
{
    std::wstring text = L"unset";
    StringResourceMap::GetInstance()->LoadString(id, text);
    return text;
}

TEST(StringResourceMap, AsksTheBundleOnceForANumber)
{
    Bundle bundle("\"4001\" = \"first\";");
    EXPECT_EQ(Text(4001), L"first");
    bundle.Replace("\"4001\" = \"second\";");
    EXPECT_EQ(Text(4001), L"first");
}

TEST(StringResourceMap, LoadAsksAgainAndKeepsTheAnswer)
{
    Bundle bundle("\"4011\" = \"first\";");
    EXPECT_EQ(StringResourceMap::GetInstance()->Load(4011), L"first");
    bundle.Replace("\"4011\" = \"second\";");
    EXPECT_EQ(StringResourceMap::GetInstance()->Load(4011), L"second");
    EXPECT_EQ(Text(4011), L"second");
}

TEST(StringResourceMap, ReadsAnAbsentNumberAsItsDigits)
{
    const Bundle bundle("\"4021\" = \"here\";");
    EXPECT_EQ(Text(999), L"999");
    EXPECT_EQ(Text(4021), L"here");
}

TEST(StringResourceMap, IsEmptyWithoutABundle)
{
    pavex::SetAddInBundle("");
    EXPECT_EQ(Text(4031), L"");
}

TEST(StringResourceMap, KeepsSurrogatePairsAsTwoCharacters)
{
    const Bundle bundle("\"4041\" = \"A\xF0\x9F\x98\x80\";");
    EXPECT_EQ(CString(Text(4041)).toString(), "A\xF0\x9F\x98\x80");
    EXPECT_EQ(Text(4041).size(), 3U);
}

TEST(StringResourceMap, IsTheSameForEveryThread)
{
    const Bundle bundle("\"4051\" = \"shared\";\"4052\" = \"other\";");
    std::vector<std::thread> threads;
    std::vector<std::wstring> texts(4);
    for (size_t i = 0; i < texts.size(); ++i)
        threads.emplace_back([&texts, i] { texts[i] = Text(4051) + Text(4052); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(texts, std::vector<std::wstring>(4, L"sharedother"));
}

TEST(CStringLoadString, ReplacesTheText)
{
    const Bundle bundle("\"4061\" = \"loaded\";");
    CString text("before");
    EXPECT_TRUE(text.LoadString(4061));
    EXPECT_EQ(text, CString("loaded"));
}

TEST(StringResourceMap, ReleasesWhatItAsksWith)
{
    const Bundle bundle("\"4071\" = \"kept\";");
    static_cast<void>(Text(4070));  // the table is read once
    const long before = pavex::LiveObjects();
    EXPECT_EQ(Text(4071), L"kept");
    EXPECT_EQ(pavex::LiveObjects(), before);
}

}  // namespace
