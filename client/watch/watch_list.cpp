// client/watch/watch_list.cpp: variables of the ini file into sources, and back.
#include "client/watch/watch_list.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <set>

#include "client/store/host.h"
#include "client/store/ini_file.h"

namespace pavex {

namespace {

namespace fs = std::filesystem;
using Variables = std::map<std::string, std::string>;

constexpr std::string_view kPrefix = "ImportSource";
constexpr int kGreatestNumber = 9999;

bool SetPath(WatchedSource* source, const std::string& value)
{
    source->path = value;
    return value.starts_with('/');
}

bool SetAs(WatchedSource* source, const std::string& value)
{
    source->as =
        value == NameOf(ImportOptions::As::kDiscussion) ? ImportOptions::As::kDiscussion : ImportOptions::As::kMail;
    return value == NameOf(source->as);
}

bool SetInto(WatchedSource* source, const std::string& value)
{
    source->into = value;
    return true;
}

bool SetPrune(WatchedSource* source, const std::string& value)
{
    source->prune = value == "1";
    return value == "0" || value == "1";
}

std::optional<std::string> TextOfPath(const WatchedSource& source)
{
    return source.path;
}

std::optional<std::string> TextOfAs(const WatchedSource& source)
{
    if (source.as == ImportOptions::As::kMail)
        return std::nullopt;
    return NameOf(source.as);
}

std::optional<std::string> TextOfInto(const WatchedSource& source)
{
    if (source.into.empty())
        return std::nullopt;
    return source.into;
}

std::optional<std::string> TextOfPrune(const WatchedSource& source)
{
    if (!source.prune)
        return std::nullopt;
    return "1";
}

struct VariableRow {
    const char* suffix;  // after the number
    bool (*set)(WatchedSource* source, const std::string& value);
    std::optional<std::string> (*text)(const WatchedSource& source);  // nothing: no variable is needed
    const char* wrong;                                                // why a value cannot be set
};
constexpr VariableRow kVariables[] = {
    {"", SetPath, TextOfPath, "is no absolute path"},
    {"As", SetAs, TextOfAs, "is neither mail nor discussion"},
    {"Into", SetInto, TextOfInto, ""},
    {"Prune", SetPrune, TextOfPrune, "is neither 0 nor 1"},
};

bool SameName(std::string_view a, std::string_view b)
{
    const NoCaseLess less;
    return !less(a, b) && !less(b, a);
}

// The number of a variable of the list, and what stands behind it; 0 for any other variable.
int NumberOf(std::string_view name, std::string_view* suffix)
{
    int number = 0;
    if (name.size() <= kPrefix.size() || !SameName(name.substr(0, kPrefix.size()), kPrefix))
        return 0;
    name.remove_prefix(kPrefix.size());
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc{} || number < 1 || number > kGreatestNumber || name.front() == '0')
        return 0;
    *suffix = name.substr(static_cast<size_t>(end - name.data()));
    return number;
}

std::string NameOfVariable(int number, const char* suffix)
{
    return std::string(kPrefix) + std::to_string(number) + suffix;
}

// Where a path leads; of what is not there, as far as it is.
std::string PlaceOf(const std::string& path)
{
    std::error_code failure;
    const fs::path place = fs::weakly_canonical(path, failure);
    return failure ? fs::path(path).lexically_normal().string() : place.string();
}

class ListReader {
public:
    ListReader(const Variables& variables, std::string ini) : ini_(std::move(ini))
    {
        for (const auto& [name, value] : variables)
            Take(name, value);
    }

    WatchList Finish()
    {
        for (const auto& [number, source] : sources_) {
            if (!bad_.contains(number))
                Keep(number, source);
        }
        return std::move(list_);
    }

    // By their numbers, good or bad, with all that could be read.
    const std::map<int, WatchedSource>& All() const { return sources_; }

private:
    void Take(const std::string& name, const std::string& value)
    {
        std::string_view suffix;
        const int number = NumberOf(name, &suffix);
        if (number == 0)
            return;
        WatchedSource& source = sources_[number];
        const auto* row = std::find_if(std::begin(kVariables), std::end(kVariables),
                                       [&](const VariableRow& each) { return SameName(each.suffix, suffix); });
        if (row == std::end(kVariables))
            Refuse(number, name, value, "is no option of a source");
        else if (!row->set(&source, value))
            Refuse(number, name, value, row->wrong);
    }

    void Keep(int number, const WatchedSource& source)
    {
        const std::string name = NameOfVariable(number, "");
        if (source.path.empty()) {
            list_.problems.push_back(ini_ + ": there are options of " + name + ", but it is not there itself");
            return;
        }
        const std::string place = PlaceOf(source.path);
        for (const WatchListEntry& entry : list_.entries) {
            if (PlaceOf(entry.source.path) == place)
                return Refuse(number, name, source.path, "is the same source as " + NameOfVariable(entry.number, ""));
        }
        if (const std::string why = WhyItChangesItself(source); !why.empty())
            return Refuse(number, name, source.path, why);
        list_.entries.push_back({number, source});
    }

    void Refuse(int number, const std::string& name, const std::string& value, const std::string& reason)
    {
        bad_.insert(number);
        list_.problems.push_back(ini_ + ": " + name + "=" + value + ": " + reason);
    }

    std::string ini_;
    std::map<int, WatchedSource> sources_;
    std::set<int> bad_;
    WatchList list_;
};

void Write(int number, const WatchedSource* source, VariableChanges* changes)
{
    for (const VariableRow& row : kVariables)
        (*changes)[NameOfVariable(number, row.suffix)] = source == nullptr ? std::nullopt : row.text(*source);
}

bool SameOptions(const WatchedSource& a, const WatchedSource& b)
{
    return a.as == b.as && a.prune == b.prune && DatabaseOf(a) == DatabaseOf(b);
}

VariableChanges Add(const WatchedSource& source, const Variables& variables, AddedSource* added)
{
    using Outcome = AddedSource::Outcome;
    VariableChanges changes;
    ListReader reader(variables, CurrentPlaces().ini);
    const WatchList list = reader.Finish();
    const std::string place = PlaceOf(source.path);
    for (const auto& [number, other] : list.entries) {
        if (PlaceOf(other.path) == place) {
            WatchedSource changed = source;
            changed.path = other.path;
            added->outcome = changed == other ? Outcome::kUnchanged : Outcome::kChanged;
            if (changed != other)
                Write(number, &changed, &changes);
            return changes;
        }
    }
    for (const auto& [number, other] : list.entries) {
        if (!SameOptions(source, other))
            continue;
        if (IsReadWith(other.path, source.path)) {
            *added = {Outcome::kCovered, other.path, {}};
            return {};
        }
        if (IsReadWith(source.path, other.path))
            added->covered.push_back(other.path);
    }
    int number = 1;
    while (reader.All().contains(number))
        ++number;
    added->outcome = Outcome::kAdded;
    Write(number, &source, &changes);
    return changes;
}

}  // namespace

const char* NameOf(ImportOptions::As as)
{
    switch (as) {
    case ImportOptions::As::kMail:
        return "mail";
    case ImportOptions::As::kDiscussion:
        return "discussion";
    }
    return "";
}

std::string DatabaseOf(const WatchedSource& source)
{
    return source.into.empty() ? std::string() : (fs::path(CurrentPlaces().data) / source.into).string();
}

bool IsReadWith(const std::string& folder, const std::string& path)
{
    const fs::path below = fs::path(PlaceOf(path)).lexically_relative(PlaceOf(folder));
    return !below.empty() && std::none_of(below.begin(), below.end(), [](const fs::path& name) {
        return name.string().starts_with('.') && name != ".";
    });
}

std::string WhyItChangesItself(const WatchedSource& source)
{
    const Places& places = CurrentPlaces();
    const std::string own[] = {places.data, fs::path(places.log).parent_path().string(),
                               places.caches.empty() ? "" : places.caches + "/Metadata"};
    for (const std::string& folder : own) {
        if (!folder.empty() && IsReadWith(source.path, folder))
            return "the client itself writes into it, in " + folder;
    }
    const std::string database = DatabaseOf(source);
    if (!database.empty() && IsReadWith(source.path, database))
        return "the database " + database + " that it is read into lies in it";
    return {};
}

WatchList ReadWatchList()
{
    return ListReader(FileVariables(), CurrentPlaces().ini).Finish();
}

AddedSource AddToWatchList(const WatchedSource& source)
{
    AddedSource added;
    if (!ChangeVariables([&](const Variables& variables) { return Add(source, variables, &added); }))
        added.outcome = AddedSource::Outcome::kFailed;
    return added;
}

RemovedSource RemoveFromWatchList(const std::string& path)
{
    RemovedSource removed = RemovedSource::kNotListed;
    const std::string place = PlaceOf(path);
    const bool written = ChangeVariables([&](const Variables& variables) {
        VariableChanges changes;
        const ListReader reader(variables, CurrentPlaces().ini);
        for (const auto& [number, source] : reader.All()) {
            if (source.path != path && (!source.path.starts_with('/') || PlaceOf(source.path) != place))
                continue;
            removed = RemovedSource::kRemoved;
            Write(number, nullptr, &changes);
        }
        return changes;
    });
    return written ? removed : RemovedSource::kFailed;
}

}  // namespace pavex
