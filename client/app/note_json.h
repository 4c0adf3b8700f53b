// client/app/note_json.h: notes as JSON, both ways (docs/formats/note-json.md).
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "client/store/note.h"

namespace pavex {

// Reads a note.  False with *error, which names the member and the reason, when the JSON is no note;
// *note is then left half filled.  Takes any JSON value without throwing.
bool NoteFromJson(const nlohmann::ordered_json& json, Note* note, std::string* error);

// What NoteFromJson reads back as the same note.  An item whose value is damaged, or of a type that JSON
// has no form for, comes as {"type": number, "hex": "bytes"}.
nlohmann::ordered_json JsonFromNote(const Note& note);

}  // namespace pavex
