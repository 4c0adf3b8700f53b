// client/import/text_file.h: a text file opened for reading by lines, whatever Unicode form it is stored in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "client/store/descriptor.h"

namespace pavex {

// A file's bytes from start to end, without a byte order mark.
struct TextFile {
    Descriptor descriptor;
    uint64_t start = 0;
    uint64_t end = 0;
};

// Opens a file.  One that begins with a byte order mark of UTF-16 is copied, as UTF-8, into a nameless temporary
// file first.  False, with *reason set, when it cannot be read or the copy cannot be written.
bool OpenTextFile(const std::string& path, TextFile* file, std::string* reason);

// Reads its bytes, at most `most` of them.  False, with *reason set, when that fails.
bool ReadTextFile(const TextFile& file, uint64_t most, std::string* bytes, std::string* reason);

// The first bytes of a file as such text, for recognising what it is: without a byte order mark, and of
// UTF-16 only the low byte of each unit, which is all there is to ASCII.
std::string TextOfHead(std::string_view head);

}  // namespace pavex
