// tests/client/store/note_link_test.cpp: addresses of notes, both ways, and what the history holds.
#include "client/store/note_link.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace pavex {
namespace {

constexpr const char* kUrl = "Pavex:///8025000000000001//0123456789ABCDEF8025000000000002";

TEST(NoteLink, ReadsTheAddressThatItPrints)
{
    const std::optional<NOTELINK> link = LinkFromUrl(kUrl);
    ASSERT_TRUE(link);
    EXPECT_EQ(UrlOfNote(link->replica, link->note), kUrl);
}

TEST(NoteLink, TakesTheSchemeInAnyCaseAndBlanksAndSlashesAtTheEnd)
{
    for (const char* url : {"pavex:///8025000000000001//0123456789ABCDEF8025000000000002",
                            "PAVEX:///8025000000000001//0123456789abcdef8025000000000002",
                            "Pavex:///8025000000000001//0123456789ABCDEF8025000000000002 ",
                            "Pavex:///8025000000000001//0123456789ABCDEF8025000000000002/"}) {
        const std::optional<NOTELINK> link = LinkFromUrl(url);
        ASSERT_TRUE(link) << url;
        EXPECT_EQ(UrlOfNote(link->replica, link->note), kUrl);
    }
}

TEST(NoteLink, RefusesWhatLeadsToNoNote)
{
    for (const char* url : {"", "Pavex:///", "http:///8025000000000001//0123456789ABCDEF8025000000000002",
                            "Pavex:///8025000000000001/0123456789ABCDEF8025000000000002",
                            "Pavex:///8025000000000001//0123456789ABCDEF802500000000000",
                            "Pavex:///8025000000000001//0123456789ABCDEF802500000000000G",
                            "Pavex:///0000000000000000//0123456789ABCDEF8025000000000002",
                            "Pavex:///8025000000000001//00000000000000000000000000000000"})
        EXPECT_FALSE(LinkFromUrl(url)) << url;
}

TEST(NoteLink, AHistoryEntryLeadsWhereItWasMadeToLead)
{
    const Note entry = HistoryNote(*LinkFromUrl(kUrl), "Zebra Ä");
    const std::optional<NOTELINK> link = LinkOfHistoryNote(entry);
    ASSERT_TRUE(link);
    EXPECT_EQ(UrlOfNote(link->replica, link->note), kUrl);
    EXPECT_THAT(*TextValues(*entry.Find("Form")), testing::ElementsAre("HistoryListEntry"));
    EXPECT_THAT(*TextValues(*entry.Find("Title")), testing::ElementsAre("Zebra Ä"));
}

TEST(NoteLink, ANoteWithoutALinkIsNoHistoryEntry)
{
    Note note;
    EXPECT_FALSE(LinkOfHistoryNote(note));
    note.items = {TextItem("URL", kUrl)};
    EXPECT_FALSE(LinkOfHistoryNote(note)) << "text is no link";
    RichTextBuilder text;
    text.AddParagraph(kUrl);
    note.items = {RichTextItem("URL", text.Records())};
    EXPECT_FALSE(LinkOfHistoryNote(note));
}

}  // namespace
}  // namespace pavex
