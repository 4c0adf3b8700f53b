// dialog/progress_text.h: how far a pass has come, in words.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Longest state of a status line, bytes of UTF-8.
constexpr size_t kStateBytes = 255;

// At most maxBytes of UTF-8, cut between characters.
std::string CutUtf8(std::string_view utf8, size_t maxBytes);
// True for a printf format with exactly three integer conversions (%d, %i or %u, with flags and up to two
// digits of width; all numbered, %1$d to %3$d each once, or none) and nothing else but %%.
bool IsProgressFormat(std::string_view format);
// processed, the whole (total; processed when total is 0) and the percentage, in the given format; in the
// built-in one when it is no progress format.  Percentage of nothing: 0.  At most kStateBytes.
std::string FormatProgress(const std::string& format, uint32_t processed, uint32_t total);
