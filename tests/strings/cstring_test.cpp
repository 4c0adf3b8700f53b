// tests/strings/cstring_test.cpp: what the wide string keeps and what it answers.
#include "strings/cstring.h"

#include <gtest/gtest.h>

#include <string>

#include "client/foundation/host.h"
#include "platform/owner.h"

namespace {

std::string Units(const CString& text)
{
    std::string units;
    for (int i = 0; i < text.GetLength(); ++i)
        units += (i == 0 ? "" : " ") + std::to_string(static_cast<unsigned long>(text.GetAt(i)));
    return units;
}

CString There(const CString& text)
{
    const CFOwner<CFStringRef> there(text.toCFStringRef());
    return CString(there.Get());
}

TEST(CString, HoldsOneCharacterForEachUtf16UnitOfUtf8)
{
    EXPECT_EQ(CString("abc").GetLength(), 3);
    EXPECT_EQ(Units(CString("\x41\xF0\x9F\x98\x80")), "65 55357 56832");
    EXPECT_EQ(CString("\x41\xF0\x9F\x98\x80").toString(), "\x41\xF0\x9F\x98\x80");
    EXPECT_EQ(CString("").GetLength(), 0);
}

TEST(CString, IsEmptyWhenItsUtf8IsMalformed)
{
    for (const char* bytes : {"\xC3", "ab\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF"})
        EXPECT_TRUE(CString(bytes).IsEmpty()) << Units(CString(bytes));
}

TEST(CString, IsEmptyWhenItIsMadeFromNothing)
{
    EXPECT_TRUE(CString().IsEmpty());
    EXPECT_TRUE(CString(static_cast<const char*>(nullptr)).IsEmpty());
    EXPECT_TRUE(CString(static_cast<const wchar_t*>(nullptr)).IsEmpty());
    EXPECT_TRUE(CString(static_cast<CFStringRef>(nullptr)).IsEmpty());
    EXPECT_TRUE(CString(static_cast<const unsigned short*>(nullptr), 3).IsEmpty());
}

TEST(CString, CopiesWideTextAndSingleCharacters)
{
    EXPECT_EQ(CString(L"wide").GetWString(), L"wide");
    EXPECT_EQ(CString(L'x').GetWString(), L"x");
    EXPECT_EQ(CString(std::wstring(L"a\0b", 3)).GetLength(), 3);
    EXPECT_STREQ(CString(L"wide").c_str(), L"wide");
}

TEST(CString, StopsAtTheFirstZeroUnitOfAUtf16Buffer)
{
    const unsigned short text[] = {'a', 'b', 0, 'c', 'd', 0};
    EXPECT_EQ(CString(text, 0).GetWString(), L"ab");
    EXPECT_EQ(CString(text, 5).GetWString(), L"ab");
    EXPECT_EQ(CString(text, 1).GetWString(), L"a");
    EXPECT_TRUE(CString(text, -1).IsEmpty());
    EXPECT_TRUE(CString().UniCharToWString(text, 0).empty());
    EXPECT_EQ(CString().UniCharToWString(text, 4), L"ab");
    EXPECT_EQ(CString().StrToWString("ab"), L"ab");
}

TEST(CString, StopsAtTheFirstZeroUnitOfACoreFoundationString)
{
    const UniChar units[] = {'a', 0xD83D, 0, 'b'};
    const CFOwner<CFStringRef> text(CFStringCreateWithCharacters(nullptr, units, 4));
    EXPECT_EQ(Units(CString(text.Get())), "97 55357");
}

TEST(CString, GoesToCoreFoundationUnitByUnit)
{
    EXPECT_EQ(There(CString("A\xF0\x9F\x98\x80")), CString("A\xF0\x9F\x98\x80"));
    EXPECT_EQ(Units(There(CString(L'\xD800'))), "55296");
    EXPECT_EQ(Units(There(CString(static_cast<wchar_t>(0x1F600)))), "62976");  // the high bits are lost
    const CFOwner<CFStringRef> empty(CString().toCFStringRef());
    ASSERT_NE(empty.Get(), nullptr);
    EXPECT_EQ(CFStringGetLength(empty.Get()), 0);
}

TEST(CString, EndsItsUtf8BeforeALoneSurrogate)
{
    EXPECT_EQ(CString(std::wstring(L"abc\xD800"
                                   L"de"))
                  .toString(),
              "abc");
    EXPECT_EQ(CString(L"\x20AC").toString(), "\xE2\x82\xAC");
    EXPECT_EQ(CString().toString(), "");
    EXPECT_EQ(CString(std::wstring(L"a\0b", 3)).toString(), std::string("a\0b", 3));
}

TEST(CString, GivesOneCharacterAndTakesOne)
{
    CString text("abc");
    text[1] = L'x';
    const CString& constant = text;
    EXPECT_EQ(text.GetAt(0), L'a');
    EXPECT_EQ(constant[1], L'x');
    EXPECT_EQ(text.GetWString(), L"axc");
}

TEST(CString, CopiesAreIndependent)
{
    CString text("abc");
    const CString copy = text;
    text[0] = L'x';
    text += "d";
    EXPECT_EQ(copy.GetWString(), L"abc");
    EXPECT_EQ(text.GetWString(), L"xbcd");
    text.Empty();
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.GetLength(), 0);
}

TEST(CString, LowersByTheCLibrary)
{
    CString text(L"ABC \xC4 \x3A9");
    EXPECT_EQ(&text.MakeLower(), &text);
    EXPECT_EQ(text.GetWString(), L"abc \xC4 \x3A9");
}

TEST(CString, ComparesEveryCharacter)
{
    EXPECT_TRUE(CString("abc") == CString("abc"));
    EXPECT_TRUE(CString("abc") != CString("Abc"));
    EXPECT_TRUE(CString(L"\xE9") != CString(L"e\x301"));
    EXPECT_TRUE(CString("ab") != CString("abc"));
}

TEST(CString, ComparesWithoutCaseAsNumbers)
{
    EXPECT_EQ(CString("ABC").CompareNoCase("abc"), 0);
    EXPECT_EQ(CString("abc").CompareNoCase("abd"), -1);
    EXPECT_EQ(CString("abd").CompareNoCase("ABC"), 1);
    EXPECT_EQ(CString("STRASSE").CompareNoCase("stra\xC3\x9F"
                                               "e"),
              0);
    EXPECT_EQ(CString().CompareNoCase(CString()), 0);
    EXPECT_EQ(CString("a").CompareNoCase(CString()), 1);
}

TEST(CString, ComparesWithoutCaseInEveryAlphabet)
{
    EXPECT_EQ(CString(L"\xC4\xD6\xDC").CompareNoCase(L"\xE4\xF6\xFC"), 0);        // German
    EXPECT_EQ(CString(L"\x3A3\x39F").CompareNoCase(L"\x3C3\x3BF"), 0);            // Greek
    EXPECT_EQ(CString(L"\x41C\x418\x420").CompareNoCase(L"\x43C\x438\x440"), 0);  // Cyrillic
    EXPECT_EQ(CString(L"\xC4").CompareNoCase(L"A"), 1);
    EXPECT_EQ(CString("ab").CompareNoCase("ABC"), -1);
    EXPECT_EQ(CString("A\xF0\x9F\x98\x80").CompareNoCase("a\xF0\x9F\x98\x80"), 0);
    EXPECT_EQ(CString("\xF0\x9F\x98\x80").CompareNoCase("\xF0\x9F\x98\x81"), -1);
}

TEST(CString, ComparesByTheWholeOfEachCharacterButWithoutCaseByItsLowBits)
{
    const CString wide(L'\x10041');
    EXPECT_TRUE(wide != CString("A"));
    EXPECT_EQ(wide.CompareNoCase("A"), 0);
    EXPECT_EQ(wide.CompareNoCase("a"), 0);
    EXPECT_EQ(wide.toString(), "A");
    EXPECT_EQ(wide.GetWString(), L"\x10041");
}

TEST(CString, FindsTheFirstOccurrenceAtOrAfterTheStart)
{
    const CString text("abcabc");
    EXPECT_EQ(text.Find("bc", 0), 1);
    EXPECT_EQ(text.Find("bc", 1), 1);
    EXPECT_EQ(text.Find("bc", 2), 4);
    EXPECT_EQ(text.Find("bc", 5), -1);
    EXPECT_EQ(text.Find("xy", 0), -1);
    EXPECT_EQ(text.Find("a", 99), -1);
    EXPECT_EQ(text.Find("a", -1), 0);
}

TEST(CString, LeftAndRightOfTheWholeLengthAreEmpty)
{
    const CString abc("abc");
    EXPECT_EQ(abc.Left(3).GetWString(), L"");
    EXPECT_EQ(abc.Right(3).GetWString(), L"");
    EXPECT_EQ(abc.Left(4).GetWString(), L"");
    EXPECT_EQ(abc.Left(2).GetWString(), L"ab");
    EXPECT_EQ(abc.Right(2).GetWString(), L"bc");
    EXPECT_EQ(abc.Right(0).GetWString(), L"");
    EXPECT_EQ(abc.Left(0).GetWString(), L"");
    EXPECT_EQ(abc.Left(-1).GetWString(), L"");
    EXPECT_EQ(abc.Right(-1).GetWString(), L"");
}

TEST(CString, MidOfTheWholeLengthIsTheWholeText)
{
    const CString abc("abc");
    EXPECT_EQ(abc.Mid(0, 3).GetWString(), L"abc");
    EXPECT_EQ(abc.Mid(1, 2).GetWString(), L"bc");
    EXPECT_EQ(abc.Mid(3, 0).GetWString(), L"");
    EXPECT_EQ(abc.Mid(1, 3).GetWString(), L"");
    EXPECT_EQ(abc.Mid(-1, 1).GetWString(), L"");
    EXPECT_EQ(abc.Mid(1, -1).GetWString(), L"");
    EXPECT_EQ(abc.Mid(2, 2147483647).GetWString(), L"");
    EXPECT_EQ(abc.Mid(3).GetWString(), L"");
    EXPECT_EQ(abc.Mid(1).GetWString(), L"bc");
    EXPECT_EQ(abc.Mid(0).GetWString(), L"abc");
    EXPECT_EQ(abc.Mid(-1).GetWString(), L"");
}

TEST(CString, ReleasesWhatItMakes)
{
    const long before = pavex::LiveObjects();
    {
        const CString text("A\xF0\x9F\x98\x80");
        static_cast<void>(text.toString());
        static_cast<void>(text.CompareNoCase("b"));
        static_cast<void>(There(text));
        static_cast<void>(CString("\xC3"));
    }
    EXPECT_EQ(pavex::LiveObjects(), before);
}

}  // namespace
