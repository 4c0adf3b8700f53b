// tests/support/eventually.cpp: waiting for what other threads and processes do.
#include "tests/support/eventually.h"

#include <chrono>
#include <thread>

namespace pavex {

bool Eventually(const std::function<bool()>& condition, int seconds)
{
    for (int i = 0; i < seconds * 100; ++i) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

}  // namespace pavex
