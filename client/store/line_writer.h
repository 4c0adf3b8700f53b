// client/store/line_writer.h: writes text into a file line by line, in bounded memory.
#pragma once

#include <string>
#include <string_view>

#include "client/store/descriptor.h"
#include "platform/store.h"

namespace pavex {

// A file that is written from its beginning; what was in it before is gone.  After the first failure
// nothing more is written.
class TextFile {
public:
    explicit TextFile(const std::string& path);

    void Write(std::string_view bytes);
    STATUS Close();  // writes what is left; the first failure of all
    bool Failed() const { return status_ != kStatusOk; }
    uint64_t Bytes() const { return bytes_; }

private:
    void Flush();

    Descriptor descriptor_;
    STATUS status_ = kStatusOk;
    uint64_t bytes_ = 0;
    std::string buffer_;
};

struct LineForm {
    std::string end = "\n";
    size_t mostBytes = 0;  // of a line without its end; 0: lines are never wrapped
    bool convertTabs = false;
};

// Lines of SCS text.  A NUL, LF, CR or CR LF in the text ends a line; a line that is too long is wrapped at
// its last blank, a word that is too long between two characters.
class LineWriter {
public:
    LineWriter(TextFile* file, LineForm form) : file_(file), form_(std::move(form)) {}
    void Add(std::string_view piece);
    void EndLine();

private:
    void AddRun(std::string_view run);
    void AddChunk(std::string chunk);
    void WriteFullLines();

    TextFile* file_;
    LineForm form_;
    std::string pending_;       // the line that is not complete yet, when lines are wrapped
    bool afterReturn_ = false;  // a CR was the last character: a LF belongs to it
};

}  // namespace pavex
