// tests/client/foundation/property_list_test.cpp: the XML form, to the byte, and as Python reads it back.
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

#include "client/foundation/collections.h"
#include "client/foundation/number.h"
#include "tests/client/foundation/foundation_fixture.h"
#include "tests/support/temporary_directory.h"

class FoundationPropertyList : public FoundationTest {};

namespace {

using pavex::cf::New;
using pavex::cf::Object;
using pavex::cf::Ref;
using pavex::cf::ToRef;

// The document, or "(null)".
std::string Xml(CFTypeRef value)
{
    const Owned<CFDataRef> data(CFPropertyListCreateXMLData(nullptr, value));
    if (!data)
        return "(null)";
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data)), static_cast<size_t>(CFDataGetLength(data))};
}

const std::string kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n";
const std::string kTail = "</plist>\n";

std::string Document(const std::string& content)
{
    return kHead + content + kTail;
}

std::string TextElement(std::u16string_view text)
{
    std::string document = Xml(Make(text));
    document.erase(document.size() - kTail.size());
    return document.substr(kHead.size());
}

Owned<CFDateRef> DateAt(double at)
{
    return Owned<CFDateRef>(CFDateCreate(nullptr, at));
}

Owned<CFNumberRef> Real(double value)
{
    return Owned<CFNumberRef>(CFNumberCreate(nullptr, kCFNumberDoubleType, &value));
}

// What Python's plistlib makes of documents, one printed line each.
std::vector<std::string> ReadByPython(const std::vector<std::string>& documents)
{
    TemporaryDirectory folder;
    std::string command = "python3 -c 'import plistlib,sys\n"
                          "for f in sys.argv[1:]:\n"
                          "  print(ascii(plistlib.load(open(f,\"rb\"))))'";
    for (size_t i = 0; i < documents.size(); ++i) {
        const std::string file = folder / ("document" + std::to_string(i));
        WriteWholeFile(file, documents[i]);
        command += " " + file;
    }
    std::vector<std::string> lines(1);
    FILE* pipe = popen(command.c_str(), "r");
    for (int c = 0; pipe && (c = std::fgetc(pipe)) != EOF;) {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back().push_back(static_cast<char>(c));
    }
    EXPECT_EQ(pclose(pipe), 0) << "a document did not parse";
    lines.pop_back();
    return lines;
}

}  // namespace

TEST_F(FoundationPropertyList, WritesADictionaryToTheByte)
{
    const auto inner = MakeDictionary();
    CFDictionaryAddValue(inner, CFSTR("z"), kCFBooleanTrue);
    CFDictionaryAddValue(inner, CFSTR("a"), kCFBooleanFalse);
    const auto dictionary = MakeDictionary();
    CFDictionaryAddValue(dictionary, CFSTR("text"), Make(u"a & b <c> \"d\" 'e'"));
    CFDictionaryAddValue(dictionary, CFSTR("number"), MakeNumber(-1));
    CFDictionaryAddValue(dictionary, CFSTR("Date"), DateAt(86400.75));
    CFDictionaryAddValue(dictionary, CFSTR("empty"), CFSTR(""));
    CFDictionaryAddValue(dictionary, CFSTR("inner"), inner);
    CFDictionaryAddValue(dictionary, CFSTR("none"), MakeDictionary());
    CFDictionaryAddValue(dictionary, CFSTR("<&>"), CFSTR("key"));
    EXPECT_EQ(Xml(dictionary), Document("<dict>\n"
                                        "\t<key>&lt;&amp;&gt;</key>\n"
                                        "\t<string>key</string>\n"
                                        "\t<key>Date</key>\n"
                                        "\t<date>2001-01-02T00:00:00Z</date>\n"
                                        "\t<key>empty</key>\n"
                                        "\t<string></string>\n"
                                        "\t<key>inner</key>\n"
                                        "\t<dict>\n"
                                        "\t\t<key>a</key>\n"
                                        "\t\t<false/>\n"
                                        "\t\t<key>z</key>\n"
                                        "\t\t<true/>\n"
                                        "\t</dict>\n"
                                        "\t<key>none</key>\n"
                                        "\t<dict/>\n"
                                        "\t<key>number</key>\n"
                                        "\t<integer>-1</integer>\n"
                                        "\t<key>text</key>\n"
                                        "\t<string>a &amp; b &lt;c&gt; \"d\" 'e'</string>\n"
                                        "</dict>\n"));
}

TEST_F(FoundationPropertyList, SortsKeysByUtf16Units)
{
    const auto dictionary = MakeDictionary();
    for (const std::u16string_view key : {u"b", u"\uFFFD", u"B", u"ab", u"\U0001F600", u"a", u""})
        CFDictionaryAddValue(dictionary, Make(key), kCFBooleanTrue);
    std::string expected = "<dict>\n";
    for (const char* key : {"", "B", "a", "ab", "b", "\xF0\x9F\x98\x80", "\xEF\xBF\xBD"})
        expected += std::string("\t<key>") + key + "</key>\n\t<true/>\n";
    EXPECT_EQ(Xml(dictionary), Document(expected + "</dict>\n"));
}

TEST_F(FoundationPropertyList, RefusesWhatIsNoPropertyList)
{
    EXPECT_EQ(Xml(nullptr), "(null)");
    EXPECT_EQ(Xml(MakeUrl("/a", false)), "(null)");
    const auto dictionary = MakeDictionary();
    CFDictionaryAddValue(dictionary, MakeNumber(1), CFSTR("value"));
    EXPECT_EQ(Xml(dictionary), "(null)");
    const auto holder = MakeDictionary();
    CFDictionaryAddValue(holder, CFSTR("url"), MakeUrl("/a", false));
    EXPECT_EQ(Xml(holder), "(null)");
    const Owned<CFMutableDictionaryRef> pointers(CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(Xml(pointers), "(null)");
}

TEST_F(FoundationPropertyList, RefusesAContainerInsideItselfButNotAValueTwice)
{
    const auto twice = MakeDictionary();
    const auto shared = MakeDictionary();
    CFDictionaryAddValue(twice, CFSTR("a"), shared);
    CFDictionaryAddValue(twice, CFSTR("b"), shared);
    EXPECT_EQ(Xml(twice), Document("<dict>\n\t<key>a</key>\n\t<dict/>\n\t<key>b</key>\n\t<dict/>\n</dict>\n"));

    const auto make = [] {
        return CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    };
    CFMutableDictionaryRef outer = make();
    CFMutableDictionaryRef inner = make();
    CFDictionaryAddValue(outer, CFSTR("inner"), inner);
    CFDictionaryAddValue(inner, CFSTR("outer"), outer);
    EXPECT_EQ(Xml(outer), "(null)");
    CFRelease(inner);
    CFRelease(outer);
    CFRelease(outer);  // takes the circle apart: the reference that inner held
}

TEST_F(FoundationPropertyList, RefusesEndlessDepthInsteadOfRunningOutOfStack)
{
    Owned<CFMutableDictionaryRef> nested = MakeDictionary();
    for (int level = 0; level < 5000; ++level) {
        Owned<CFMutableDictionaryRef> outer = MakeDictionary();
        CFDictionaryAddValue(outer, CFSTR("in"), nested);
        nested = std::move(outer);
    }
    EXPECT_EQ(Xml(nested), "(null)");
}

TEST_F(FoundationPropertyList, WritesCharactersThatXmlCannotHoldAsReplacements)
{
    const std::string r = "\xEF\xBF\xBD";
    EXPECT_EQ(TextElement(u"tab\tline\nreturn\r."), "<string>tab\tline\nreturn&#13;.</string>\n");
    EXPECT_EQ(TextElement(std::u16string_view(u"\0\x01\x08\x0B\x0C\x0E\x1F\x7F", 8)),
              "<string>" + r + r + r + r + r + r + r + "\x7F</string>\n");
    EXPECT_EQ(TextElement(u"\xFFFE\xFFFF\uFFFD\uFEFF"), "<string>" + r + r + r + "\xEF\xBB\xBF</string>\n");
    EXPECT_EQ(TextElement(u"abc\xD800"
                          u"def&ghi"),
              "<string>abc" + r + "def&amp;ghi</string>\n");
    EXPECT_EQ(TextElement(u"\xDC00\xD83D\xD83D\xDE00\xD800"),
              "<string>" + r + r + "\xF0\x9F\x98\x80" + r + "</string>\n");
    const auto dictionary = MakeDictionary();
    CFDictionaryAddValue(dictionary, Make(u"\x01\xD800"), CFSTR(""));
    EXPECT_EQ(Xml(dictionary), Document("<dict>\n\t<key>" + r + r + "</key>\n\t<string></string>\n</dict>\n"));
}

TEST_F(FoundationPropertyList, CutsDatesToWholeSecondsByTheFloor)
{
    const std::pair<double, const char*> dates[] = {{0.0, "2001-01-01T00:00:00Z"},
                                                    {0.999999, "2001-01-01T00:00:00Z"},
                                                    {-0.5, "2000-12-31T23:59:59Z"},
                                                    {-1e-20, "2000-12-31T23:59:59Z"}};
    for (const auto& [at, text] : dates) {
        EXPECT_EQ(Xml(DateAt(at)), Document(std::string("<date>") + text + "</date>\n"));
    }
    const auto yearly = [](int year) { return CFGregorianDateGetAbsoluteTime({year, 1, 1, 0, 0, 0.0}, nullptr); };
    EXPECT_EQ(Xml(DateAt(yearly(10000))), Document("<date>10000-01-01T00:00:00Z</date>\n"));
    EXPECT_EQ(Xml(DateAt(yearly(-1))), Document("<date>-001-01-01T00:00:00Z</date>\n"));
    EXPECT_EQ(Xml(DateAt(yearly(33))), Document("<date>0033-01-01T00:00:00Z</date>\n"));
}

TEST_F(FoundationPropertyList, WritesNumbersInFull)
{
    const int64_t least = INT64_MIN;
    const Owned<CFNumberRef> smallest(CFNumberCreate(nullptr, kCFNumberSInt64Type, &least));
    EXPECT_EQ(Xml(smallest), Document("<integer>-9223372036854775808</integer>\n"));
    const std::pair<double, const char*> reals[] = {
        {0.1, "0.10000000000000001"}, {1e20, "1e+20"},         {1.0, "1"}, {0.0, "0.0"}, {-0.0, "0.0"}, {-2.5, "-2.5"},
        {INFINITY, "+infinity"},      {-INFINITY, "-infinity"}};
    for (const auto& [value, text] : reals)
        EXPECT_EQ(Xml(Real(value)), Document(std::string("<real>") + text + "</real>\n"));
    EXPECT_EQ(Xml(Real(std::nan(""))), Document("<real>nan</real>\n"));
}

TEST_F(FoundationPropertyList, PythonReadsBackWhatWasWritten)
{
    const auto dictionary = MakeDictionary();
    CFDictionaryAddValue(dictionary, CFSTR("date"), DateAt(194745599.0));
    CFDictionaryAddValue(dictionary, CFSTR("number"), MakeNumber(INT32_MIN));
    CFDictionaryAddValue(dictionary, CFSTR("text"), Make(u"\u00E9\U0001F600 & <x> ]]> \r\n\t"));
    CFDictionaryAddValue(dictionary, Make(u"\uD55C"), kCFBooleanTrue);
    EXPECT_EQ(ReadByPython({Xml(dictionary), Xml(Make(u"]]>\x01\xD800")), Xml(Real(0.1))}),
              (std::vector<std::string>{"{'date': datetime.datetime(2007, 3, 4, 23, 59, 59), 'number': -2147483648, "
                                        "'text': '\\xe9\\U0001f600 & <x> ]]> \\r\\n\\t', '\\ud55c': True}",
                                        "']]>\\ufffd\\ufffd'", "0.1"}));
}

TEST_F(FoundationPropertyList, EveryUnitOfUtf16Parses)
{
    std::u16string all;
    for (uint32_t unit = 0; unit <= 0xFFFF; ++unit)
        all.append(1, static_cast<char16_t>(unit)).append(1, u' ');
    const auto dictionary = MakeDictionary();
    CFDictionaryAddValue(dictionary, Make(all), Make(all));
    std::mt19937 random(7);
    std::u16string noise;
    for (int i = 0; i < 20000; ++i)
        noise.push_back(static_cast<char16_t>(random() & 1 ? 0xD800 + random() % 0x800 : random() % 0x60));
    EXPECT_EQ(ReadByPython({Xml(dictionary), Xml(Make(noise))}).size(), 2u);
}

TEST_F(FoundationPropertyList, ArraysAndDataParseToo)
{
    std::vector<Ref<const Object>> values;
    for (const size_t length : {0u, 1u, 2u, 3u, 50u, 51u, 52u}) {
        std::string bytes;
        for (size_t i = 0; i < length; ++i)
            bytes.push_back(static_cast<char>('a' + i % 26));
        values.push_back(Ref<const Object>::Adopt(New<pavex::cf::Data>(std::move(bytes))));
    }
    values.push_back(Ref<const Object>::Adopt(New<pavex::cf::Array>(std::vector<Ref<const Object>>())));
    const Owned<CFArrayRef> array(ToRef<CFArrayRef>(New<pavex::cf::Array>(std::move(values))));
    const std::string document = Xml(array);
    const std::string letters = "abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz";
    EXPECT_EQ(ReadByPython({document}),
              (std::vector<std::string>{"[b'', b'a', b'ab', b'abc', b'" + letters.substr(0, 50) + "', b'" +
                                        letters.substr(0, 51) + "', b'" + letters + "', []]"}));
    for (size_t start = document.find("<data>"); start < document.size();) {
        const size_t end = document.find('\n', start);
        EXPECT_LE(end - start, 76u);
        start = end + 1;
    }
}
