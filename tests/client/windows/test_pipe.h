// tests/client/windows/test_pipe.h: a pipe in the place of a terminal.
#pragma once

#include <stdexcept>
#include <string_view>
#include <unistd.h>

class TestPipe {
public:
    TestPipe()
    {
        if (pipe(ends_) != 0)
            throw std::runtime_error("no pipe");
    }
    ~TestPipe()
    {
        close(ends_[0]);
        CloseWriting();
    }
    TestPipe(const TestPipe&) = delete;
    TestPipe& operator=(const TestPipe&) = delete;

    int Reading() const { return ends_[0]; }
    void Write(std::string_view text)
    {
        if (write(ends_[1], text.data(), text.size()) != static_cast<ssize_t>(text.size()))
            throw std::runtime_error("cannot write to the pipe");
    }
    void CloseWriting()
    {
        if (ends_[1] >= 0)
            close(ends_[1]);
        ends_[1] = -1;
    }

private:
    int ends_[2] = {-1, -1};
};
