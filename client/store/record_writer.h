// client/store/record_writer.h: writes the records of rich text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pavex {

constexpr uint32_t kDefaultFont = 0x0A000001;

// A record without payload: a paragraph or a rule.
void AppendBareRecord(std::string* records, uint16_t signature);
// Text as it stands, over as many text records as it takes, cut between characters.
void AppendTextRecords(std::string* records, uint32_t style, uint32_t font, std::string_view scs);

}  // namespace pavex
