// client/search/configuration.cpp: the search engine's settings for one home.
#include "client/search/configuration.h"

#include <sys/stat.h>
#include <unicode/unistr.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <optional>
#include <sstream>

#include "client/search/file_text.h"
#include "client/search/kinds.h"
#include "client/search/signs.h"
#include "client/store/descriptor.h"

namespace pavex {

namespace {

namespace fs = std::filesystem;

constexpr const char* kTemplates[] = {"recoll.conf", "mimemap", "mimeconf", "fields", "pavex.xsl"};
// What the settings in force were written from.  Not the files themselves: the search window rewrites those.
constexpr const char* kWrittenName = "written";
constexpr size_t kLongestRoot = 255;  // bytes, of what the add-in's paths begin with

void ReplaceEach(std::string* text, std::string_view what, std::string_view with)
{
    for (size_t at = text->find(what); at != text->npos; at = text->find(what, at + with.size()))
        text->replace(at, what.size(), with);
}

// As it stands between double quotes in a list.
std::string InQuotes(const std::string& path)
{
    std::string quoted;
    for (const char c : path) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted;
}

// The engine looks for a sheet below its own folder; enough steps up lead to the root from anywhere.
std::string FromAnywhere(const std::string& path)
{
    constexpr int kDeepest = 16;
    std::string steps;
    for (int i = 0; i < kDeepest; ++i)
        steps += "../";
    return steps + path.substr(1);
}

// As the engine reads it: each letter with what it stands for behind it.
std::string LetterList()
{
    std::string list;
    for (const LetterForm& form : LetterForms()) {
        icu::UnicodeString(static_cast<UChar32>(form.letter)).toUTF8String(list);
        list.append(form.plain).append(" ");
    }
    list.pop_back();
    return list;
}

std::string FillIn(std::string text, const SearchFolders& folders)
{
    ReplaceEach(&text, "@METADATA@", InQuotes(folders.metadata));
    ReplaceEach(&text, "@SHEET@", InQuotes(FromAnywhere(folders.home + "/pavex.xsl")));
    ReplaceEach(&text, "@FOLDER@", folders.home);
    ReplaceEach(&text, "@MARKER@", kTextMarker);
    ReplaceEach(&text, "@LETTERS@", LetterList());
    ReplaceEach(&text, "@ALPHABETS@", Alphabets());
    return text;
}

bool Fill(const SearchFolders& folders, std::map<std::string, std::string>* files, std::string* error)
{
    for (const char* name : kTemplates) {
        const std::string path = folders.templates + "/" + name;
        const std::optional<std::string> text = ReadFileText(path);
        if (!text) {
            *error = "cannot read " + path + ": the program is not installed whole";
            return false;
        }
        (*files)[name] = FillIn(*text, folders);
    }
    return true;
}

bool Write(const std::string& path, const std::string& bytes, std::string* error)
{
    if (ReplaceFile(path, bytes))
        return true;
    *error = "cannot write " + path + ": " + std::strerror(errno);
    return false;
}

// The opener's command line as the search window splits it; what follows the program is searched for places to fill.
std::string OpenerLine(const std::vector<std::string>& opener)
{
    std::string line;
    for (std::string word : opener) {
        if (!line.empty())
            ReplaceEach(&word, "%", "%%");
        line += "\"" + InQuotes(word) + "\" ";
    }
    return line + "open --window %(uri)";
}

// What a click on a result runs: the kinds are exceptions from what the desktop has for files.
std::string ViewerSettings(const std::vector<std::string>& opener)
{
    std::string types;
    std::string lines;
    for (const SearchKind& kind : kSearchKinds) {
        types += std::string(" ") + kind.mediaType;
        lines += std::string(kind.mediaType) + " = " + OpenerLine(opener) + "\n";
    }
    return "xallexcepts =" + types + "\n[view]\n" + lines;
}

bool WriteViewers(const SearchFolders& folders, std::string* error)
{
    const std::string path = folders.home + "/mimeview";
    const std::string wanted = ViewerSettings(folders.opener);
    return folders.opener.empty() || ReadFileText(path) == wanted || Write(path, wanted, error);
}

std::string WrittenPath(const SearchFolders& folders)
{
    return folders.home + "/" + kWrittenName;
}

std::string TextOf(const std::map<std::string, std::string>& files)
{
    std::string whole;
    for (const auto& [name, text] : files)
        whole.append(name).append("\n").append(text);
    return whole;
}

bool MakeFolderAnew(const SearchFolders& folders, std::string* error)
{
    std::error_code failed;
    fs::remove(WrittenPath(folders), failed);  // first: what goes in part only is not taken for whole
    fs::remove_all(folders.home, failed);
    fs::create_directories(folders.home, failed);
    if (!failed && chmod(folders.home.c_str(), S_IRWXU) == 0)
        return true;
    *error = "cannot make " + folders.home + " anew: " + (failed ? failed.message() : std::strerror(errno));
    return false;
}

bool WriteFiles(const SearchFolders& folders, const std::map<std::string, std::string>& files, std::string* error)
{
    for (const auto& [name, text] : files)
        if (!Write(folders.home + "/" + name, text, error))
            return false;
    return Write(WrittenPath(folders), TextOf(files), error) && WriteViewers(folders, error);
}

}  // namespace

std::string MetadataFolder(const std::string& caches)
{
    const auto root = [&caches](const char* below) { return (caches + below).substr(0, kLongestRoot); };
    const std::string older = root("/Metadata/Quorvex/Morvane Pavex/Spotlight");
    std::error_code none;
    return fs::is_directory(older, none) ? older : root("/Metadata/Quorvex/Pavex/Spotlight");
}

bool WriteConfiguration(const SearchFolders& folders, std::string* error)
{
    // The engine's settings are lines, in which it cannot be written.
    for (const std::string* const path : {&folders.metadata, &folders.home})
        if (path->find_first_of("\n\r") != path->npos) {
            *error = "cannot search in " + *path + ": the search engine takes no path with a line break";
            return false;
        }
    std::map<std::string, std::string> files;
    if (!Fill(folders, &files, error))
        return false;
    if (ReadFileText(WrittenPath(folders)) == TextOf(files))
        return WriteViewers(folders, error);
    return MakeFolderAnew(folders, error) && WriteFiles(folders, files, error);
}

bool WriteConfigurationAnew(const SearchFolders& folders, std::string* error)
{
    std::map<std::string, std::string> files;
    return Fill(folders, &files, error) && MakeFolderAnew(folders, error) && WriteFiles(folders, files, error);
}

std::set<std::string> ReadFieldNames(const SearchFolders& folders)
{
    std::set<std::string> names = {"author", "from", "recipient", "to", "title", "subject", "keywords"};
    std::istringstream file(ReadFileText(folders.templates + "/fields").value_or(""));
    std::string section;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('['))
            section = line;
        const size_t sign = line.find(" =");
        if (line.starts_with('#') || sign == line.npos || line.starts_with("filename"))
            continue;
        if (section == "[prefixes]")
            names.insert(line.substr(0, sign));
        std::istringstream aliases(line.substr(sign + 2));
        for (std::string alias; section == "[queryaliases]" && aliases >> alias;)
            names.insert(alias);
    }
    return names;
}

}  // namespace pavex
