// client/store/log_format.h: texts with places for arguments, as the log's string table has them.
// Places: %s text, %d a signed and %u an unsigned number, %X one in hexadecimal, %T a time; "%2$s" names its
// argument, so that a translation may change their order; %% is a percent sign.  Nothing else: a
// text with any other place takes no arguments, since reading a wrong one could end the process.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pavex {

class LogFormat {
public:
    // Empty for a malformed text: an unknown place, named and unnamed ones mixed, one argument as two
    // kinds, or an argument without a place (its kind would not be known).
    static std::optional<LogFormat> Parse(std::string_view text);

    // The kinds of the arguments in their own order: 's', 'd', 'u', 'X' or 'T'.
    const std::string& Kinds() const { return kinds_; }
    // The text with the arguments, one a kind and printed already, in their places.
    std::string Fill(const std::vector<std::string>& arguments) const;

private:
    struct Part {
        std::string literal;
        size_t argument = 0;  // from 1; what goes behind the literal, 0: nothing
    };
    std::vector<Part> parts_;
    std::string kinds_;
};

// The text on one line: control characters as \n, \t or \xNN.
std::string OneLine(std::string_view utf8);

}  // namespace pavex
