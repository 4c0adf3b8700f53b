// client/import/owners.h: sole owners of what the C libraries of the importers hand out.
#pragma once

#include <memory>

#include <glib-object.h>

namespace pavex {

struct ObjectReleaser {
    template <typename Object> void operator()(Object* object) const { g_object_unref(object); }
};
// Sole owner of a reference to an object of GMime.
template <typename Object> using ObjectOwner = std::unique_ptr<Object, ObjectReleaser>;

struct MemoryReleaser {
    void operator()(void* memory) const { g_free(memory); }
};
using TextOwner = std::unique_ptr<char, MemoryReleaser>;

struct ChecksumReleaser {
    void operator()(GChecksum* checksum) const { g_checksum_free(checksum); }
};
using ChecksumOwner = std::unique_ptr<GChecksum, ChecksumReleaser>;

}  // namespace pavex
