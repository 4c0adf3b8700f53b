// tests/support/translations.h: the shipped translations, read as a translator wrote them.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

// Languages with a folder beside English, as the folders are called.
inline const std::vector<std::string> kTranslations = {"de", "es", "fr", "ja", "zh-Hans"};

// The file of a table in the sources.
std::string TableFile(const std::string& language, const std::string& table);
// Its entries; the test fails when a line is neither an entry nor in a comment, or a key comes twice.
std::map<std::string, std::string> ReadTable(const std::string& language, const std::string& table);

// The room that a text takes, in Latin characters; wide East Asian ones count double.  The test fails for
// malformed UTF-8.
size_t Columns(const std::string& utf8);
// The letters behind single '&' marks, in lower case.
std::multiset<char> AccessKeys(const std::string& text);
// What the language never writes (straight quotes, a blank where it has a no-break one) and the text does;
// empty when all is well.
std::string BadPunctuation(const std::string& language, const std::string& text);
