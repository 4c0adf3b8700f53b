// tests/client/search/metafile_test.cpp: the texts that a result may show a piece of.
#include "client/search/metafile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

std::optional<std::vector<std::string>> TextsOf(const std::string& properties)
{
    TemporaryDirectory folder;
    const std::string path = folder / "N.vPavexNote";
    WriteWholeFile(path, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n<dict>\n" +
                             properties + "</dict>\n</plist>\n");
    return ReadMetafileTexts(path);
}

TEST(Metafile, GivesTheBodyFirstAndThenTheOtherTexts)
{
    EXPECT_THAT(*TextsOf("<key>location</key><string>Room &amp; board</string>"
                         "<key>com.quorvex.pavex.content</key><string>The body</string>"
                         "<key>status</key><integer>3</integer><key>due_date</key><date>2007-03-05T14:00:00Z</date>"
                         "<key>title</key><string>Shown by itself</string>"
                         "<key>com.quorvex.pavex.uri</key><string>Pavex:///1//2</string>"
                         "<key>com_quorvex_morvane_pavex_metafile_version</key><string>1.0.0</string>"),
                testing::ElementsAre("The body", "Room & board"));
    EXPECT_THAT(*TextsOf("<key>location</key><string>Room</string>"), testing::ElementsAre("", "Room"));
}

TEST(Metafile, LeavesOutTheTokensAfterARenderedNote)
{
    EXPECT_THAT(*TextsOf("<key>com.quorvex.pavex.content</key>"
                         "<string>The body xqzTorvikLeadingMarkervqjx  xqzTorvikDefaultMarkervqj </string>"),
                testing::ElementsAre("The body"));
}

TEST(Metafile, IsNoneWhenItIsGoneOrDamaged)
{
    EXPECT_FALSE(ReadMetafileTexts("/nowhere/N.vPavexNote"));
    EXPECT_FALSE(TextsOf("<key>title"));
    TemporaryDirectory folder;
    WriteWholeFile(folder / "empty", "");
    EXPECT_FALSE(ReadMetafileTexts(folder / "empty"));
    WriteWholeFile(folder / "other", "<html><dict><key>title</key><string>x</string></dict></html>");
    EXPECT_FALSE(ReadMetafileTexts(folder / "other"));
}

}  // namespace
}  // namespace pavex
