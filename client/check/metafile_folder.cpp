// client/check/metafile_folder.cpp: what lies in the metadata folder, by name.
#include "client/check/metafile_folder.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>

#include "client/store/timedate.h"

namespace pavex {

namespace {

namespace fs = std::filesystem;

struct SplitName {
    std::string_view stem;
    const SearchKind* kind;  // null: not the name of a metafile
};

SplitName Split(std::string_view name)
{
    const size_t dot = name.rfind('.');
    if (dot == name.npos || dot == 0)
        return {name, nullptr};
    return {name.substr(0, dot), FindKindByExtension(name.substr(dot + 1))};
}

// As the add-in writes it: digits in upper case.
std::optional<UNID> UnidOfName(std::string_view name)
{
    const std::optional<UNID> unid = UnidFromHex(name);
    return unid && HexFromUnid(*unid) == name ? unid : std::nullopt;
}

bool IsReplicaName(const std::string& name)
{
    const std::optional<TIMEDATE> id = IdFromHex(name);
    return id && HexFromId(*id) == name;
}

bool IsHalfWritten(std::string_view name)
{
    constexpr std::string_view kEnd = ".part";
    return name.starts_with('.') && name.ends_with(kEnd) && name.size() > kEnd.size() &&
           UnidOfName(name.substr(1, name.size() - 1 - kEnd.size()));
}

auto OrderOf(const UNID& unid)
{
    return std::tuple(unid.File.Innards[1], unid.File.Innards[0], unid.Note.Innards[1], unid.Note.Innards[0]);
}

bool ComesBefore(const NoteFiles& a, const NoteFiles& b)
{
    return OrderOf(a.unid) < OrderOf(b.unid);
}

bool VisitFolder(const std::string& path, const std::function<void(const fs::directory_entry&)>& visit,
                 std::string* error)
{
    std::error_code failed;
    fs::directory_iterator entry(path, failed);
    for (const fs::directory_iterator end; !failed && entry != end; entry.increment(failed))
        visit(*entry);
    if (!failed || failed == std::errc::no_such_file_or_directory)
        return true;
    *error = path + ": " + failed.message();
    return false;
}

bool IsFolder(const fs::directory_entry& entry)
{
    std::error_code failed;
    return entry.symlink_status(failed).type() == fs::file_type::directory;
}

// Below a folder that holds no database's files.  What cannot be read there is nobody's either.
void CollectStrays(const std::string& path, std::vector<std::string>* strays)
{
    std::string ignored;
    (void)VisitFolder(
        path,
        [strays](const fs::directory_entry& entry) {
            if (IsFolder(entry))
                CollectStrays(entry.path(), strays);
            else if (Split(entry.path().filename().native()).kind != nullptr)
                strays->push_back(entry.path());
        },
        &ignored);
}

// One file a note as a rule: those of several become one entry.
void Merge(std::vector<NoteFiles>* notes)
{
    std::ranges::sort(*notes, ComesBefore);
    size_t kept = 0;
    for (const NoteFiles& note : *notes) {
        if (kept != 0 && (*notes)[kept - 1].unid == note.unid)
            (*notes)[kept - 1].kinds |= note.kinds;
        else
            (*notes)[kept++] = note;
    }
    notes->resize(kept);
}

}  // namespace

NoteFiles* MetafileFolder::Find(const UNID& unid)
{
    const auto found = std::ranges::lower_bound(notes, NoteFiles{unid}, ComesBefore);
    return found != notes.end() && found->unid == unid ? &*found : nullptr;
}

std::string MetafileFolder::FileOf(const UNID& unid, const SearchKind& kind) const
{
    return path + "/" + HexFromUnid(unid) + "." + kind.extension;
}

bool ReadMetafileFolder(const std::string& path, MetafileFolder* folder, std::string* error)
{
    folder->path = path;
    std::error_code none;
    if (fs::is_symlink(path, none)) {
        *error = path + ": is a symbolic link";
        return false;
    }
    const auto take = [folder](const fs::directory_entry& entry) {
        const std::string name = entry.path().filename();
        const SplitName split = Split(name);
        const std::optional<UNID> unid = split.kind != nullptr ? UnidOfName(split.stem) : std::nullopt;
        if (unid)
            folder->notes.push_back({*unid, BitOf(split.kind)});
        else if (IsFolder(entry))
            CollectStrays(entry.path(), &folder->strays);
        else if (split.kind != nullptr)
            folder->strays.push_back(entry.path());
        else if (IsHalfWritten(name))
            folder->halfWritten.push_back(entry.path());
    };
    if (!VisitFolder(path, take, error))
        return false;
    Merge(&folder->notes);
    return true;
}

bool ReadMetadataRoot(const std::string& path, MetadataRoot* root, std::string* error)
{
    return VisitFolder(
        path,
        [root](const fs::directory_entry& entry) {
            const std::string name = entry.path().filename();
            if (!IsFolder(entry)) {
                if (Split(name).kind != nullptr)
                    root->strays.push_back(entry.path());
            } else if (IsReplicaName(name)) {
                root->replicas.push_back(name);
            } else {
                CollectStrays(entry.path(), &root->strays);
            }
        },
        error);
}

}  // namespace pavex
