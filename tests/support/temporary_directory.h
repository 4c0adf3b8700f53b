// tests/support/temporary_directory.h: a folder that lives as long as its test.
#pragma once

#include <filesystem>
#include <string>

class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

// The whole content of a file; the test fails when it cannot be read.
std::string ReadWholeFile(const std::string& path);
void WriteWholeFile(const std::string& path, const std::string& content);
