// bench/manners.cpp: what a pass takes from the user with the default settings, and how soon a request to
// stop is honoured.  manners [MESSAGES]; judged from 200 messages up.
#include <unistd.h>

#include <chrono>
#include <cstdio>

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "bench/bench_home.h"
#include "client/store/host.h"

int main(int argc, char** argv)
{
    const int count = CountArgument(argc, argv, 1000);
    const bool judge = count >= 200;
    BenchHome home;
    home.Set("GDSFilePath", home.PathOf("mail.vlt"));
    MakeMailbox(home.PathOf("mail.vlt"), count);

    const Measure pass = MeasureOnce([] { IndexFile(0, false); });
    std::printf("pass over %d messages: %.0f ms, own cpu %.1f ms, touch commands %.1f ms\n", count, pass.wallMs,
                pass.ownCpuMs, pass.childCpuMs);
    bool holds =
        Report("share of one core, touch commands left out, percent", 100 * pass.ownCpuMs / pass.wallMs, 10, judge);
    Report("share of one core, touch commands too, percent", 100 * (pass.ownCpuMs + pass.childCpuMs) / pass.wallMs, 10,
           false);

    // In the wait between cycles, at random moments of its second.
    double worst = 0;
    constexpr int kStops = 5;
    for (int stop = 0; stop < kStops; ++stop) {
        bThreadExists = 0;
        PavexDesktopIndex();
        usleep(150000U + static_cast<useconds_t>(stop) * 190000U);
        const Measure wait = MeasureOnce([] {
            PavexDesktopTerm();
            pavex::JoinThreads();
        });
        worst = std::max(worst, wait.wallMs);
        if (!judge)
            break;
    }
    holds = Report("slowest answer to a request to stop, ms", worst, 1100, judge) && holds;
    return holds ? 0 : 1;
}
