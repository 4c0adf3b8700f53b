// tests/metastore/search_engine_fault_test.cpp: every platform call of a write fails once.
#include <gtest/gtest.h>

#include <filesystem>

#include "metastore/search_engine.h"
#include "tests/metastore/caches_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

constexpr const char* kUrl = "Pavex:///AAAA//BBBBCCCC";

class SearchEngineFault : public Caches {};

bool IsWhole(const std::string& path)
{
    const std::string content = ReadWholeFile(path);
    return content.starts_with("<?xml") && content.ends_with("</plist>\n");
}

TEST_F(SearchEngineFault, LeavesTheOldMetafileOrTheNewOneAtAnyCall)
{
    for (int failing = 1, fired = 1; fired != 0; ++failing) {
        SCOPED_TRACE(testing::Message() << "call " << failing << " fails");
        const long objects = pavex::LiveObjects();
        std::filesystem::remove_all(caches_ / "Metadata");
        {
            OwnSearchEngine engine;
            engine.SendEvent(Event(kSearchEventMessage, kUrl, "old"), 0);
            {
                const FaultPlan plan(failing);
                engine.SendEvent(Event(kSearchEventTask, kUrl, "new"), 0);
                fired = plan.Fired();
            }
            ASSERT_FALSE(Files().empty());
            for (const std::string& file : Files())
                EXPECT_TRUE(IsWhole(caches_ / file)) << file;
            // the next pass puts right what is left
            engine.SendEvent(Event(kSearchEventTask, kUrl, "again"), 0);
            EXPECT_EQ(Files(), std::vector<std::string>{std::string(kCurrentRoot) + "/AAAA/BBBBCCCC.vPavexTask"});
        }
        EXPECT_EQ(pavex::LiveObjects(), objects);
    }
}

TEST_F(SearchEngineFault, WritesNothingWhenTheFoldersCannotBeMade)
{
    OwnSearchEngine engine;
    {
        const NamedFault fault("mkdir");
        EXPECT_EQ(engine.SendEvent(Event(kSearchEventTask, kUrl, "x"), 0), kSearchEngineNoError);
    }
    EXPECT_TRUE(std::filesystem::is_empty(caches_.Path()));
}

TEST_F(SearchEngineFault, KeepsTheMetafileWhenItCannotBeTouched)
{
    OwnSearchEngine engine;
    const NamedFault fault("system");
    EXPECT_EQ(engine.SendEvent(Event(kSearchEventTask, kUrl, "x"), 0), kSearchEngineNoError);
    EXPECT_EQ(Files().size(), 1U);
}

TEST_F(SearchEngineFault, HasNoRootWhenTheCachesFolderHasNoPath)
{
    const NamedFault fault("FSRefMakePath");
    EXPECT_EQ(SearchEngine::CopyUserMetaDataFolder(), nullptr);
}

}  // namespace
