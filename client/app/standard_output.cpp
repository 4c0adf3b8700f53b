// client/app/standard_output.cpp: standard output that remembers why it could not be written.
#include "client/app/standard_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "client/store/descriptor.h"

namespace pavex {

void KeepStandardFiles()
{
    for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number)
        if (fcntl(number, F_GETFD) < 0 && errno == EBADF)
            (void)open("/dev/null", number == STDIN_FILENO ? O_WRONLY : O_RDONLY);  // gets the lowest free number
}

StandardOutput::StandardOutput(std::ostream* stream, int descriptor)
    : stream_(stream), before_(stream->rdbuf(this)), descriptor_(descriptor)
{
    setp(bytes_.data(), bytes_.data() + bytes_.size());
}

StandardOutput::~StandardOutput()
{
    (void)Drain();
    (void)stream_->rdbuf(before_);
}

int StandardOutput::Finish()
{
    (void)Drain();
    return failure_ == EPIPE ? 0 : failure_;
}

// After a failure nothing more is written: a text with a hole in it would look whole.
bool StandardOutput::Drain()
{
    const std::string_view waiting(pbase(), static_cast<size_t>(pptr() - pbase()));
    if (failure_ == 0 && !waiting.empty() && !WriteAll(descriptor_, waiting))
        failure_ = errno;
    setp(bytes_.data(), bytes_.data() + bytes_.size());
    return failure_ == 0;
}

StandardOutput::int_type StandardOutput::overflow(int_type character)
{
    if (!Drain())
        return traits_type::eof();
    return traits_type::eq_int_type(character, traits_type::eof()) ? traits_type::not_eof(character)
                                                                   : sputc(traits_type::to_char_type(character));
}

int StandardOutput::sync()
{
    return Drain() ? 0 : -1;
}

}  // namespace pavex
