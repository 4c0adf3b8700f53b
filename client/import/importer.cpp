// client/import/importer.cpp: sources in, notes out: walks each source, asks the formats, keeps the count.
#include "client/import/importer.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <utility>

#include "client/import/entry_store.h"
#include "client/import/source_reader.h"
#include "client/import/source_walk.h"
#include "client/store/note_link.h"

namespace pavex {
namespace {

struct TargetRow {
    EntryKind kind;
    const char* file;  // in the data directory
    const char* title;
};
constexpr std::array<TargetRow, 6> kTargets = {{
    {EntryKind::kMail, "mail.vlt", "Mail"},
    {EntryKind::kDiscussion, "documents.vlt", "Documents"},
    {EntryKind::kPerson, "names.vlt", "Contacts"},
    {EntryKind::kCalendar, "calendar.vlt", "Calendar"},
    {EntryKind::kDocument, "documents.vlt", "Documents"},
    {EntryKind::kHistory, kHistoryFile, "History"},
}};

// The databases of one import; several kinds may share one.
class Targets {
public:
    explicit Targets(const ImportOptions& options) : options_(options) {}

    // Null when the database cannot be opened; Error() then says why.
    EntryStore* Of(EntryKind kind)
    {
        for (const TargetRow& row : kTargets) {
            if (row.kind == kind)
                return Open(PathOf(row), row.title);
        }
        return nullptr;
    }

    std::string PathOf(EntryKind kind) const
    {
        for (const TargetRow& row : kTargets) {
            if (row.kind == kind)
                return PathOf(row);
        }
        return {};
    }

    bool BeginSource(const std::string& source, bool prune)
    {
        source_ = source;
        for (const auto& [path, store] : stores_)
            store->BeginSource(source);
        // Also one that gets nothing today may hold notes to prune.
        for (const TargetRow& row : kTargets) {
            if (prune && std::filesystem::exists(PathOf(row)) && Open(PathOf(row), row.title) == nullptr)
                return false;
        }
        return true;
    }

    template <typename Work> bool Each(const Work& work)
    {
        for (const auto& [path, store] : stores_) {
            if (!work(*store)) {
                error_ = store->Error();
                return false;
            }
        }
        return true;
    }

    void Failed(const EntryStore& store) { error_ = store.Error(); }
    const std::string& Error() const { return error_; }

private:
    std::string PathOf(const TargetRow& row) const
    {
        return options_.into.empty() ? (std::filesystem::path(options_.dataDirectory) / row.file).string()
                                     : options_.into;
    }

    EntryStore* Open(const std::string& path, const char* title)
    {
        for (const auto& [open, store] : stores_) {
            if (open == path)
                return store.get();
        }
        const std::string shown = options_.into.empty() ? title : std::filesystem::path(path).stem().string();
        std::unique_ptr<EntryStore> store = EntryStore::Open(path, shown, &error_);
        if (!store)
            return nullptr;
        store->BeginSource(source_);
        return stores_.emplace_back(path, std::move(store)).second.get();
    }

    const ImportOptions& options_;
    std::string source_;
    std::string error_;
    std::vector<std::pair<std::string, std::unique_ptr<EntryStore>>> stores_;
};

// A reading of a source beside the one that brings it in: what that one reports is not reported again.
class SilentReading : public EntryHandler {
public:
    using Take = std::function<bool(const SourceEntryFound& entry)>;
    using GoOn = std::function<bool(uint64_t bytes)>;

    // threads: the postings that are known already.
    SilentReading(ThreadIndex threads, Take take, GoOn goOn) : take_(std::move(take)), goOn_(std::move(goOn))
    {
        Threads() = std::move(threads);
    }

    // False when it was ended.
    bool Read(const std::string& path, const ImportOptions& options)
    {
        const WalkHandler handler{[&](const SourceFile& file) {
                                      const FormatRow* const format = FormatOf(file);
                                      return format == nullptr || format->read(file, options, *this);
                                  },
                                  [](const std::string&, const std::string&) {}};
        return WalkSource(path, handler);
    }

    uint64_t FoundCount() const { return found_; }

    bool Found(SourceEntryFound entry) override
    {
        ++found_;
        return take_(entry);
    }
    bool Rejected(const std::string&, const std::string&) override { return true; }
    bool RejectedVersion(EntryKind, const std::string&, const std::string&, const std::string&) override
    {
        return true;
    }
    void Unreadable(const std::string&, const std::string&) override {}
    bool Progress(uint64_t bytes) override { return goOn_(bytes); }

private:
    Take take_;
    GoOn goOn_;
    uint64_t found_ = 0;
};

class ImportRun : public EntryHandler {
public:
    ImportRun(const ImportOptions& options, const ImportProgressCallback& progress, ImportReport* report)
        : options_(options), progress_(progress), report_(report), targets_(options)
    {
    }

    // False when the import as a whole is over.
    bool ReadSource(const std::string& given)
    {
        std::error_code failure;
        const std::filesystem::path path = std::filesystem::canonical(given, failure);
        if (failure) {
            KeepError(given + ": cannot be read: " + failure.message());
            return true;
        }
        if (std::find(done_.begin(), done_.end(), path.string()) != done_.end())
            return true;
        done_.push_back(path.string());
        given_ = given;
        path_ = path.string();
        complete_ = true;
        found_ = 0;
        state_.source = given;
        state_.bytes = 0;
        state_.totalBytes =
            std::filesystem::is_regular_file(path, failure) ? std::filesystem::file_size(path, failure) : 0;
        // Mail and a discussion made of one mailbox are two sources: neither loses what the other leaves alone.
        const bool discussion = options_.as == ImportOptions::As::kDiscussion;
        if (!targets_.BeginSource(path.string() + (discussion ? " as discussion" : ""), options_.prune))
            return Fail(targets_.Error());
        if (discussion && !SurveyThreads(path_))
            return EndEarly();
        const WalkHandler handler{
            [this](const SourceFile& file) { return ReadFile(file); },
            [this](const std::string& where, const std::string& reason) { Unreadable(where, reason); }};
        const bool finished =
            options_.only.empty() ? WalkSource(path_, handler) && ReadAgain(path_) : ReadSome(handler);
        return finished ? FinishSource() : EndEarly();
    }

    // First of the errors; empty when all went well.
    const std::string& Error() const { return error_; }

    bool Found(SourceEntryFound entry) override
    {
        EntryStore* const store = targets_.Of(entry.kind);
        if (store == nullptr)
            return Fail(targets_.Error());
        report_->databases.insert(targets_.PathOf(entry.kind));
        const Reported before = ReportedSoFar();
        if (!store->Offer(std::move(entry), report_))
            return Fail(store->Error());
        NameSource(before);
        ++state_.entries;
        ++found_;
        return true;
    }

    bool Rejected(const std::string& where, const std::string& reason) override
    {
        report_->rejected.push_back({given_, where, reason});
        ++state_.entries;
        return true;
    }

    bool RejectedVersion(EntryKind kind, const std::string& identity, const std::string& where,
                         const std::string& reason) override
    {
        EntryStore* const store = options_.prune ? targets_.Of(kind) : nullptr;
        if (options_.prune && store == nullptr)
            return Fail(targets_.Error());
        if (store != nullptr && !store->KeepHeld(identity))
            return Fail(store->Error());
        return Rejected(where, reason);
    }

    void Unreadable(const std::string& where, const std::string& reason) override
    {
        complete_ = false;
        if (where == path_) {
            KeepError(given_ + ": " + reason);  // the source itself: nothing of it came in
            return;
        }
        report_->rejected.push_back({given_, where, reason});
    }

    bool Progress(uint64_t bytes) override
    {
        state_.bytes += bytes;
        if (!progress_ || progress_(state_))
            return true;
        return Fail("the import was ended; what was read until then is kept");
    }

private:
    bool ReadFile(const SourceFile& file)
    {
        const FormatRow* const format = FormatOf(file);
        if (format != nullptr)
            return format->read(file, options_, *this);
        if (IsNamedAsSource(file.path))
            complete_ = false;  // it may have held entries before it was damaged
        return Rejected(file.path, file.size == 0 ? "is empty" : "is not of a kind that can be imported");
    }

    // A posting may stand before the one that it answers: who answers whom is learned before any is brought in.
    bool SurveyThreads(const std::string& path)
    {
        SilentReading survey(
            std::move(Threads()), [](const SourceEntryFound&) { return true; },
            [this](uint64_t) { return Progress(0); });
        const bool finished = survey.Read(path, options_);
        Threads() = std::move(survey.Threads());
        return finished;
    }

    uint64_t SetAside()
    {
        uint64_t entries = 0;
        (void)targets_.Each([&](const EntryStore& store) {
            entries += store.SetAside();
            return true;
        });
        return entries;
    }

    // Whether an older content of what was set aside is gone shows only when all is read.
    bool ReadSome(const WalkHandler& handler)
    {
        complete_ = false;
        const bool finished = WalkFiles(path_, options_.only, handler);
        report_->passedOver = SetAside();
        return finished;
    }

    // Brings in what the first reading set aside.
    bool ReadAgain(const std::string& path)
    {
        if (SetAside() == 0)
            return true;
        state_.bytes = 0;
        SilentReading reading(
            Threads(), [this](const SourceEntryFound& entry) { return TakeAgain(entry); },
            [this](uint64_t bytes) { return Progress(bytes); });
        const bool finished = reading.Read(path, options_);
        complete_ = complete_ && reading.FoundCount() == found_;  // else it was changed meanwhile
        return finished;
    }

    bool TakeAgain(const SourceEntryFound& entry)
    {
        EntryStore* const store = targets_.Of(entry.kind);
        if (store == nullptr)
            return Fail(targets_.Error());
        const Reported before = ReportedSoFar();
        if (!store->OfferAgain(entry, report_))
            return Fail(store->Error());
        NameSource(before);
        return true;
    }

    struct Reported {
        size_t rejected;
        size_t notices;
    };
    Reported ReportedSoFar() const { return {report_->rejected.size(), report_->notices.size()}; }

    // What a store reports names the source by its canonical path.  The user gave another name.
    void NameSource(const Reported& before)
    {
        for (size_t i = before.notices; i < report_->notices.size(); ++i)
            report_->notices[i].source = given_;
        for (size_t i = before.rejected; i < report_->rejected.size(); ++i)
            report_->rejected[i].source = given_;
    }

    bool FinishSource()
    {
        const Reported before = ReportedSoFar();
        if (!targets_.Each([&](EntryStore& store) { return store.FinishSource(complete_, options_.prune, report_); }))
            return Fail(targets_.Error());
        NameSource(before);
        return true;
    }

    // The reader stopped: the callback's wish, or a failure that is already noted.  Whole notes are kept.
    bool EndEarly()
    {
        (void)targets_.Each([](EntryStore& store) { return store.Commit(); });
        return false;
    }

    void KeepError(const std::string& error)
    {
        if (error_.empty())
            error_ = error;
    }

    bool Fail(const std::string& error)
    {
        KeepError(error);
        return false;
    }

    const ImportOptions& options_;
    const ImportProgressCallback& progress_;
    ImportReport* report_;
    Targets targets_;
    std::vector<std::string> done_;  // canonical paths
    std::string given_;              // the source being read, as the user named it
    std::string path_;               // the same, canonical
    bool complete_ = true;           // all of it could be read
    uint64_t found_ = 0;             // entries of it
    ImportProgress state_;
    std::string error_;
};

}  // namespace

bool Import(const std::vector<std::string>& sources, const ImportOptions& options,
            const ImportProgressCallback& progress, ImportReport* report, std::string* error)
{
    *report = {};
    ImportRun run(options, progress, report);
    for (const std::string& source : sources) {
        if (!run.ReadSource(source))
            break;
    }
    *error = run.Error();
    return error->empty();
}

}  // namespace pavex
