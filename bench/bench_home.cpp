// bench/bench_home.cpp: a home with mailboxes for measurements, and the measuring itself.
#include "bench/bench_home.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "client/foundation/host.h"
#include "client/store/database.h"
#include "client/store/host.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace fs = std::filesystem;

namespace {

constexpr int kNotesPerTransaction = 5000;

void Require(STATUS status)
{
    if (status != 0)
        throw std::runtime_error(pavex::DescribeStatus(status));
}

pavex::Note Message(int number)
{
    pavex::RichTextBuilder body;
    for (int line = 0; line < 20; ++line)
        body.AddParagraph("Line " + std::to_string(line) + " of message " + std::to_string(number) +
                          " talks about the harvest, the weather and the price of apples this year.");
    pavex::Note note;
    note.items = {pavex::TextItem("Form", "Memo"),
                  pavex::TextItem("Subject", "Message " + std::to_string(number)),
                  pavex::TextItem("From", "Ann Lee <ann@example.org>"),
                  pavex::TextListItem("SendTo", {"Bo Chen <bo@example.org>", "Cy Diaz <cy@example.org>"}),
                  pavex::TextListItem("CopyTo", {"CN=Di Evans/O=Acme"}),
                  pavex::TimeItem("PostedDate", pavex::TimeFromUnix(1'164'000'000 + number)),
                  pavex::RichTextItem("Body", body.Records())};
    return note;
}

double Milliseconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) * 1000.0 + static_cast<double>(time.tv_usec) / 1000.0;
}

double CpuMs(int who)
{
    rusage usage = {};
    getrusage(who, &usage);
    return Milliseconds(usage.ru_utime) + Milliseconds(usage.ru_stime);
}

}  // namespace

BenchHome::BenchHome()
{
    std::string name = (fs::temp_directory_path() / "torvik-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    folder_ = name;
    const auto place = [this](const char* file) { return (folder_ / file).string(); };
    std::string error;
    if (!pavex::StartHost(
            {place("pavex.ini"), place("policy.ini"), place("data"), place("caches"), place("log/pavex.log")}, &error))
        throw std::runtime_error(error);
    pavex::SetPowerSupplyRoot(place("no-batteries"));
    Set("GDSIndexEnabled", "1");
}

BenchHome::~BenchHome()
{
    std::error_code ignored;  // what is left in a temporary folder is the system's to clear
    fs::remove_all(folder_, ignored);
}

std::string BenchHome::PathOf(const std::string& file) const
{
    return (folder_ / "data" / file).string();
}

std::string BenchHome::MetadataRoot() const
{
    return (folder_ / "caches/Metadata/Quorvex/Pavex/Spotlight").string();
}

void BenchHome::Set(const std::string& variable, const std::string& value)
{
    if (!pavex::SetVariable(variable, value))
        throw std::runtime_error("cannot write the ini file");
}

void MakeDatabase(const std::string& path, int count, pavex::Note (*make)(int number))
{
    std::unique_ptr<pavex::Database> database;
    Require(pavex::Database::Create(path, "Bench", &database));
    for (int done = 0; done < count;) {
        Require(database->Begin());
        for (int i = 0; i < kNotesPerTransaction && done < count; ++i, ++done) {
            pavex::Note note = make(done);
            Require(database->Put(&note));
        }
        Require(database->Commit());
    }
}

void MakeMailbox(const std::string& path, int count)
{
    MakeDatabase(path, count, Message);
}

void ChangeNotes(const std::string& path, int count)
{
    std::unique_ptr<pavex::Database> database;
    Require(pavex::Database::Open(path, &database));
    uint64_t total = 0;
    Require(database->CountNotes(&total));
    for (int i = 0; i < count; ++i) {
        pavex::Note note;
        Require(database->Get(
            static_cast<uint32_t>(1 + static_cast<uint64_t>(i) * total / static_cast<uint64_t>(count)), &note));
        note.Set(pavex::TextItem("Subject", "Changed"));
        Require(database->Put(&note));
    }
}

Measure MeasureOnce(const std::function<void()>& work)
{
    const double own = CpuMs(RUSAGE_SELF);
    const double children = CpuMs(RUSAGE_CHILDREN);
    const auto start = std::chrono::steady_clock::now();
    std::thread(work).join();  // as the add-in works: not on the client's main thread
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    return {wall.count(), CpuMs(RUSAGE_SELF) - own, CpuMs(RUSAGE_CHILDREN) - children};
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

ChildMeasure MeasureInChild(const std::function<void()>& work)
{
    void* const shared = mmap(nullptr, sizeof(Measure), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED)
        throw std::runtime_error("no shared memory");
    const pid_t child = fork();
    if (child == 0) {
        *static_cast<Measure*>(shared) = MeasureOnce(work);
        _exit(0);
    }
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    const Measure measure = *static_cast<Measure*>(shared);
    munmap(shared, sizeof(Measure));
    if (status != 0)
        throw std::runtime_error("a measured process failed");
    return {measure, usage.ru_maxrss};
}

int CountArgument(int argc, char** argv, int defaultCount)
{
    return argc > 1 ? std::atoi(argv[1]) : defaultCount;
}

bool Report(const std::string& name, double value, double limit, bool judge)
{
    const bool holds = value <= limit;
    std::printf("%-60s %10.3f  (limit %.3f)%s\n", name.c_str(), value, limit,
                !judge  ? ""
                : holds ? "  holds"
                        : "  EXCEEDED");
    std::fflush(stdout);
    return holds || !judge;
}
