// client/foundation/strings_table.h: reads `.strings` tables: "key" = "text"; with comments and escapes.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace pavex::cf {

struct StringsFault {
    int line;  // from 1
    std::string reason;
};

struct StringsTable {
    std::unordered_map<std::u16string, std::u16string> entries;  // a key given twice: the later text
    std::optional<StringsFault> fault;                           // what ended the reading early
};

// bytes: UTF-8, with or without a byte order mark, or UTF-16 with one.  After a fault the entries
// before it are there.
StringsTable ParseStrings(std::string_view bytes);

}  // namespace pavex::cf
