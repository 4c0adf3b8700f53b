// tests/client/app/program_fixture.h: the built program, run as users run it, in a home of the test's own.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/eventually.h"
#include "tests/support/temporary_directory.h"

namespace pavex {

struct ProgramResult {
    int exit = -1;  // exit status; of a process that a signal ended: 128 + its number
    std::string out;
    std::string err;
};

// One process, its output kept in files.  Killed when it is given up unwaited for.
class Process {
public:
    Process(const std::vector<std::string>& command, const std::string& outputStem);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void Signal(int number) const;
    // What it wrote on standard error until now.
    std::string Error() const;
    ProgramResult Wait();

private:
    std::string stem_;
    pid_t pid_;
};

// Metafiles by "REPLICA/UNID.KIND".
using Metafiles = std::map<std::string, std::string>;
using MetafileTimes = std::map<std::string, std::filesystem::file_time_type>;

class ProgramHome {
public:
    // The program speaks English, whatever the language of who runs the tests.
    ProgramHome();
    // Runs pavex --home HOME with the arguments.
    ProgramResult Run(const std::vector<std::string>& arguments);
    // The same with this locale and no other word on the language.
    ProgramResult RunIn(const std::string& locale, const std::vector<std::string>& arguments);
    // As Run, expected to succeed with one JSON object and nothing on standard error.
    nlohmann::ordered_json RunJson(const std::vector<std::string>& arguments);
    // Started, not waited for.
    std::unique_ptr<Process> Start(const std::vector<std::string>& arguments);

    // Puts notes given as JSON; their ids.
    std::vector<uint32_t> Put(const std::string& database, const std::string& jsonLines);
    // Imports the sample mail and switches indexing on.
    void ImportSample();
    void Enable();
    // One pass at full speed; the object of the only database.
    nlohmann::ordered_json Index();

    Metafiles ReadMetafiles() const;
    // While an index is running, too.
    size_t CountMetafiles() const;
    MetafileTimes ReadTimes() const;
    // Files below the caches folder that are no metafiles.
    std::vector<std::string> OtherFiles() const;

    std::string Path(const std::string& name) const { return folder_ / name; }

private:
    std::filesystem::path Root() const;
    std::vector<std::string> CommandLine(const std::vector<std::string>& arguments) const;

    TemporaryDirectory folder_;
    int runs_ = 0;
};

// Fails the test unless the program ended with this status, nothing on standard output and exactly one line
// on standard error, which holds every one of the parts.
void ExpectOneClearLine(const ProgramResult& result, int exit, const std::vector<std::string>& parts);

}  // namespace pavex
