// bench/search.cpp: how long pavex search takes on an index that is up to date, and what bringing a large index up to
// date costs in memory beside a small one.
// search [METAFILES]: the large folder's size, the small one has a fifth; searches are timed on half of the large one.
// Judged from 100000 metafiles up.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <stdexcept>

#include "bench/bench_home.h"

namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

constexpr double kMostMs = 150;
constexpr double kMostGrowth = 1.25;  // times
constexpr int kRounds = 7;
constexpr int kChanges = 200;
constexpr int kFolders = 5;

class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string name = (fs::temp_directory_path() / "torvik-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    ~TemporaryFolder()
    {
        std::error_code left;
        fs::remove_all(path_, left);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const fs::path& Path() const { return path_; }

private:
    fs::path path_;
};

// A message of about 1 KB in words that are as unevenly common as those of a language.
std::string Metafile(int number, int version)
{
    std::mt19937 random(static_cast<unsigned>(number));
    std::string body = version == 0 ? "" : "changed" + std::to_string(version) + " ";
    for (int word = 0; word < 120; ++word) {
        const double rank = std::generate_canonical<double, 32>(random);
        body += "w" + std::to_string(static_cast<int>(30000 * rank * rank * rank)) + (word % 12 == 11 ? ".\n" : " ");
    }
    const int day = 1 + number % 28;
    const int month = 1 + number / 28 % 12;
    const int year = 1990 + number / 336 % 35;
    char line[2000];
    (void)std::snprintf(line, sizeof line,
                        "<key>received</key><date>%04d-%02d-%02dT12:00:00Z</date><key>from</key><string>Ann Lee "
                        "&lt;ann%d@example.org&gt;</string><key>subject</key><string>harvest unique%d%s</string>"
                        "<key>com.quorvex.pavex.uri</key><string>Pavex:///%016X//%032X</string>",
                        year, month, day, number % 100, number, number % 100 == 0 ? " hundredth" : "",
                        number % kFolders + 1, number + 1);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + std::string(line) +
           "<key>com.quorvex.pavex.content</key><string>" + body + "</string></dict></plist>\n";
}

// Written beside and renamed, as the add-in does.
void WriteMetafile(const fs::path& home, int number, int version)
{
    char place[80];
    (void)std::snprintf(place, sizeof place, "%016X/%032X.vPavexMessage", number % kFolders + 1, number + 1);
    const fs::path path = home / "caches/Metadata/Quorvex/Pavex/Spotlight" / place;
    const fs::path beside = path.parent_path() / ".new";
    fs::create_directories(path.parent_path());
    std::ofstream(beside) << Metafile(number, version);
    fs::rename(beside, path);
}

struct Run {
    double wallMs;
    double cpuMs;  // of all its processes
    long peakKb;   // of the largest of them
};

double Ms(const timeval& time)
{
    return static_cast<double>(time.tv_sec) * 1000.0 + static_cast<double>(time.tv_usec) / 1000.0;
}

Run Search(const fs::path& home, const Words& arguments)
{
    const std::string program = TORVIK_BINARY_DIR "/bin/pavex";
    Words words = {program, "--home", home.string(), "search", "--json"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, (home / "answer").c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     S_IRUSR | S_IWUSR);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, (home / "errors").c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     S_IRUSR | S_IWUSR);
    const auto start = std::chrono::steady_clock::now();
    pid_t process = 0;
    if (posix_spawn(&process, pointers[0], &files, nullptr, pointers.data(), environ) != 0)
        throw std::runtime_error("cannot run pavex");
    posix_spawn_file_actions_destroy(&files);
    int status = 0;
    rusage usage{};
    wait4(process, &status, 0, &usage);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (status != 0)
        throw std::runtime_error("pavex search failed");
    return {time.count(), Ms(usage.ru_utime) + Ms(usage.ru_stime), usage.ru_maxrss};
}

int CountAnswers(const fs::path& home)
{
    std::ifstream file(home / "answer");
    int count = 0;
    for (std::string line; std::getline(file, line);)
        ++count;
    return count;
}

// Fails the measurement when the answer is not what it should be: a fast wrong one is worth nothing.
void Expect(const fs::path& home, const Words& arguments, int count)
{
    (void)Search(home, arguments);
    if (const int found = CountAnswers(home); found != count)
        throw std::runtime_error(arguments.back() + ": " + std::to_string(found) + " answers in place of " +
                                 std::to_string(count));
}

struct UpdateFigures {
    Run whole;    // everything is new
    Run changed;  // a few notes are
};

UpdateFigures MeasureUpdates(const fs::path& home, int from, int to)
{
    for (int number = from; number < to; ++number)
        WriteMetafile(home, number, 0);
    UpdateFigures figures{};
    figures.whole = Search(home, {"unique1"});
    const int changes = std::min(kChanges, to / 2);
    for (int change = 0; change < changes; ++change)
        WriteMetafile(home, change * (to / changes), to);
    figures.changed = Search(home, {"unique1"});
    Expect(home, {"--limit", "100000", "changed" + std::to_string(to)}, changes);
    std::printf("%d metafiles: all read in %.1f s, %d changed ones in %.1f s, at most %.1f MB\n", to,
                figures.whole.wallMs / 1000, changes, figures.changed.wallMs / 1000,
                static_cast<double>(std::max(figures.whole.peakKb, figures.changed.peakKb)) / 1024);
    return figures;
}

bool MeasureSearches(const fs::path& home, int count, bool judge)
{
    struct Row {
        const char* name;
        Words arguments;
        int answers;
    };
    const Row rows[] = {
        {"a word of one note", {"unique7"}, 1},
        {"a word of every hundredth note", {"hundredth"}, std::min(20, (count + 99) / 100)},
        {"a word of all notes", {"harvest"}, 20},
        {"two common words", {"harvest", "w1"}, 20},
        {"a field", {"from:ann7"}, std::min(20, (count + 92) / 100)},
        {"a kind and a time", {"--kind", "mail", "--before", "2001-01-01", "harvest"}, 20},
        {"words that stand together", {"harvest unique9"}, 1},
        {"a beginning", {"unique12*"}, std::min(20, 1 + 10 * (count > 120) + 100 * (count > 1200))},
        {"nothing", {"nowhere"}, 0},
    };
    bool holds = true;
    for (const Row& row : rows) {
        Expect(home, row.arguments, row.answers);
        std::vector<double> wall;
        std::vector<double> cpu;
        for (int round = 0; round < kRounds; ++round) {
            const Run run = Search(home, row.arguments);
            wall.push_back(run.wallMs);
            cpu.push_back(run.cpuMs);
        }
        std::printf("%s: %.1f ms of processor time\n", row.name, Median(cpu));
        holds = Report(std::string("pavex search, ms: ") + row.name, Median(wall), kMostMs, judge) && holds;
    }
    return holds;
}

bool MeasureAll(int count)
{
    const bool judge = count >= 100000;
    const TemporaryFolder small;
    const TemporaryFolder large;
    const UpdateFigures less = MeasureUpdates(small.Path(), 0, count / 5);
    (void)MeasureUpdates(large.Path(), 0, count / 2);
    const bool isFast = MeasureSearches(large.Path(), count / 2, judge);
    const UpdateFigures more = MeasureUpdates(large.Path(), count / 2, count);
    const auto report = [judge](const std::string& what, const Run& a, const Run& b) {
        return Report("peak memory, " + what + ": times a small folder's",
                      static_cast<double>(a.peakKb) / static_cast<double>(b.peakKb), kMostGrowth, judge);
    };
    const bool isSmallWhole = report("new notes", more.whole, less.whole);
    const bool isSmallChanged = report("a few changed", more.changed, less.changed);
    return isFast && isSmallWhole && isSmallChanged;
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        return MeasureAll(CountArgument(argc, argv, 100000)) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::printf("%s\n", failure.what());
        return 1;
    }
}
