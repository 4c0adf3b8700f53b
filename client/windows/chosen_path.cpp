// client/windows/chosen_path.cpp: a typed file name as the file a chooser would have answered.
#include "client/windows/chosen_path.h"

#include <filesystem>
#include <system_error>

#include "client/store/host.h"

namespace pavex {

std::string ChosenPath(const std::string& typed)
{
    if (typed.empty() || typed.front() == '/')
        return typed;
    std::error_code error;
    const std::filesystem::path here = std::filesystem::current_path(error) / typed;
    if (!error && std::filesystem::exists(here, error))
        return here.lexically_normal().string();
    return (std::filesystem::path(CurrentPlaces().data) / typed).lexically_normal().string();
}

}  // namespace pavex
