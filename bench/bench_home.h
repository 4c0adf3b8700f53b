// bench/bench_home.h: a home with mailboxes for measurements, and the measuring itself.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "client/store/note.h"

// A home in a new temporary folder, removed at the end; the client's host runs on it.
class BenchHome {
public:
    BenchHome();
    ~BenchHome();
    BenchHome(const BenchHome&) = delete;
    BenchHome& operator=(const BenchHome&) = delete;

    std::string PathOf(const std::string& file) const;  // in the data directory
    std::string MetadataRoot() const;
    void Set(const std::string& variable, const std::string& value);

private:
    std::filesystem::path folder_;
};

// A database of `count` notes, each made from its number, in transactions of some thousands.
void MakeDatabase(const std::string& path, int count, pavex::Note (*make)(int number));
// The same of messages of about 2 KB.
void MakeMailbox(const std::string& path, int count);
// Changes the subjects of `count` notes spread over the database.
void ChangeNotes(const std::string& path, int count);

struct Measure {
    double wallMs;
    double ownCpuMs;    // of this process
    double childCpuMs;  // of its children that have ended
};
Measure MeasureOnce(const std::function<void()>& work);
double Median(std::vector<double> values);

// Runs work in a child process; its peak memory in kilobytes and the measure of the work alone.
struct ChildMeasure {
    Measure measure;
    long peakKb;
};
ChildMeasure MeasureInChild(const std::function<void()>& work);

// argv[1] as a number, or the default.
int CountArgument(int argc, char** argv, int defaultCount);
// Prints "name: value (limit ...)"; when judge, tells whether it holds.
bool Report(const std::string& name, double value, double limit, bool judge);
