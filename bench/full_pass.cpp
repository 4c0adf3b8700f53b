// bench/full_pass.cpp: a full pass at full speed against the floor: writing the same files and running the
// same touch command on each.  full_pass [MESSAGES]; judged from 1000 messages up.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "bench/bench_home.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 3;

struct File {
    std::string path;
    std::string content;
};

std::vector<File> TakeMetafiles(const std::string& root)
{
    std::vector<File> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        files.push_back({entry.path().string(), {std::istreambuf_iterator<char>(file), {}}});
    }
    return files;
}

void WriteFloor(const std::vector<File>& files)
{
    for (const File& file : files) {
        const int descriptor = open(file.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        if (descriptor < 0 || write(descriptor, file.content.data(), file.content.size()) < 0)
            std::abort();
        close(descriptor);
        if (std::system(("touch \"" + file.path + "\"").c_str()) != 0)
            std::abort();
    }
}

}  // namespace

int main(int argc, char** argv)
{
    const int count = CountArgument(argc, argv, 5000);
    BenchHome home;
    home.Set("GoogleWaitTime", "0");
    home.Set("GDSFilePath", home.PathOf("mail.vlt"));
    MakeMailbox(home.PathOf("mail.vlt"), count);

    std::vector<double> ratios;
    std::vector<double> cpu;
    for (int round = 0; round < kRounds; ++round) {
        StopAndReset();
        bStopAndReset = 0;
        const Measure pass = MeasureOnce([] { IndexFile(0, false); });
        std::vector<File> files = TakeMetafiles(home.MetadataRoot());
        if (files.size() != static_cast<size_t>(count)) {
            std::printf("%zu metafiles in place of %d\n", files.size(), count);
            return 1;
        }
        // Both write new files: nothing is deleted before the end, since a file system may take its time to use
        // the places of deleted files again.
        const std::string aside = home.MetadataRoot() + std::to_string(round);
        fs::rename(home.MetadataRoot(), aside);
        for (File& file : files) {
            file.path.replace(0, home.MetadataRoot().size(), aside + "-floor");
            fs::create_directories(fs::path(file.path).parent_path());
        }
        const Measure floor = MeasureOnce([&files] { WriteFloor(files); });
        std::printf("round %d: pass %.0f ms, floor %.0f ms, own cpu %.1f ms (the floor's %.1f ms)\n", round + 1,
                    pass.wallMs, floor.wallMs, pass.ownCpuMs, floor.ownCpuMs);
        ratios.push_back(pass.wallMs / floor.wallMs);
        cpu.push_back(pass.ownCpuMs / count);
    }
    const bool judge = count >= 1000;
    const bool wall = Report("full pass: wall time, times the floor's", Median(ratios), 1.25, judge);
    return Report("full pass: own cpu, ms a note", Median(cpu), 0.4, judge) && wall ? 0 : 1;
}
