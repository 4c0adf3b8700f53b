// bench/scale.cpp: passes over a large database against the same over a small one, in time and memory.
// scale [NOTES]: the large one's size; the small one has a hundredth.  Judged from 100000 notes up.
#include <cstdio>

#include "addin/pass.h"
#include "bench/bench_home.h"

namespace {

constexpr int kRounds = 15;
constexpr int kChanges = 10;

// A database of notes that all count as indexed: a pass over all of it takes the better part of an hour, and its
// end is what matters here.
class Mailbox {
public:
    Mailbox(BenchHome& home, int slot, int count)
        : path_(home.PathOf("mail" + std::to_string(count) + ".vlt")), slot_(slot), count_(count)
    {
        const std::string number = slot == 0 ? "" : std::to_string(slot);
        home.Set("GDSFilePath" + number, path_);
        // In a process of its own, as all that follows: the measured ones start from the same small memory.
        MeasureInChild([&] { MakeMailbox(path_, count); });
        home.Set("GDSTimestamp" + number, ModifiedTime());
    }

    // One pass over nothing new, and one over a few changes.
    void Measure()
    {
        const auto pass = [this] { IndexFile(slot_, false); };
        unchanged_.push_back(MeasureInChild(pass).measure.wallMs);
        MeasureInChild([this] { ChangeNotes(path_, kChanges); });
        const ChildMeasure child = MeasureInChild(pass);
        changed_.push_back(child.measure.wallMs);
        peak_.push_back(static_cast<double>(child.peakKb));
    }

    double UnchangedMs() const { return Median(unchanged_); }
    double ChangedMs() const { return Median(changed_); }
    double PeakKb() const { return Median(peak_); }
    void Print() const
    {
        std::printf("%d notes: unchanged %.2f ms, %d changes %.2f ms, peak %.0f KB\n", count_, UnchangedMs(), kChanges,
                    ChangedMs(), PeakKb());
    }

private:
    std::string ModifiedTime() const
    {
        DBHANDLE db = 0;
        TIMEDATE modified = {};
        char text[81] = "";
        WORD length = 0;
        VLTDbOpen(path_.c_str(), &db);
        VLTDbModifiedTime(db, &modified, nullptr);
        ConvertTIMEDATEToText(nullptr, nullptr, &modified, text, sizeof text, &length);
        VLTDbClose(db);
        return text;
    }

    const std::string path_;
    const int slot_;
    const int count_;
    std::vector<double> unchanged_;
    std::vector<double> changed_;
    std::vector<double> peak_;
};

}  // namespace

int main(int argc, char** argv)
{
    const int count = CountArgument(argc, argv, 1000000);
    BenchHome home;
    home.Set("GoogleWaitTime", "0");
    Mailbox small(home, 0, count / 100);
    Mailbox large(home, 1, count);
    // By turns: whatever else the machine is doing meanwhile meets both.
    for (int round = 0; round < kRounds; ++round) {
        small.Measure();
        large.Measure();
    }
    small.Print();
    large.Print();
    const bool judge = count >= 100000;
    bool holds = Report("unchanged: large, times small", large.UnchangedMs() / small.UnchangedMs(), 1.5, judge);
    holds = Report("ten changes: large, times small", large.ChangedMs() / small.ChangedMs(), 1.5, judge) && holds;
    holds = Report("peak memory: large, times small", large.PeakKb() / small.PeakKb(), 1.3, judge) && holds;
    return holds ? 0 : 1;
}
