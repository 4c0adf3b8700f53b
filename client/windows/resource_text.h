// client/windows/resource_text.h: the texts of dialogs and of the client's own windows in the user's language.
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

// What the client's windows say that are no dialogs of the add-in.
struct ClientText {
    const char* key;      // in the table "client" of the add-in's bundle
    const char* english;  // UTF-8
};
inline constexpr ClientText kTextQuit = {"quit", "Quit"};
inline constexpr ClientText kTextLog = {"log", "Log"};
inline constexpr ClientText kTextPathTooLong = {
    "path-too-long", "The path of this file is too long. Move the file to a folder with a shorter path."};
inline constexpr const ClientText* kClientTexts[] = {&kTextQuit, &kTextLog, &kTextPathTooLong};

// In the user's language, UTF-8; in English where the table has none.
std::string Localized(const ClientText& text);

}  // namespace pavex
