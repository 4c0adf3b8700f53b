// client/foundation/url.h: URLs of files, kept as the bytes of their path.
#pragma once

#include <functional>
#include <string>

#include "client/foundation/object.h"

namespace pavex::cf {

class Url final : public Object {
public:
    static constexpr Kind kKind = Kind::Url;

    // path: a final '/' marks a directory.  base: the absolute folder that a relative path belongs to.
    Url(std::string path, std::string base) : Object(kKind), path_(std::move(path)), base_(std::move(base)) {}

    const std::string& Path() const { return path_; }
    const std::string& Base() const { return base_; }
    bool IsDirectory() const { return path_.back() == '/'; }
    bool IsRelative() const { return path_.front() != '/'; }

    // The path for the file system: no final '/' except the root's.
    std::string FilePath() const;
    // The same, absolute; a relative path loses its "." and ".." on the way.
    std::string ResolvedPath() const;

    bool Equals(const Object& other) const override
    {
        const auto& second = static_cast<const Url&>(other);
        return path_ == second.path_ && base_ == second.base_;
    }
    size_t HashCode() const override { return std::hash<std::string>()(path_); }

private:
    const std::string path_;  // never empty
    const std::string base_;  // empty for an absolute path
};

// An absolute path without ".", ".." and doubled '/', by its text alone; ".." of the root is the root.
std::string CollapsePath(const std::string& path);

}  // namespace pavex::cf
