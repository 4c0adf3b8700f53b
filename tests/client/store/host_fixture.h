// tests/client/store/host_fixture.h: a host with its places in a folder of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "client/store/clock.h"
#include "client/store/host.h"
#include "client/store/open_note.h"
#include "tests/support/temporary_directory.h"

class HostFixture : public testing::Test {
protected:
    HostFixture() : handlesBefore_(pavex::OpenHandles())
    {
        std::string problem;
        EXPECT_TRUE(pavex::StartHost(pavex::FindPlaces(dir.Path().string()), &problem)) << problem;
    }
    ~HostFixture() override
    {
        pavex::ClearOverrides();
        (void)pavex::TakeFailedWrite();  // what the test made fail
        pavex::SetLogObserver(nullptr);
        pavex::SetClock(nullptr);
        pavex::SetAddInBundle("");
        for (const NOTEHANDLE note : notes_)
            VLTNoteClose(note);
        EXPECT_EQ(pavex::OpenHandles(), handlesBefore_);
    }

    // A note in memory; closed with the test.
    NOTEHANDLE NoteWith(const std::vector<pavex::Item>& items)
    {
        auto note = std::make_unique<pavex::OpenNote>(nullptr, 0);
        for (const pavex::Item& item : items)
            note->Set(item);
        notes_.push_back(pavex::OpenNotes().Add(std::move(note)));
        return notes_.back();
    }

    TemporaryDirectory dir;

private:
    int handlesBefore_;
    std::vector<NOTEHANDLE> notes_;
};
