// client/store/ini_file.h: ini text as a whole: sections, variables, comments.
// Variables of one section by name, without regard to case.  A value that a line cannot hold as it
// stands (control characters, blanks or quotes at its ends) is written in double quotes with
// backslash escapes.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace pavex {

struct NoCaseLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
};
using VariableMap = std::map<std::string, std::string, NoCaseLess>;

class IniText {
public:
    // Any bytes: what cannot be read as a line of ini text is dropped.
    explicit IniText(std::string_view bytes);
    ~IniText();
    IniText(const IniText&) = delete;
    IniText& operator=(const IniText&) = delete;

    bool HasSection(const std::string& section) const;
    VariableMap Variables(const std::string& section) const;
    // False for a name that no line can hold.
    bool Set(const std::string& section, const std::string& name, std::string_view value);
    void Remove(const std::string& section, const std::string& name);
    // The text, everything else and the comments in their old order.
    std::string Text() const;

private:
    struct Parsed;
    std::unique_ptr<Parsed> parsed_;
};

std::string QuoteValue(std::string_view value);
std::string UnquoteValue(std::string_view written);  // as it stands when its quoting is not ours

}  // namespace pavex
