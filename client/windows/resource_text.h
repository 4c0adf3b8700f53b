// client/windows/resource_text.h: the texts of dialogs in the user's language.
#pragma once

#include <optional>
#include <string>

namespace pavex {

// The text of a control of a dialog, or without one the dialog's title, UTF-8: from the table "dialogs" of
// the add-in's bundle, by the key "DIALOG.CONTROL" or "DIALOG"; `english`, ASCII, where that has none.
// What is empty in English is empty in every language.
std::string ResourceText(unsigned int dialog, std::optional<int> control, const char* english);

// The text by a key of a table of the bundle, UTF-8; `english`, ASCII, where the user's language has none.
std::string TableText(const char* table, const std::string& key, const char* english);

}  // namespace pavex
