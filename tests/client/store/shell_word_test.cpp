// tests/client/store/shell_word_test.cpp: words for the shell, as the shell reads them.
#include "client/store/shell_word.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>

namespace pavex {
namespace {

// What the shell makes of a word.
std::string ReadByShell(const std::string& word)
{
    std::string text;
    FILE* const shell = popen(("printf %s " + word).c_str(), "r");
    if (shell == nullptr)
        return text;
    std::array<char, 256> bytes{};
    while (const size_t count = fread(bytes.data(), 1, bytes.size(), shell))
        text.append(bytes.data(), count);
    (void)pclose(shell);
    return text;
}

TEST(ShellWord, IsLeftAsItIsWhereTheShellReadsItSo)
{
    for (const char* plain : {"mail.vlt", "/home/ann/Mail-2007_03", "/home/\xC3\xA4nne/a+b,c:d@e%f"}) {
        EXPECT_EQ(ShellWord(plain), plain);
        EXPECT_EQ(ReadByShell(plain), plain);
    }
}

TEST(ShellWord, IsQuotedWhereTheShellWouldReadItOtherwise)
{
    EXPECT_EQ(ShellWord("/tmp/od d"), "'/tmp/od d'");
    EXPECT_EQ(ShellWord("it's"), "'it'\\''s'");
    for (const char* odd :
         {"", "a b", "it's", "''", "a;b", "#x", "~", "$HOME", "`id`", "a\\b", "\"", "*", "a\nb", "a=b"})
        EXPECT_EQ(ReadByShell(ShellWord(odd)), odd);
}

}  // namespace
}  // namespace pavex
