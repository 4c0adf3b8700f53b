// tests/client/app/commands_test.cpp: the table of subcommands, held against the man pages.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "client/app/command.h"
#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

// Pages name options of every command once, in pavex(1).
const std::set<std::string> kCommonOptions = {"help", "home"};

std::string ManPage(const std::string& command)
{
    return ReadWholeFile(TORVIK_SOURCE_DIR "/man/pavex-" + command + ".1");
}

std::set<std::string> OptionsOfPage(const std::string& page)
{
    static const std::regex kOption("Fl -([a-z][a-z-]*)");
    std::set<std::string> names;
    for (std::sregex_iterator match(page.begin(), page.end(), kOption), end; match != end; ++match)
        names.insert((*match)[1]);
    for (const std::string& common : kCommonOptions)
        names.erase(common);
    return names;
}

// Of a command and those below it.
void CollectOptions(CLI::App& options, std::set<std::string>* names)
{
    for (const CLI::Option* option : options.get_options())
        for (const std::string& name : option->get_lnames())
            if (!kCommonOptions.contains(name))
                names->insert(name);
    for (CLI::App* sub : options.get_subcommands(nullptr))
        CollectOptions(*sub, names);
}

TEST(Commands, AreNamedOnceAndSummedUp)
{
    std::set<std::string> names;
    for (const CommandRow& row : Commands()) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_STRNE(row.summary, "");
    }
    EXPECT_EQ(names, (std::set<std::string>{"check", "desktop", "explain", "history", "import", "index", "note", "open",
                                            "run", "search", "settings", "status", "watch"}));
}

TEST(Commands, HaveAManPageThatNamesExactlyTheirOptions)
{
    for (const CommandRow& row : Commands()) {
        SCOPED_TRACE(row.name);
        CLI::App options;
        (void)row.configure(options);
        std::set<std::string> names;
        CollectOptions(options, &names);
        const std::string page = ManPage(row.name);
        EXPECT_EQ(OptionsOfPage(page), names);
        EXPECT_THAT(page, testing::HasSubstr(std::string(".Nd ") + row.summary));
    }
}

TEST(Commands, AreListedInTheMainManPage)
{
    const std::string page = ReadWholeFile(TORVIK_SOURCE_DIR "/man/pavex.1");
    for (const CommandRow& row : Commands())
        EXPECT_THAT(page, testing::HasSubstr(std::string("pavex-") + row.name)) << row.name;
}

}  // namespace
}  // namespace pavex
