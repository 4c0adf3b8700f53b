// tests/metastore/search_engine_event_test.cpp: what an event's dictionary holds.
#include "metastore/search_engine_event.h"

#include <gtest/gtest.h>

#include "client/foundation/host.h"
#include "metastore/search_engine.h"
#include "platform/owner.h"

namespace {

constexpr const char* kVersionKey = "com_quorvex_morvane_pavex_metafile_version";

const void* Value(const SearchEngineEvent& event, const char* key)
{
    const CFOwner<CFStringRef> name(CString(key).toCFStringRef());
    return CFDictionaryGetValue(event.Properties(), name.Get());
}

CString Text(const SearchEngineEvent& event, const char* key)
{
    return CString(static_cast<CFStringRef>(Value(event, key)));
}

TEST(SearchEngineEvent, BeginsWithTheVersionAndNothingElse)
{
    const SearchEngineEvent event(kSearchEventTask);
    EXPECT_EQ(CFDictionaryGetCount(event.Properties()), 1);
    EXPECT_EQ(Text(event, kVersionKey), CString("1.0.0"));
    EXPECT_EQ(event.Type(), kSearchEventTask);
}

TEST(SearchEngineEvent, IsWhatTheStoreCreates)
{
    SearchEngineResult result = kSearchEngineParamErr;
    const SearchEngineEvent event = SearchEngine::GetInstance()->CreateEvent(kSearchEventContact, result);
    EXPECT_EQ(result, kSearchEngineNoError);
    EXPECT_EQ(event.Type(), kSearchEventContact);
    EXPECT_EQ(CFDictionaryGetCount(event.Properties()), 1);
}

TEST(SearchEngineEvent, KeepsTheFirstValueOfAKey)
{
    SearchEngineEvent event(kSearchEventMessage);
    EXPECT_EQ(event.AddProperty("title", "a"), kSearchEngineNoError);
    EXPECT_EQ(event.AddProperty("title", "b"), kSearchEngineNoError);
    EXPECT_EQ(event.AddProperty("title", 1.0), kSearchEngineNoError);
    EXPECT_EQ(Text(event, "title"), CString("a"));
    EXPECT_EQ(CFDictionaryGetCount(event.Properties()), 2);
}

TEST(SearchEngineEvent, StoresNumbersAsSignedThirtyTwoBits)
{
    SearchEngineEvent event(kSearchEventTask);
    event.AddProperty("large", 4294967295U);
    event.AddProperty("small", 7U);
    int large = 0;
    int small = 0;
    EXPECT_TRUE(CFNumberGetValue(static_cast<CFNumberRef>(Value(event, "large")), kCFNumberIntType, &large));
    EXPECT_TRUE(CFNumberGetValue(static_cast<CFNumberRef>(Value(event, "small")), kCFNumberIntType, &small));
    EXPECT_EQ(large, -1);
    EXPECT_EQ(small, 7);
}

TEST(SearchEngineEvent, StoresDoublesAsDates)
{
    SearchEngineEvent event(kSearchEventMessage);
    event.AddProperty("received", 194796000.0);
    EXPECT_EQ(CFDateGetAbsoluteTime(static_cast<CFDateRef>(Value(event, "received"))), 194796000.0);
}

TEST(SearchEngineEvent, AddsEmptyTextsToo)
{
    SearchEngineEvent event(kSearchEventMessage);
    event.AddProperty("from", "");
    event.AddProperty("to", CString("\xC3"));  // malformed UTF-8 is an empty text
    event.AddProperty("", "no key");
    EXPECT_EQ(CFDictionaryGetCount(event.Properties()), 4);
    ASSERT_NE(Value(event, "from"), nullptr);
    EXPECT_TRUE(Text(event, "from").IsEmpty());
    EXPECT_TRUE(Text(event, "to").IsEmpty());
    EXPECT_EQ(Text(event, ""), CString("no key"));
}

TEST(SearchEngineEvent, ReplacesWhatNoXmlTextCanHold)
{
    SearchEngineEvent event(kSearchEventMessage);
    event.AddProperty("title", CString(std::wstring(L"a\x1\t\n\xD83D\xDE00\xD83D|\xDE00\xFFFE")));
    EXPECT_EQ(Text(event, "title").GetWString(), L"a\xFFFD\t\n\xD83D\xDE00\xFFFD|\xFFFD\xFFFD");
}

TEST(SearchEngineEvent, LooksAtPairsAnewBehindEveryReplacement)
{
    SearchEngineEvent event(kSearchEventMessage);
    event.AddProperty("title", CString(std::wstring(L"\xD83D\xD83D\xDE00\xDE00\x1\xDE00\xD83D")));
    EXPECT_EQ(Text(event, "title").GetWString(), L"\xFFFD\xD83D\xDE00\xFFFD\xFFFD\xFFFD\xFFFD");
}

TEST(SearchEngineEvent, IsValidUnlessItIsNone)
{
    for (uint32_t type = 0; type < 12; ++type)
        EXPECT_EQ(SearchEngineEvent(static_cast<SearchEngineEventType>(type)).IsValid(), type != 8) << type;
}

TEST(SearchEngineEvent, CopiesHaveADictionaryOfTheirOwn)
{
    SearchEngineEvent event(kSearchEventJournal);
    event.AddProperty("title", "shared");
    SearchEngineEvent copy(event);
    copy.AddProperty("more", "copy only");
    event.AddProperty("other", "first only");
    EXPECT_EQ(copy.Type(), kSearchEventJournal);
    EXPECT_EQ(Text(copy, "title"), CString("shared"));
    EXPECT_EQ(Value(event, "more"), nullptr);
    EXPECT_EQ(Value(copy, "other"), nullptr);
    EXPECT_EQ(CFDictionaryGetCount(event.Properties()), 3);
    EXPECT_EQ(CFDictionaryGetCount(copy.Properties()), 3);
}

TEST(SearchEngineEvent, ReportsSuccessWhateverBecomesOfTheMetafile)
{
    SearchEngineEvent event(kSearchEventMessage);  // without a URL there is no place to write to
    int error = 99;
    EXPECT_EQ(event.Send(0, &error), kSearchEngineNoError);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(event.Send(0, nullptr), kSearchEngineNoError);
}

TEST(SearchEngineEvent, ReleasesWhatItHolds)
{
    const long before = pavex::LiveObjects();
    {
        SearchEngineEvent event(kSearchEventNote);
        event.AddProperty("title", "a");
        event.AddProperty("title", "b");
        event.AddProperty("received", 1.5);
        event.AddProperty("rank", 3U);
        const SearchEngineEvent copy(event);
        static_cast<void>(copy.IsValid());
    }
    EXPECT_EQ(pavex::LiveObjects(), before);
}

}  // namespace
