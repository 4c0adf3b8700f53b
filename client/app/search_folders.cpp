// client/app/search_folders.cpp: where the search engine's things are for the current home.
#include "client/app/search_folders.h"

#include "client/app/program_files.h"
#include "client/store/host.h"

namespace pavex {

SearchFolders FoldersOfHome()
{
    const std::string& caches = CurrentPlaces().caches;
    std::vector<std::string> opener = {(ProgramFolder() / "pavex").string()};
    if (const std::string& home = CurrentPlaces().home; !home.empty())
        opener.insert(opener.end(), {"--home", home});
    return {(ProgramFolder() / "../share/pavex/recoll").lexically_normal().string(), MetadataFolder(caches),
            caches + "/pavex/search", opener};
}

}  // namespace pavex
