// tests/client/windows/chosen_path_test.cpp
#include "client/windows/chosen_path.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "client/store/host.h"
#include "tests/support/temporary_directory.h"

namespace {

class ChosenPath : public testing::Test {
protected:
    ChosenPath() : before_(std::filesystem::current_path())
    {
        pavex::Places places;
        places.ini = dir_ / "pavex.ini";
        places.policy = dir_ / "policy.ini";
        places.data = dir_ / "data";
        places.caches = dir_ / "caches";
        places.log = dir_ / "pavex.log";
        std::string error;
        EXPECT_TRUE(pavex::StartHost(places, &error)) << error;
        std::filesystem::create_directory(dir_ / "work");
        std::filesystem::current_path(dir_ / "work");
    }
    ~ChosenPath() override { std::filesystem::current_path(before_); }

    TemporaryDirectory dir_;
    std::filesystem::path before_;
};

TEST_F(ChosenPath, KeepsAbsolutePathsAndServers)
{
    EXPECT_EQ(pavex::ChosenPath("/a/b.vlt"), "/a/b.vlt");
    EXPECT_EQ(pavex::ChosenPath("//server/b.vlt"), "//server/b.vlt");
    EXPECT_EQ(pavex::ChosenPath(""), "");
}

TEST_F(ChosenPath, PrefersAFileInTheWorkingFolder)
{
    WriteWholeFile(dir_ / "work/here.vlt", "");
    EXPECT_EQ(pavex::ChosenPath("./here.vlt"), std::filesystem::current_path() / "here.vlt");
}

TEST_F(ChosenPath, TakesAnyOtherNameFromTheDataDirectory)
{
    EXPECT_EQ(pavex::ChosenPath("mail.vlt"), dir_ / "data/mail.vlt");
}

}  // namespace
