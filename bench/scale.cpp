// bench/scale.cpp: passes over a large database against the same over a small one, in time and memory.
// scale [NOTES]: the large one's size; the small one has a hundredth.  Judged from 100000 notes up.
#include <cstdio>

#include "addin/pass.h"
#include "bench/bench_home.h"

namespace {

constexpr int kRounds = 9;
constexpr int kChanges = 10;

struct Figures {
    double unchangedMs;
    double changedMs;
    double peakKb;
};

Figures Take(BenchHome& home, int slot, int count)
{
    const std::string path = home.PathOf("mail" + std::to_string(count) + ".vlt");
    home.Set("GDSFilePath" + (slot == 0 ? "" : std::to_string(slot)), path);
    // In processes of their own, so that the measured ones start from the same small memory.
    MeasureInChild([&] { MakeMailbox(path, count); });
    // A pass over all of it takes the better part of an hour; its end is what matters here.
    const std::string stamp = "GDSTimestamp" + (slot == 0 ? "" : std::to_string(slot));
    {
        // Everything so far counts as indexed.
        DBHANDLE db = 0;
        TIMEDATE modified = {};
        char text[81] = "";
        WORD length = 0;
        VLTDbOpen(path.c_str(), &db);
        VLTDbModifiedTime(db, &modified, nullptr);
        ConvertTIMEDATEToText(nullptr, nullptr, &modified, text, sizeof text, &length);
        VLTDbClose(db);
        home.Set(stamp, text);
    }
    std::vector<double> unchanged;
    std::vector<double> changed;
    std::vector<double> peak;
    for (int round = 0; round < kRounds; ++round) {
        unchanged.push_back(MeasureInChild([slot] { IndexFile(slot, false); }).measure.wallMs);
        MeasureInChild([&] { ChangeNotes(path, kChanges); });
        const ChildMeasure child = MeasureInChild([slot] { IndexFile(slot, false); });
        changed.push_back(child.measure.wallMs);
        peak.push_back(static_cast<double>(child.peakKb));
    }
    std::printf("%d notes: unchanged %.2f ms, %d changes %.2f ms, peak %.0f KB\n", count, Median(unchanged), kChanges,
                Median(changed), Median(peak));
    return {Median(unchanged), Median(changed), Median(peak)};
}

}  // namespace

int main(int argc, char** argv)
{
    const int large = CountArgument(argc, argv, 1000000);
    BenchHome home;
    home.Set("GoogleWaitTime", "0");
    const Figures small = Take(home, 0, large / 100);
    const Figures big = Take(home, 1, large);
    const bool judge = large >= 100000;
    bool holds = Report("unchanged: large, times small", big.unchangedMs / small.unchangedMs, 1.5, judge);
    holds = Report("ten changes: large, times small", big.changedMs / small.changedMs, 1.5, judge) && holds;
    holds = Report("peak memory: large, times small", big.peakKb / small.peakKb, 1.3, judge) && holds;
    return holds ? 0 : 1;
}
