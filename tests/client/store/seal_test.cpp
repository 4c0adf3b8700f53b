// tests/client/store/seal_test.cpp: encryption with the user's key.
#include "client/store/seal.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>
#include <vector>

#include "tests/client/store/host_fixture.h"

using namespace pavex;

class Seal : public HostFixture {
protected:
    std::string KeyPath() const { return CurrentPlaces().data + "/seal.key"; }
};

TEST_F(Seal, OpensWhatItSealed)
{
    for (const std::string& plain :
         {std::string(), std::string("secret"), std::string("a\0b", 3), std::string(200000, 'x')}) {
        std::string sealed;
        std::string opened = "old";
        ASSERT_TRUE(SealValue(plain, &sealed));
        EXPECT_EQ(sealed.find("secret"), std::string::npos);
        ASSERT_EQ(UnsealValue(sealed, &opened), kStatusOk);
        EXPECT_EQ(opened, plain);
    }
    std::string first;
    std::string second;
    ASSERT_TRUE(SealValue("same", &first) && SealValue("same", &second));
    EXPECT_NE(first, second);
}

TEST_F(Seal, MakesAPrivateKeyOnlyWhenSomethingIsSealed)
{
    std::string opened = "old";
    EXPECT_EQ(UnsealValue("PVS1" + std::string(60, 'x'), &opened), kStatusSealed);
    EXPECT_FALSE(std::filesystem::exists(KeyPath()));
    std::string sealed;
    ASSERT_TRUE(SealValue("x", &sealed));
    struct stat status {};
    ASSERT_EQ(stat(KeyPath().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(status.st_size, 32);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(CurrentPlaces().data), {}), 1);
}

TEST_F(Seal, NoticesEveryChangedByteAndEveryCut)
{
    std::string sealed;
    ASSERT_TRUE(SealValue("secret", &sealed));
    for (size_t i = 0; i < sealed.size(); ++i) {
        std::string changed = sealed;
        changed[i] = static_cast<char>(changed[i] ^ 1);
        std::string opened = "old";
        EXPECT_EQ(UnsealValue(changed, &opened), i < 4 ? kStatusDamaged : kStatusSealed);
        EXPECT_NE(UnsealValue(sealed.substr(0, i), &opened), kStatusOk);
        EXPECT_EQ(opened, "old");
    }
}

TEST_F(Seal, StaysShutWithoutTheFittingKey)
{
    std::string sealed;
    std::string opened;
    ASSERT_TRUE(SealValue("secret", &sealed));
    WriteWholeFile(KeyPath(), std::string(32, 'k'));
    EXPECT_EQ(UnsealValue(sealed, &opened), kStatusSealed);
    WriteWholeFile(KeyPath(), "short");
    EXPECT_EQ(UnsealValue(sealed, &opened), kStatusSealed);
    EXPECT_FALSE(SealValue("more", &sealed));  // never over a key that something may be sealed with
    EXPECT_EQ(ReadWholeFile(KeyPath()), "short");
}

TEST_F(Seal, FailsWhereNoKeyCanBeMade)
{
    std::filesystem::remove_all(CurrentPlaces().data);
    std::string sealed = "old";
    EXPECT_FALSE(SealValue("x", &sealed));
    EXPECT_EQ(sealed, "old");
}

TEST_F(Seal, AgreesOnOneKeyWhenSeveralThreadsSealFirst)
{
    std::vector<std::string> sealed(8);
    std::vector<std::thread> threads;
    for (std::string& one : sealed)
        threads.emplace_back([&one] { EXPECT_TRUE(SealValue("x", &one)); });
    for (std::thread& thread : threads)
        thread.join();
    std::string opened;
    for (const std::string& one : sealed)
        EXPECT_EQ(UnsealValue(one, &opened), kStatusOk);
}
