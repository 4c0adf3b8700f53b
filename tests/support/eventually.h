// tests/support/eventually.h: waiting for what other threads and processes do.
#pragma once

#include <functional>

namespace pavex {

// Waits until the condition holds; false after the time, a minute unless told.
bool Eventually(const std::function<bool()>& condition, int seconds = 60);

}  // namespace pavex
