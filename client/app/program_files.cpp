// client/app/program_files.cpp: what is laid beside the program.
#include "client/app/program_files.h"

#include <system_error>

namespace pavex {

namespace fs = std::filesystem;

namespace {

// First match counts: an installed tree, whose folder is the program's alone, then the build tree.
constexpr const char* kLibraryFolders[] = {"../lib/pavex", "../lib"};

}  // namespace

fs::path ProgramFolder()
{
    std::error_code none;
    return fs::read_symlink("/proc/self/exe", none).parent_path();
}

std::string BundleFolder()
{
    return (ProgramFolder() / "../share/pavex/torvik").lexically_normal().string();
}

std::string FindLibrary(const std::string& name)
{
    std::string path;
    for (const char* const folder : kLibraryFolders) {
        path = (ProgramFolder() / folder / name).lexically_normal().string();
        std::error_code none;
        if (fs::exists(path, none))
            break;
    }
    return path;
}

}  // namespace pavex
