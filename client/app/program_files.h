// client/app/program_files.h: what is laid beside the program.
#pragma once

#include <filesystem>
#include <string>

namespace pavex {

// The folder of the running program.
std::filesystem::path ProgramFolder();
// The folder of the add-in's texts.
std::string BundleFolder();
// The path of a library that is loaded at run time: the installed tree's, else the build tree's.  Where it
// would be when there is none.
std::string FindLibrary(const std::string& name);

}  // namespace pavex
