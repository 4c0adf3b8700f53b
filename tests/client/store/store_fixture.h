// tests/client/store/store_fixture.h: a home and a database to work in, and the C handles on it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "client/store/clock.h"
#include "client/store/host.h"
#include "client/store/timedate.h"
#include "platform/store.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/test_database.h"

constexpr uint64_t kStartHundredths = 1'700'000'000ULL * 100;

inline bool operator==(const TIMEDATE& a, const TIMEDATE& b)
{
    return a.Innards[0] == b.Innards[0] && a.Innards[1] == b.Innards[1];
}

class StoreTest : public testing::Test {
protected:
    StoreTest() : clock_(kStartHundredths)
    {
        std::string error;
        EXPECT_TRUE(pavex::StartHost(pavex::FindPlaces(dir_ / "home"), &error)) << error;
        pavex::SetClock(&clock_);
    }
    ~StoreTest() override
    {
        pavex::SetClock(nullptr);
        EXPECT_EQ(pavex::OpenHandles(), 0);
    }
    std::string NewPath() { return dir_ / ("data" + std::to_string(++files_) + ".vlt"); }

    TemporaryDirectory dir_;
    pavex::VirtualClock clock_;

private:
    int files_ = 0;
};

// A database that is open through the C calls.
class OpenedDatabase {
public:
    explicit OpenedDatabase(const std::string& path) { EXPECT_EQ(VLTDbOpen(path.c_str(), &handle_), 0); }
    ~OpenedDatabase() { EXPECT_EQ(VLTDbClose(handle_), 0); }
    OpenedDatabase(const OpenedDatabase&) = delete;
    OpenedDatabase& operator=(const OpenedDatabase&) = delete;
    operator DBHANDLE() const { return handle_; }

private:
    DBHANDLE handle_ = 0;
};

class OpenedNote {
public:
    OpenedNote(DBHANDLE db, NOTEID id) { EXPECT_EQ(VLTNoteOpen(db, id, 0, &handle_), 0); }
    ~OpenedNote() { EXPECT_EQ(VLTNoteClose(handle_), 0); }
    OpenedNote(const OpenedNote&) = delete;
    OpenedNote& operator=(const OpenedNote&) = delete;
    operator NOTEHANDLE() const { return handle_; }

private:
    NOTEHANDLE handle_ = 0;
};

inline std::vector<NOTEID> IdsOf(IDTABLE table)
{
    std::vector<NOTEID> ids;
    const auto add = [](void* context, NOTEID id) {
        static_cast<std::vector<NOTEID>*>(context)->push_back(id);
        return STATUS{0};
    };
    EXPECT_EQ(IDEnumerate(table, add, &ids), 0);
    return ids;
}

// The table of modified notes as a value: its status, ids and end time.
struct Changes {
    STATUS status = 0;
    std::vector<NOTEID> ids{};
    TIMEDATE until{};
};
inline Changes ChangesSince(DBHANDLE db, const TIMEDATE& since, WORD classMask = 1)
{
    Changes changes;
    IDTABLE table = 0;
    changes.status = VLTDbGetModifiedNoteTable(db, classMask, since, &changes.until, &table);
    if (changes.status == 0) {
        changes.ids = IdsOf(table);
        EXPECT_EQ(IDDestroyTable(table), 0);
    } else {
        EXPECT_EQ(table, 0U);
    }
    return changes;
}

constexpr TIMEDATE kMinimumTime = {{0, 0}};
