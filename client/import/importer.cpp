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

namespace pavex {
namespace {

struct TargetRow {
    EntryKind kind;
    const char* file;  // in the data directory
    const char* title;
};
constexpr std::array<TargetRow, 1> kTargets = {{
    {EntryKind::kMail, "mail.vlt", "Mail"},
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
        complete_ = true;
        state_.source = given;
        state_.bytes = 0;
        state_.totalBytes =
            std::filesystem::is_regular_file(path, failure) ? std::filesystem::file_size(path, failure) : 0;
        if (!targets_.BeginSource(path.string(), options_.prune))
            return Fail(targets_.Error());
        const WalkHandler handler{
            [this](const SourceFile& file) { return ReadFile(file); },
            [this](const std::string& where, const std::string& reason) { Unreadable(where, reason); }};
        const bool finished = WalkSource(path.string(), handler);
        return finished ? FinishSource() : EndEarly();
    }

    // First of the errors; empty when all went well.
    const std::string& Error() const { return error_; }

    bool Found(SourceEntryFound entry) override
    {
        EntryStore* const store = targets_.Of(entry.kind);
        if (store == nullptr)
            return Fail(targets_.Error());
        const size_t rejected = report_->rejected.size();
        if (!store->Offer(std::move(entry), report_))
            return Fail(store->Error());
        TakeFailedEntries(rejected);
        ++state_.entries;
        return true;
    }

    bool Rejected(const std::string& where, const std::string& reason) override
    {
        report_->rejected.push_back({given_, where, reason});
        ++state_.entries;
        return true;
    }

    void Unreadable(const std::string& where, const std::string& reason) override
    {
        complete_ = false;
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
        return Rejected(file.path, file.size == 0 ? "is empty" : "is not of a kind that can be imported");
    }

    // Entries that were found and then could not be read are named by their store's source: the canonical
    // path.  The user gave another name.
    void TakeFailedEntries(size_t before)
    {
        for (size_t i = before; i < report_->rejected.size(); ++i) {
            report_->rejected[i].source = given_;
            complete_ = false;
        }
    }

    bool FinishSource()
    {
        const size_t rejected = report_->rejected.size();
        if (!targets_.Each([&](EntryStore& store) { return store.FinishSource(complete_, options_.prune, report_); }))
            return Fail(targets_.Error());
        TakeFailedEntries(rejected);
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
    bool complete_ = true;           // all of it could be read
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
