// client/search/marked_text.h: where in a text the words stand that were looked for.
// Words are compared as the search engine holds them: without case and accents.
#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace pavex {

struct Mark {
    size_t begin;  // bytes
    size_t end;

    bool operator==(const Mark&) const = default;
};

// The terms that a query was understood as, from the engine's account of it: word forms, prefixes expanded.
std::vector<std::string> TermsOfQuery(std::string_view account);

// Terms made ready to be looked for in many texts.
class SoughtTerms {
public:
    explicit SoughtTerms(const std::vector<std::string>& terms);

    // The places of the terms in a UTF-8 text, in order, none touching another's.
    std::vector<Mark> FindIn(std::string_view text) const;

private:
    // Of the longest term that stands there, in characters; 0: none does.
    size_t LengthAt(std::u32string_view text, size_t at) const;

    std::set<std::u32string, std::less<>> terms_;  // folded
    std::set<size_t, std::greater<>> lengths_;     // that terms have
};

// A piece of about maxBytes around the first place of a term, "…" where something is left out; the beginning
// where there is none.  Line ends and other control characters become blanks.
std::string CutSnippet(std::string_view text, const SoughtTerms& terms, size_t maxBytes);

// The text with the places of the terms between two strings.
std::string WithMarks(std::string_view text, const SoughtTerms& terms, std::string_view before, std::string_view after);

}  // namespace pavex
