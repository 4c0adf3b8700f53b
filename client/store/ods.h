// client/store/ods.h: structures in their canonical form, little-endian and packed, and in the host's.
#pragma once

#include <string>

#include "platform/store.h"

namespace pavex {

constexpr WORD kLinkToNote = 2;    // LINKRECORD::linkType
constexpr DWORD kLinkFollows = 2;  // LINKRECORD::flags: a NOTELINK follows the variable parts

// Appends the canonical form.
void AppendWord(std::string* bytes, uint16_t word);
void AppendDword(std::string* bytes, uint32_t dword);
void AppendLinkRecord(std::string* bytes, const LINKRECORD& record);
void AppendNoteLink(std::string* bytes, const NOTELINK& link);

}  // namespace pavex
