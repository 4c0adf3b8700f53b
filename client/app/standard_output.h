// client/app/standard_output.h: standard output that remembers why it could not be written.
#pragma once

#include <array>
#include <ostream>
#include <streambuf>

namespace pavex {

// Opens what the caller has closed of standard input, output and error, so that no other file gets its number: reading
// and writing there fail as before.
void KeepStandardFiles();

// Stands behind a stream, as std::cout, for the life of the object, and writes to the descriptor.
class StandardOutput : private std::streambuf {
public:
    // stream, descriptor: borrowed.
    StandardOutput(std::ostream* stream, int descriptor);
    // Writes what is left; the stream is as before.
    ~StandardOutput() override;
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    // Writes all.  Zero, or the error of the first write that failed; one who has seen enough and reads no further
    // (EPIPE) is none.
    int Finish();

private:
    int_type overflow(int_type character) override;
    int sync() override;
    bool Drain();

    std::ostream* stream_;
    std::streambuf* before_;
    int descriptor_;
    int failure_ = 0;  // an errno
    std::array<char, 16384> bytes_{};
};

}  // namespace pavex
