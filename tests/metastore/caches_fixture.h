// tests/metastore/caches_fixture.h: a caches folder of the test's own, and what is in it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "client/foundation/host.h"
#include "metastore/search_engine.h"
#include "tests/support/temporary_directory.h"

// As the one of the process, but of the caches folder that there is when it is made.
struct OwnSearchEngine : SearchEngine {};

constexpr const char* kCurrentRoot = "Metadata/Quorvex/Pavex/Spotlight";
constexpr const char* kOlderRoot = "Metadata/Quorvex/Morvane Pavex/Spotlight";

class Caches : public testing::Test {
protected:
    Caches() { pavex::SetCachesFolder(caches_.Path().string()); }
    ~Caches() override { pavex::SetCachesFolder(""); }

    // Every file below the caches folder, as a path from there, sorted.
    std::vector<std::string> Files() const
    {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(caches_.Path())) {
            if (!entry.is_directory())
                files.push_back(entry.path().lexically_relative(caches_.Path()).string());
        }
        std::sort(files.begin(), files.end());
        return files;
    }

    // A path below the current root.
    std::string Below(const std::string& name) const { return (caches_.Path() / kCurrentRoot / name).string(); }

    static SearchEngineEvent Event(SearchEngineEventType type, const char* url, const char* title)
    {
        SearchEngineEvent event(type);
        event.AddProperty(kNoteUrlKey, url);
        event.AddProperty("title", title);
        return event;
    }

    TemporaryDirectory caches_;
};
