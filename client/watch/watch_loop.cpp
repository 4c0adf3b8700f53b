// client/watch/watch_loop.cpp: what the watching thread does, again and again: take the changes, read what is due.
#include "client/watch/watch_loop.h"

#include <poll.h>

#include <algorithm>
#include <exception>
#include <filesystem>

#include "client/import/source_walk.h"
#include "client/store/clock.h"
#include "client/store/host.h"
#include "client/store/timedate.h"
#include "client/watch/tree_state.h"

namespace pavex {

namespace {

namespace fs = std::filesystem;

constexpr int kList = 0;  // among the sources: the ini file
// A burst of events wakes the thread five times a second, not for each.
constexpr uint64_t kBatchMs = 200;

// The machine's own clock: another one may make waits pass quickly.
uint64_t Now()
{
    return SystemClock().TimerMilliseconds();
}

std::string IsoNow()
{
    return IsoFromTime(TimeFromUnix(static_cast<int64_t>(SystemClock().NowHundredths() / 100)));
}

// A folder without anything in it may be one whose disk is not there.
bool IsEmptyFolder(const std::string& path)
{
    std::error_code failure;
    return fs::is_directory(path, failure) && fs::is_empty(path, failure);
}

bool IsListed(const WatchList& list, const WatchedSource& source)
{
    return std::any_of(list.entries.begin(), list.entries.end(),
                       [&source](const WatchListEntry& entry) { return entry.source == source; });
}

}  // namespace

WatchLoop::WatchLoop(const Watcher::Settings& settings, const StopRequest& stop)
    : settings_(settings), stop_(stop), events_(OpenFolderEvents(&whyNoEvents_)),
      watch_(events_.get(), "the system tells nothing of changes: " + whyNoEvents_), queue_(settings.waits),
      lastId_(kList), records_(LoadReadRecords(CurrentPlaces().data))
{
}

void WatchLoop::Run()
{
    FollowList();
    while (GoOn()) {
        if (const std::optional<DueWork> work = queue_.Take(Now()))
            Work(*work);
        else
            Wait();
    }
}

// Called wherever the thread may be for long.
bool WatchLoop::GoOn()
{
    if (stop_.IsMade())
        return false;
    if (Now() - eventsTaken_ >= kBatchMs)
        TakeEvents();
    return true;
}

// Until something is due, events are there to be taken, or the stop is requested.
void WatchLoop::Wait() const
{
    const uint64_t now = Now();
    const bool pausing = now - eventsTaken_ < kBatchMs;
    std::optional<uint64_t> until = queue_.NextDue();
    if (pausing)
        until = std::min(until.value_or(eventsTaken_ + kBatchMs), eventsTaken_ + kBatchMs);
    pollfd waits[2] = {{stop_.Descriptor(), POLLIN, 0}, {-1, POLLIN, 0}};
    if (events_ != nullptr && !pausing)
        waits[1].fd = events_->Descriptor();
    constexpr uint64_t kLongestPollMs = 3'600'000;
    const int timeout = until ? static_cast<int>(std::min(*until - std::min(*until, now), kLongestPollMs)) : -1;
    (void)poll(waits, 2, timeout);
}

void WatchLoop::TakeEvents()
{
    watch_.Read([this](const SourceChange& change) {
        eventsTaken_ = Now();
        TakeChange(change);
    });
}

void WatchLoop::TakeChange(const SourceChange& change)
{
    const uint64_t now = Now();
    if (change.source == kList) {
        queue_.AllChanged(kList, now);
        return;
    }
    const auto found = sources_.find(change.source);
    if (found == sources_.end())
        return;
    const Source& source = found->second;
    switch (change.kind) {
    case SourceChange::Kind::kAttributes:
        // Mail readers set times.  Rights are of interest where something could not be read.
        if (!source.complaints.HasAny())
            return;
        [[fallthrough]];
    case SourceChange::Kind::kFile:
        if (MustReadAllFor(source, change.path))
            queue_.AllChanged(change.source, now);
        else
            queue_.FileChanged(change.source, change.path, now);
        return;
    case SourceChange::Kind::kGone:
        if (source.listed.prune)
            queue_.AllChanged(change.source, now);
        return;
    case SourceChange::Kind::kFolders:
        queue_.FoldersChanged(change.source, now);
        return;
    case SourceChange::Kind::kAnything:
        queue_.AllChanged(change.source, now);
        return;
    }
}

bool WatchLoop::MustReadAllFor(const Source& source, const std::string& path) const
{
    if (path == source.canonicalPath || source.listed.as == ImportOptions::As::kDiscussion)
        return true;  // who answers whom shows in the whole of it
    // A file of many entries may have lost some.
    return source.listed.prune && !IsMaildirFile(source.canonicalPath, path);
}

// Reads the list; sources that are new on it are read at once.
void WatchLoop::FollowList()
{
    const std::string& ini = CurrentPlaces().ini;
    if (!watch_.Place(kList, ini, [this] { return !stop_.IsMade(); }).whyUnseen.empty())
        queue_.AllDueAt(kList, Now() + settings_.waits.againMs);
    const WatchList list = ReadWatchList();
    LogNewProblems(list.problems);
    std::vector<int> gone;
    for (const auto& known : sources_) {
        if (!IsListed(list, known.second.listed))
            gone.push_back(known.first);
    }
    for (const int id : gone)
        Forget(id);
    for (const WatchListEntry& entry : list.entries) {
        if (IsKnown(entry.source))
            continue;
        sources_[++lastId_].listed = entry.source;
        queue_.AllDueAt(lastId_, Now());
    }
    ReadRecords kept;
    for (const auto& known : sources_) {
        if (const auto record = records_.find(known.second.listed.path); record != records_.end())
            kept.insert(*record);
    }
    records_ = std::move(kept);
}

bool WatchLoop::IsKnown(const WatchedSource& listed) const
{
    return std::any_of(sources_.begin(), sources_.end(),
                       [&listed](const auto& known) { return known.second.listed == listed; });
}

void WatchLoop::LogNewProblems(const std::vector<std::string>& problems)
{
    for (const std::string& problem : problems) {
        if (std::find(problems_.begin(), problems_.end(), problem) == problems_.end())
            Log(problem);
    }
    problems_ = problems;
}

void WatchLoop::Forget(int id)
{
    sources_.erase(id);
    queue_.Forget(id);
    watch_.Remove(id);
}

void WatchLoop::Work(const DueWork& work)
{
    if (work.source == kList) {
        FollowList();
        return;
    }
    const auto found = sources_.find(work.source);
    if (found == sources_.end())
        return;
    Source* const source = &found->second;
    DueWork due = work;
    if (due.all || due.folders || due.look) {
        const bool changed = Place(due.source, source);
        if (due.folders && changed && !due.all)
            queue_.AllDueAt(due.source, Now());
        if (due.look && !due.all) {
            due.all = HasChangedUnseen(source);
            queue_.LookAt(due.source, Now() + settings_.waits.againMs);
        }
    }
    if (!stop_.IsMade() && (due.all || !due.files.empty()))
        Read(due.source, source, due);
}

// True when its folders changed.
bool WatchLoop::Place(int id, Source* source)
{
    const SourceWatch::Placed placed = watch_.Place(id, source->listed.path, [this] { return !stop_.IsMade(); });
    source->canonicalPath = placed.canonicalPath;
    if (placed.whyUnseen != source->whyUnseen && !placed.whyUnseen.empty())
        Log(source->listed.path + ": changes are not all seen at once, since " + placed.whyUnseen +
            "; it is looked at every " + std::to_string(settings_.waits.againMs / 60000) + " minutes");
    source->whyUnseen = placed.whyUnseen;
    return placed.changed;
}

bool WatchLoop::HasChangedUnseen(Source* source)
{
    return !source->canonicalPath.empty() &&
           TreeStateOf(source->canonicalPath, [this] { return GoOn(); }) != source->treeState;
}

void WatchLoop::Read(int id, Source* source, const DueWork& work)
{
    const uint64_t began = Now();
    Reading reading;
    reading.began = IsoNow();
    if (!work.all)
        reading.options.only.assign(work.files.begin(), work.files.end());
    if (!source->whyUnseen.empty() && work.all && !source->canonicalPath.empty())
        source->treeState = TreeStateOf(source->canonicalPath, [this] { return GoOn(); });
    Import(*source, &reading);
    queue_.Read(id, reading.All(), began, Now());
    if (stop_.IsMade())
        return;  // the next client reads all of it
    Report(source, reading);
    Plan(id, *source, reading);
}

void WatchLoop::Import(const Source& source, Reading* reading)
{
    const WatchedSource& listed = source.listed;
    ImportOptions& options = reading->options;
    options.into = DatabaseOf(listed);
    options.as = listed.as;
    options.dataDirectory = CurrentPlaces().data;
    const bool nothingThere = listed.prune && IsEmptyFolder(listed.path);
    options.prune = listed.prune && !nothingThere;
    try {
        (void)settings_.import(
            {listed.path}, options, [this](const ImportProgress&) { return GoOn(); }, &reading->report,
            &reading->error);
    } catch (const std::exception& failure) {
        reading->error = listed.path + ": " + failure.what();
    }
    if (reading->error.empty() && nothingThere)
        reading->error = listed.path + ": is an empty folder; its notes are kept, in case its disk is not there";
}

void WatchLoop::Report(Source* source, const Reading& reading)
{
    const ImportReport& report = reading.report;
    for (const std::string& line : source->complaints.TakeNew(report, reading.error, reading.All()))
        Log(line);
    if (report.added + report.updated + report.removed != 0)
        Log("read " + source->listed.path + ": " + std::to_string(report.added) + " added, " +
            std::to_string(report.updated) + " updated, " + std::to_string(report.removed) + " removed");
    ReadRecord& record = records_[source->listed.path];
    record.error = reading.error;
    if (reading.error.empty())
        record.read = reading.began;
    if (reading.All())
        record.rejected = report.rejected.size();
    record.databases.insert(report.databases.begin(), report.databases.end());
    (void)SaveReadRecords(CurrentPlaces().data, records_);  // only tells; the next reading tries again
}

// What comes next of itself.
void WatchLoop::Plan(int id, const Source& source, const Reading& reading)
{
    if (reading.report.passedOver != 0)
        queue_.AllDueAt(id, Now());
    if (!reading.error.empty())
        queue_.AllDueAt(id, Now() + settings_.waits.againMs);
    else if (!source.whyUnseen.empty())
        queue_.LookAt(id, Now() + settings_.waits.againMs);
}

}  // namespace pavex
