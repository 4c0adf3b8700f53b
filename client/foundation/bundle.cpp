// client/foundation/bundle.cpp: bundles and their localized texts.
// A key is looked for in the tables of the user's languages, best first, and at last in the English one:
// a translation that lacks a text shows it in English, not as a number.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "client/foundation/host.h"
#include "client/foundation/languages.h"
#include "client/foundation/string.h"
#include "client/foundation/strings_table.h"
#include "client/foundation/unicode.h"

namespace pavex {

namespace {

constexpr std::u16string_view kDefaultTable = u"Localizable";
constexpr size_t kMostBytes = size_t{16} << 20;  // of a table; a larger one is none of ours

std::mutex diagnosticsMutex;
StringsDiagnostics stringsDiagnostics;  // guarded by diagnosticsMutex; written by SetStringsDiagnostics

struct FileFault {
    std::string file;
    int line;
    std::string reason;
};

void Report(const std::vector<FileFault>& faults)
{
    if (faults.empty())
        return;
    StringsDiagnostics diagnostics;
    {
        const std::lock_guard lock(diagnosticsMutex);
        diagnostics = stringsDiagnostics;
    }
    for (const FileFault& fault : faults) {
        if (diagnostics)
            diagnostics(fault.file, fault.line, fault.reason);
    }
}

// Nothing when there is no such file (*error stays 0) or it cannot be read.
std::optional<std::string> ReadTable(const std::string& path, int* error)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "re"), &std::fclose);
    if (!file) {
        *error = errno == ENOENT || errno == ENOTDIR ? 0 : errno;
        return std::nullopt;
    }
    std::string bytes;
    char block[16384];
    size_t count = 0;
    while ((count = std::fread(block, 1, sizeof block, file.get())) > 0) {
        bytes.append(block, count);
        if (bytes.size() > kMostBytes) {
            *error = EFBIG;
            return std::nullopt;
        }
    }
    if (std::ferror(file.get())) {
        *error = errno;
        return std::nullopt;
    }
    return bytes;
}

}  // namespace

namespace cf {

class Bundle final : public Object {
public:
    static constexpr Kind kKind = Kind::Bundle;

    explicit Bundle(std::string folder) : Object(kKind), folder_(std::move(folder)) {}

    // No reference when no table has the key.
    Ref<const String> Find(std::u16string_view table, std::u16string_view key) const
    {
        std::vector<FileFault> faults;
        Ref<const String> found;
        {
            const std::lock_guard lock(mutex_);
            found = Translation(Loaded(table, &faults), key);
        }
        Report(faults);  // with the lock gone: who is told may well ask for a text
        return found;
    }

private:
    using Texts = std::unordered_map<std::u16string, Ref<const String>>;
    struct Table {
        uint64_t generation = 0;   // of the user's languages
        std::vector<Texts> texts;  // by language, best first
    };

    static Ref<const String> Translation(const Table& table, std::u16string_view key)
    {
        const std::u16string wanted(key);
        for (const Texts& texts : table.texts) {
            if (const auto found = texts.find(wanted); found != texts.end())
                return found->second;
        }
        return {};
    }

    const Table& Loaded(std::u16string_view name, std::vector<FileFault>* faults) const
    {
        Table& table = tables_[std::u16string(name)];
        if (table.generation == LanguagesGeneration())
            return table;
        UserLanguages user = CurrentLanguages();
        table.generation = user.generation;
        table.texts.clear();
        const std::optional<std::string> fileName = EncodeUtf8(name);
        if (!fileName || fileName->find_first_of(std::string_view("/\0", 2)) != std::string::npos)
            return table;
        user.languages.emplace_back("en");
        std::vector<std::string> read;
        for (const std::string& language : user.languages) {
            for (const std::string& folder : FoldersOfLanguage(language)) {
                const std::string path = folder_ + '/' + folder + ".lproj/" + *fileName + ".strings";
                if (std::find(read.begin(), read.end(), path) != read.end())
                    continue;
                read.push_back(path);
                AddTable(path, &table, faults);
            }
        }
        return table;
    }

    static void AddTable(const std::string& path, Table* table, std::vector<FileFault>* faults)
    {
        int error = 0;
        const std::optional<std::string> bytes = ReadTable(path, &error);
        if (error != 0)
            faults->push_back({path, 0, std::strerror(error)});
        if (!bytes)
            return;
        StringsTable parsed = ParseStrings(*bytes);
        if (parsed.fault)
            faults->push_back({path, parsed.fault->line, parsed.fault->reason});
        Texts& texts = table->texts.emplace_back();
        texts.reserve(parsed.entries.size());
        for (auto& [key, text] : parsed.entries)
            texts.emplace(key, Ref<const String>::Adopt(New<String>(std::move(text))));
    }

    const std::string folder_;
    mutable std::mutex mutex_;
    mutable std::map<std::u16string, Table> tables_;  // guarded by mutex_
};

}  // namespace cf

CFBundleRef CreateBundle(const std::string& folder)
{
    return cf::ToMutableRef<CFBundleRef>(cf::New<cf::Bundle>(folder));
}

void SetStringsDiagnostics(StringsDiagnostics diagnostics)
{
    const std::lock_guard lock(diagnosticsMutex);
    stringsDiagnostics = std::move(diagnostics);
}

}  // namespace pavex

using namespace pavex::cf;

extern "C" CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                                                   CFStringRef tableName)
{
    const Bundle& texts = As<Bundle>(bundle);
    if (key) {
        const std::u16string_view table = TextOrEmpty(tableName);
        if (Ref<const String> found = texts.Find(table.empty() ? pavex::kDefaultTable : table, TextOf(key)))
            return ToRef<CFStringRef>(found.Detach());
    }
    const bool useValue = value && (!key || !TextOf(value).empty());
    CFStringRef fallback = useValue ? value : key ? key : CFSTR("");
    CFRetain(fallback);
    return fallback;
}
