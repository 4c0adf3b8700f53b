// tests/indexers/history_test.cpp: bookmarks as metafiles, and links read from damaged records too.
#include "indexers/history.h"

#include <cstring>
#include <random>

#include "tests/indexers/indexer_fixture.h"

namespace {

constexpr const char* kTarget = "Pavex:///0000000200000001//00000004000000030000000600000005";
constexpr const char* kContentUrl = "com_quorvex_morvane_pavex_history_content_url";
constexpr size_t kFixedBytes = sizeof(LINKRECORD);

NOTELINK Link()
{
    return {{{1, 2}}, {{{70, 71}}, {{72, 73}}}, {{{3, 4}}, {{5, 6}}}, 0};
}

std::string LinkRecords(const NOTELINK& link)
{
    pavex::RichTextBuilder text;
    text.AddParagraph("See");
    text.AddLink(link, "there");
    return text.Records();
}

// The link record alone, without the paragraph before it.
std::string LinkRecord(const NOTELINK& link)
{
    pavex::RichTextBuilder text;
    text.AddLink(link, "there");
    return text.Records();
}

void SetWord(std::string& record, size_t offset, unsigned value)
{
    record[offset] = static_cast<char>(value & 0xFF);
    record[offset + 1] = static_cast<char>(value >> 8 & 0xFF);
}

// What is decoded from exactly these bytes: a read past their end is found.
std::string Decode(const std::string& record)
{
    const std::vector<char> bytes(record.begin(), record.end());
    std::vector<char> url(kLinkTextBytes, 'x');
    RLReadODSMemory(bytes.data(), static_cast<DWORD>(bytes.size()), url.data());
    return url.data();
}

class HistoryIndexer : public IndexerTest {
protected:
    std::vector<pavex::Item> Bookmark(const std::string& records)
    {
        return {TextItem("Form", "HistoryListEntry"), TextListItem("Title", {"The page", "about it"}),
                pavex::RichTextItem("URL", records)};
    }
    // No metafile, no removal, no error.
    void ExpectNothing(std::vector<pavex::Item> items)
    {
        const uint32_t id = Put(std::move(items));
        EXPECT_FALSE(Index(id, IndexHistoryNote));
        EXPECT_EQ(context_.lastStatus, 0);
        EXPECT_EQ(context_.blankResult, 0u);
        EXPECT_EQ(Extension(id), "");
    }
};

TEST_F(HistoryIndexer, WritesEveryPropertyOfABookmark)
{
    EXPECT_EQ(Indexed(Bookmark(LinkRecords(Link())), IndexHistoryNote),
              (Properties{
                  {"last_modified_time", "date 2007-03-02T09:30:00Z"},
                  {kContentUrl, kTarget},
                  {"title", "The page, about it"},
              }));
}

TEST_F(HistoryIndexer, WritesAHistoryFile)
{
    const uint32_t id = Put(Bookmark(LinkRecords(Link())));
    ASSERT_TRUE(Index(id, IndexHistoryNote));
    EXPECT_EQ(Extension(id), "vPavexHistory");
    EXPECT_EQ(context_.writtenSize, 0);
}

TEST_F(HistoryIndexer, OnlyTheFirstLinkCounts)
{
    NOTELINK other = Link();
    other.note.File.Innards[0] = 99;
    EXPECT_EQ(Indexed(Bookmark(LinkRecords(Link()) + LinkRecords(other)), IndexHistoryNote).at(kContentUrl), kTarget);
    other.note = {};
    ExpectNothing(Bookmark(LinkRecords(other) + LinkRecords(Link())));
}

TEST_F(HistoryIndexer, WritesNothingWithoutALinkToANote)
{
    ExpectNothing({TextItem("Title", "t")});
    ExpectNothing({TextItem("Title", "t"), TextItem("URL", kTarget)});
    ExpectNothing(Bookmark(""));
    pavex::RichTextBuilder text;
    text.AddParagraph(kTarget);
    ExpectNothing(Bookmark(text.Records()));
}

TEST_F(HistoryIndexer, ALinkNeedsAReplicaAndANote)
{
    const std::vector<void (*)(NOTELINK&)> missing = {
        [](NOTELINK& link) { link.replica.Innards[0] = 0; },   [](NOTELINK& link) { link.replica.Innards[1] = 0; },
        [](NOTELINK& link) { link.note.File.Innards[0] = 0; }, [](NOTELINK& link) { link.note.File.Innards[1] = 0; },
        [](NOTELINK& link) { link.note.Note.Innards[0] = 0; },
    };
    for (auto* clear : missing) {
        NOTELINK link = Link();
        clear(link);
        ExpectNothing(Bookmark(LinkRecords(link)));
    }
    // The view is not asked for, nor the last word of the note.
    NOTELINK link = Link();
    link.view = {};
    link.note.Note.Innards[1] = 0;
    EXPECT_EQ(Decode(LinkRecord(link)), "Pavex:///0000000200000001//00000004000000030000000000000005 ");
}

TEST_F(HistoryIndexer, DecodesTheFourRecordsThatCarryLinks)
{
    for (const int signature : {-10, -166, -143, -136}) {
        std::string record = LinkRecord(Link());
        SetWord(record, 0, static_cast<unsigned>(signature) & 0xFFFF);
        EXPECT_EQ(Decode(record), std::string(kTarget) + " ") << signature;
    }
    for (const int signature : {-11, 10, 0, -135}) {
        std::string record = LinkRecord(Link());
        SetWord(record, 0, static_cast<unsigned>(signature) & 0xFFFF);
        EXPECT_EQ(Decode(record), "") << signature;
    }
}

TEST_F(HistoryIndexer, RejectsOtherTypesAndLinksKeptElsewhere)
{
    std::string otherType = LinkRecord(Link());
    SetWord(otherType, offsetof(LINKRECORD, linkType), 3);
    EXPECT_EQ(Decode(otherType), "");
    std::string elsewhere = LinkRecord(Link());
    const size_t flags = offsetof(LINKRECORD, flags);
    elsewhere[flags] = static_cast<char>(elsewhere[flags] & ~2);
    EXPECT_EQ(Decode(elsewhere), "");
    elsewhere[flags + 1] = 2;  // only the low byte counts
    EXPECT_EQ(Decode(elsewhere), "");
}

TEST_F(HistoryIndexer, SkipsTheVariablePartsBeforeTheLink)
{
    std::string record = LinkRecord(Link());
    SetWord(record, offsetof(LINKRECORD, firstCount), 3);
    SetWord(record, offsetof(LINKRECORD, secondCount), 2);
    record.insert(kFixedBytes, std::string(10, '\x7f'));
    EXPECT_EQ(Decode(record), std::string(kTarget) + " ");
    for (const unsigned count : {6u, 100u, 65535u}) {
        SetWord(record, offsetof(LINKRECORD, firstCount), count);
        SetWord(record, offsetof(LINKRECORD, secondCount), 65535);
        EXPECT_EQ(Decode(record), "") << count;
    }
}

TEST_F(HistoryIndexer, ARecordThatIsCutOffHoldsNoLink)
{
    const std::string record = LinkRecord(Link());
    ASSERT_GE(record.size(), kFixedBytes + sizeof(NOTELINK));
    for (size_t bytes = 0; bytes < kFixedBytes + sizeof(NOTELINK); ++bytes)
        EXPECT_EQ(Decode(record.substr(0, bytes)), "") << bytes;
    EXPECT_EQ(Decode(record.substr(0, kFixedBytes + sizeof(NOTELINK))), std::string(kTarget) + " ");
}

TEST_F(HistoryIndexer, TheWalkEndsAtTheFirstLinkRecord)
{
    char url[kLinkTextBytes] = "before";
    const std::string record = LinkRecord(Link());
    EXPECT_EQ(iSiteMapCDEnumProc(record.data(), 65425, static_cast<DWORD>(record.size()), url), 0);
    EXPECT_STREQ(url, "before");
    EXPECT_EQ(iSiteMapCDEnumProc(record.data(), 65526, static_cast<DWORD>(record.size()), url), 413);
    EXPECT_EQ(url, std::string(kTarget) + " ");
    EXPECT_EQ(iSiteMapCDEnumProc(record.data(), 65526, 6, url), 413);
    EXPECT_STREQ(url, "");
}

TEST_F(HistoryIndexer, AnItemCutAnywhereIsIndexedOrLeftButNeverMore)
{
    const std::string records = LinkRecords(Link());
    for (size_t bytes = 0; bytes <= records.size(); ++bytes) {
        const uint32_t id = Put(Bookmark(records.substr(0, bytes)));
        if (Index(id, IndexHistoryNote))
            EXPECT_EQ(Metafile(id).at(kContentUrl), kTarget) << bytes;
        else
            EXPECT_EQ(Extension(id), "") << bytes;
        EXPECT_EQ(Extension(id).empty(), bytes != records.size()) << bytes;
    }
}

TEST_F(HistoryIndexer, AnItemWithFlippedBytesDoesNoHarm)
{
    const std::string whole = LinkRecord(Link());
    std::mt19937 random(20070310);
    for (int round = 0; round < 2000; ++round) {
        std::string records = whole;
        for (unsigned flips = 1 + random() % 4; flips > 0; --flips)
            records[random() % records.size()] = static_cast<char>(random());
        const std::string url = Decode(records);
        if (!url.empty()) {
            EXPECT_EQ(url.substr(0, 9), "Pavex:///");
            EXPECT_EQ(url.size(), strlen(kTarget) + 1);
        }
    }
    for (size_t at = 0; at < kFixedBytes; ++at) {
        std::string records = whole;
        records[at] = static_cast<char>(~records[at]);
        const uint32_t id = Put(Bookmark(records));
        const bool indexed = Index(id, IndexHistoryNote);
        EXPECT_EQ(Extension(id), indexed ? "vPavexHistory" : "") << at;
    }
}

}  // namespace
