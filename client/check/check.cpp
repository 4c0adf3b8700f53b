// client/check/check.cpp: databases, progress records and metafiles, held against each other.
// Records are read first, then folders, then notes: whatever comes in meanwhile is newer than its record, and waits
// for the next pass.
#include "client/check/check.h"

#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <memory>
#include <set>

#include "client/check/database_check.h"
#include "client/check/write_obstacle.h"
#include "client/store/charset.h"
#include "client/store/open_database.h"
#include "client/store/path.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

// A file that is being written is renamed within moments.
bool IsLeftBehind(const std::string& path)
{
    constexpr std::time_t kSeconds = 60;
    struct stat about {};
    return lstat(path.c_str(), &about) == 0 && about.st_mtim.tv_sec + kSeconds < std::time(nullptr);
}

class HomeCheck {
public:
    HomeCheck(std::string metadata, Repair* repair, CheckReport* report)
        : metadata_(std::move(metadata)), switches_(ReadIndexSwitches()), repair_(repair), report_(report)
    {
    }

    void Run()
    {
        for (const ProgressRecord& record : ReadProgressRecords())
            Open(record);
        FindCopies();
        for (OpenSlot& slot : slots_)
            CheckSlot(slot);
        CheckRoot();
    }

private:
    struct OpenSlot {
        ProgressRecord record{};
        DatabaseOwner handle{};
        std::shared_ptr<Database> database{};
        bool isCopy = false;
    };

    void Open(const ProgressRecord& record)
    {
        if (record.path.empty()) {
            report_->Add(Finding::kStrayRecord, {.reason = record.variable + " has no database"});
            repair_->EmptyRecord(Finding::kStrayRecord, record);
            return;
        }
        ++report_->databases;
        OpenSlot slot{.record = record};
        const STATUS status = VLTDbOpen(ScsFromUtf8(record.path).c_str(), slot.handle.Out());
        if (status != 0) {
            report_->Add(Finding::kDatabase, {.database = record.path, .reason = DescribeStatus(status)});
            allRead_ = false;
            return;
        }
        slot.database = DatabaseOf(slot.handle.Get());
        slots_.push_back(std::move(slot));
    }

    // The files of two slots with one replica id lie in one folder: neither pass knows of the other.
    void FindCopies()
    {
        std::map<std::string, OpenSlot*> first;
        for (OpenSlot& slot : slots_) {
            const auto [place, isFirst] = first.emplace(HexFromId(slot.database->ReplicaId()), &slot);
            if (isFirst)
                continue;
            slot.isCopy = place->second->isCopy = true;
            report_->Add(Finding::kCopies,
                         {.database = slot.record.path,
                          .reason = "the same database, or a copy of it, is indexed as " + place->second->record.path});
        }
    }

    void CheckSlot(OpenSlot& slot)
    {
        const std::string replica = HexFromId(slot.database->ReplicaId());
        replicas_.insert(replica);
        CheckRecord(slot);
        MetafileFolder folder;
        std::string error;
        if (!ReadMetafileFolder(metadata_ + "/" + replica, &folder, &error)) {
            report_->Add(Finding::kFolder, {.database = slot.record.path, .reason = error});
            return;
        }
        report_->metafiles += folder.notes.size();
        RemoveStrays(folder.strays);
        RemoveHalfWritten(folder.halfWritten);
        if (slot.isCopy)
            return;
        const uint64_t before = CountUnwritten();
        DatabaseCheck check({&slot.record, slot.handle.Get(), slot.database.get(), &switches_}, &folder, repair_,
                            report_);
        if (const STATUS status = check.Run(); status != 0)
            report_->Add(Finding::kDatabase, {.database = slot.record.path, .reason = DescribeStatus(status)});
        if (CountUnwritten() != before)
            TellObstacle(folder.path);
    }

    uint64_t CountUnwritten() const
    {
        return report_->Of(Finding::kMissing).count + report_->Of(Finding::kOutdated).count;
    }

    void TellObstacle(const std::string& folder)
    {
        if (const std::string obstacle = FindWriteObstacle(folder); !obstacle.empty())
            report_->AddRemark("metafiles cannot be written: " + obstacle);
    }

    void CheckRecord(OpenSlot& slot)
    {
        TIMEDATE data{};
        TIMEDATE design{};
        ProgressRecord& record = slot.record;
        Finding finding = Finding::kRecord;
        std::string reason = record.damage;
        if (reason.empty() && slot.database->ChangeTimes(&data, &design) == 0 &&
            record.since > std::max(HundredthsOf(data), HundredthsOf(design))) {
            finding = Finding::kRecordAhead;
            reason = "nothing in the database is as new as that: an older copy may have been put in its place";
        }
        if (reason.empty())
            return;
        report_->Add(finding, {.database = record.path, .reason = record.variable + ": " + reason});
        repair_->EmptyRecord(finding, record);
        record.since = 0;  // all of the database is to be indexed again
        record.until.reset();
    }

    void RemoveStrays(const std::vector<std::string>& paths)
    {
        for (const std::string& path : paths) {
            report_->Add(Finding::kStrayFile, {.file = path});
            repair_->RemoveFile(Finding::kStrayFile, path);
        }
    }

    void RemoveHalfWritten(const std::vector<std::string>& paths)
    {
        for (const std::string& path : paths) {
            // A repair keeps others from writing.
            if (!repair_->IsWanted() && !IsLeftBehind(path))
                continue;
            report_->Add(Finding::kHalfWritten, {.file = path});
            repair_->RemoveFile(Finding::kHalfWritten, path);
        }
    }

    // Folders of databases that are not indexed, and what lies beside the folders.
    void CheckRoot()
    {
        MetadataRoot root;
        std::string error;
        if (!ReadMetadataRoot(metadata_, &root, &error))
            report_->Add(Finding::kFolder, {.reason = error});
        RemoveStrays(root.strays);
        uint64_t kept = 0;
        for (const std::string& replica : root.replicas)
            if (!replicas_.contains(replica))
                kept += CheckUnknownFolder(replica);
        if (kept != 0)
            report_->AddRemark(std::to_string(kept) +
                               " metafiles of unknown databases are left alone, since they may belong to one that "
                               "cannot be read");
    }

    // The number of metafiles that may still be wanted.
    uint64_t CheckUnknownFolder(const std::string& replica)
    {
        MetafileFolder folder;
        std::string error;
        if (!ReadMetafileFolder(metadata_ + "/" + replica, &folder, &error)) {
            report_->Add(Finding::kFolder, {.reason = error});
            return 0;
        }
        report_->metafiles += folder.notes.size();
        RemoveStrays(folder.strays);
        RemoveHalfWritten(folder.halfWritten);
        if (!allRead_)
            return folder.notes.size();
        for (const NoteFiles& files : folder.notes)
            RemoveFiles(Finding::kNoDatabase, folder, files, files.kinds, {}, repair_, report_);
        return 0;
    }

    const std::string metadata_;
    const IndexSwitches switches_;
    Repair* const repair_;
    CheckReport* const report_;
    std::vector<OpenSlot> slots_;
    std::set<std::string> replicas_;
    bool allRead_ = true;  // every database that is indexed
};

}  // namespace

void CheckHome(const std::string& metadata, Repair* repair, CheckReport* report)
{
    HomeCheck(metadata, repair, report).Run();
}

}  // namespace pavex
