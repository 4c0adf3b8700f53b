// tests/client/foundation/bundle_test.cpp: localized texts.
#include <filesystem>
#include <thread>

#include "tests/client/foundation/foundation_fixture.h"
#include "tests/support/temporary_directory.h"

class FoundationBundle : public FoundationTest {
protected:
    void SetUp() override { pavex::SetUserLanguages({"en"}); }
    void TearDown() override
    {
        pavex::SetStringsDiagnostics(nullptr);
        pavex::SetUserLanguages({});
        FoundationTest::TearDown();
    }
    void AddTable(const std::string& language, const std::string& content, const std::string& table = "libtorvik")
    {
        const std::string folder = folder_ / (language + ".lproj");
        std::filesystem::create_directories(folder);
        WriteWholeFile(folder + "/" + table + ".strings", content);
    }
    static std::u16string Text(CFBundleRef bundle, CFStringRef key, CFStringRef value = CFSTR("(value)"),
                               CFStringRef table = CFSTR("libtorvik"))
    {
        const Owned<CFStringRef> text(CFBundleCopyLocalizedString(bundle, key, value, table));
        return TextOf(text);
    }
    Owned<CFBundleRef> MakeBundle() const { return Owned<CFBundleRef>(pavex::CreateBundle(folder_.Path().string())); }

    TemporaryDirectory folder_;
};

TEST_F(FoundationBundle, FindsTheTextOfAKey)
{
    AddTable("en", "\"101\" = \"Full Text\";\n\"102\" = \"\";");
    const auto bundle = MakeBundle();
    EXPECT_EQ(Text(bundle, CFSTR("101")), u"Full Text");
    EXPECT_EQ(Text(bundle, CFSTR("102")), u"");
}

TEST_F(FoundationBundle, FallsBackToTheValueThenTheKey)
{
    AddTable("en", "\"101\" = \"x\";");
    const auto bundle = MakeBundle();
    EXPECT_EQ(Text(bundle, CFSTR("999"), CFSTR("999")), u"999");
    EXPECT_EQ(Text(bundle, CFSTR("k"), nullptr), u"k");
    EXPECT_EQ(Text(bundle, CFSTR("k"), CFSTR("")), u"k");
    EXPECT_EQ(Text(bundle, nullptr, CFSTR("v")), u"v");
    EXPECT_EQ(Text(bundle, nullptr, CFSTR("")), u"");
    EXPECT_EQ(Text(bundle, nullptr, nullptr), u"");
    EXPECT_EQ(Text(bundle, CFSTR("101"), CFSTR("v"), CFSTR("absent")), u"v");
    EXPECT_EQ(Text(bundle, CFSTR("101"), CFSTR("v"), CFSTR("../en.lproj/libtorvik")), u"v");
}

TEST_F(FoundationBundle, NoTableNameMeansLocalizable)
{
    AddTable("en", "k = \"default\";", "Localizable");
    const auto bundle = MakeBundle();
    EXPECT_EQ(Text(bundle, CFSTR("k"), nullptr, nullptr), u"default");
    EXPECT_EQ(Text(bundle, CFSTR("k"), nullptr, CFSTR("")), u"default");
}

TEST_F(FoundationBundle, SpeaksTheUsersLanguageAndEnglishWhereThatIsSilent)
{
    AddTable("en", "1 = \"one\"; 2 = \"two\"; 3 = \"three\";");
    AddTable("de", "1 = \"eins\"; 2 = \"zwei\";");
    AddTable("de-AT", "1 = \"ans\";");
    AddTable("fr", "1 = \"un\";");
    pavex::SetUserLanguages({"de_AT.UTF-8", "fr"});
    const auto bundle = MakeBundle();
    EXPECT_EQ(Text(bundle, CFSTR("1")), u"ans");
    EXPECT_EQ(Text(bundle, CFSTR("2")), u"zwei");
    EXPECT_EQ(Text(bundle, CFSTR("3")), u"three");
    pavex::SetUserLanguages({"fr"});
    EXPECT_EQ(Text(bundle, CFSTR("1")), u"un");
    EXPECT_EQ(Text(bundle, CFSTR("2")), u"two");
    pavex::SetUserLanguages({"xx"});
    EXPECT_EQ(Text(bundle, CFSTR("1")), u"one");
}

TEST_F(FoundationBundle, WithoutAFolderEveryTextIsItsFallback)
{
    const Owned<CFBundleRef> bundle(pavex::CreateBundle((folder_ / "absent")));
    EXPECT_EQ(Text(bundle, CFSTR("1"), CFSTR("1")), u"1");
}

TEST_F(FoundationBundle, ATableWithAFaultIsReportedOnceAndItsGoodEntriesCount)
{
    AddTable("en", "1 = \"one\"; 2 = \"two\";");
    AddTable("de", "1 = \"eins\";\n2 = \"zwei\"\n3 = \"drei\";");
    pavex::SetUserLanguages({"de"});
    const auto bundle = MakeBundle();
    std::vector<std::string> reports;
    pavex::SetStringsDiagnostics([&](const std::string& file, int line, const std::string& reason) {
        reports.push_back(file + ":" + std::to_string(line) + ": " + reason);
        EXPECT_EQ(Text(bundle, CFSTR("1")), u"eins");  // asking from within does not block
    });
    EXPECT_EQ(Text(bundle, CFSTR("1")), u"eins");
    EXPECT_EQ(Text(bundle, CFSTR("2")), u"two");
    EXPECT_EQ(Text(bundle, CFSTR("3"), CFSTR("3")), u"3");
    EXPECT_EQ(reports, (std::vector<std::string>{folder_ / "de.lproj/libtorvik.strings:3: a ';' is missing"}));
}

TEST_F(FoundationBundle, ATableThatCannotBeReadIsReported)
{
    std::filesystem::create_directories(folder_ / "en.lproj/libtorvik.strings");
    std::vector<int> lines;
    pavex::SetStringsDiagnostics([&](const std::string&, int line, const std::string&) { lines.push_back(line); });
    EXPECT_EQ(Text(MakeBundle(), CFSTR("1"), CFSTR("1")), u"1");
    EXPECT_EQ(lines, std::vector<int>{0});
}

TEST_F(FoundationBundle, ATextOutlivesItsBundle)
{
    AddTable("en", "1 = \"one\";");
    Owned<CFBundleRef> bundle = MakeBundle();
    const Owned<CFStringRef> text(CFBundleCopyLocalizedString(bundle, CFSTR("1"), nullptr, CFSTR("libtorvik")));
    bundle = MakeBundle();
    EXPECT_EQ(TextOf(text), u"one");
}

TEST_F(FoundationBundle, AnswersManyThreadsAtOnce)
{
    AddTable("en", "1 = \"one\";");
    AddTable("de", "1 = \"eins\";");
    const auto bundle = MakeBundle();
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&bundle] {
            for (int k = 0; k < 300; ++k) {
                const std::u16string text = Text(bundle, CFSTR("1"));
                EXPECT_TRUE(text == u"one" || text == u"eins");
            }
        });
    }
    for (int i = 0; i < 20; ++i)
        pavex::SetUserLanguages({i % 2 ? "de" : "en"});
    for (std::thread& thread : threads)
        thread.join();
}
