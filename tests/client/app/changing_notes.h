// tests/client/app/changing_notes.h: a database that is changed all the while, for tests that interrupt the indexing.
#pragma once

#include <atomic>
#include <random>
#include <thread>

#include "tests/client/app/program_fixture.h"

namespace pavex {

// The first versions of `count` notes, put into mail.vlt.
void PutFirstVersions(ProgramHome& home, int count);

// Changes the notes, into other kinds too, and deletes some, through the program, until destroyed.
class Changer {
public:
    // home: borrowed, and meanwhile nobody else's to run programs with.
    Changer(ProgramHome& home, int notes, unsigned seed);
    ~Changer();
    Changer(const Changer&) = delete;
    Changer& operator=(const Changer&) = delete;

private:
    int Draw(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }
    void Run();

    ProgramHome& home_;
    const int notes_;
    std::mt19937 random_;
    std::atomic<bool> ended_{false};
    std::thread thread_;
};

// Makes one whole pass.  Fails the test unless the metafiles are then what an undisturbed pass over the same
// database gives, with no other file beside them and nothing left to do.
void ExpectAWholePassPutsItRight(ProgramHome& home);

}  // namespace pavex
