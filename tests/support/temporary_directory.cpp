// tests/support/temporary_directory.cpp: a folder that lives as long as its test.
#include "tests/support/temporary_directory.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

TemporaryDirectory::TemporaryDirectory()
{
    std::string name = (std::filesystem::temp_directory_path() / "torvik-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no temporary folder: " + std::string(std::strerror(errno)));
    path_ = name;
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;  // a test may have taken its rights away; the system's clean-up gets it then
    std::filesystem::remove_all(path_, ignored);
}

std::string ReadWholeFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteWholeFile(const std::string& path, const std::string& content)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    if (!file.flush())
        throw std::runtime_error("cannot write " + path);
}
