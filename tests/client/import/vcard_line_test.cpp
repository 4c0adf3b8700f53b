// tests/client/import/vcard_line_test.cpp: names, parameters, encodings and escapes of a line.
#include "client/import/vcard_line.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

// "GROUP.NAME;PARAMETER=value:VALUE" of what was read.
std::string Read(std::string_view line)
{
    CardProperty property;
    if (!ReadCardLine(line, &property))
        return "none";
    std::string text = property.group.empty() ? property.name : property.group + "." + property.name;
    for (const CardParameter& parameter : property.parameters)
        text += ";" + parameter.name + "=" + parameter.value;
    return text + ":" + property.value;
}

std::string Decoded(std::string_view line)
{
    CardProperty property;
    EXPECT_TRUE(ReadCardLine(line, &property)) << line;
    return DecodedValue(property);
}

using Parts = std::vector<std::string>;

TEST(VcardLine, HasGroupNameParametersAndValue)
{
    EXPECT_EQ(Read("FN:Ann Lee"), "FN:Ann Lee");
    EXPECT_EQ(Read("item1.tel;type=Work:+1:2;3"), "ITEM1.TEL;TYPE=Work:+1:2;3");
    EXPECT_EQ(Read(" FN :Ann"), "FN:Ann");
}

TEST(VcardLine, JoinsParametersOfOneName)
{
    EXPECT_EQ(Read("TEL;TYPE=work,voice;X=1;TYPE=pref:1"), "TEL;TYPE=work,voice,pref;X=1:1");
    EXPECT_EQ(Read("TEL;TYPE=\"work,cell\":1"), "TEL;TYPE=work,cell:1");
}

TEST(VcardLine, NamesTheBareParametersOfTheOldVersion)
{
    EXPECT_EQ(Read("TEL;WORK;VOICE;PREF:1"), "TEL;TYPE=WORK,VOICE,PREF:1");
    EXPECT_EQ(Read("NOTE;QUOTED-PRINTABLE:a"), "NOTE;ENCODING=QUOTED-PRINTABLE:a");
    EXPECT_EQ(Read("PHOTO;base64;JPEG:a"), "PHOTO;ENCODING=base64;TYPE=JPEG:a");
    EXPECT_EQ(Read("KEY;URL:a"), "KEY;VALUE=URL:a");
}

TEST(VcardLine, MayHaveSeparatorsInQuotedParameters)
{
    EXPECT_EQ(Read("ADR;LABEL=\"a;b: c\";TYPE=home:x"), "ADR;LABEL=a;b: c;TYPE=home:x");
    EXPECT_EQ(Read("ADR;LABEL=\"a:b"), "ADR;LABEL=a:b") << "a quote that is never closed quotes nothing";
}

TEST(VcardLine, IsNoneWithoutAColonOrAName)
{
    for (const char* line : {"", "no property", ":value", ";TYPE=home:x", "two words:value", "caf\xC3\xA9:x"})
        EXPECT_EQ(Read(line), "none") << line;
}

TEST(VcardLine, KeepsNoMoreParametersThanMakeSense)
{
    std::string line = "X";
    for (int i = 0; i < 100000; ++i)
        line += ";P" + std::to_string(i) + "=";
    CardProperty property;
    ASSERT_TRUE(ReadCardLine(line + ":v", &property));
    EXPECT_EQ(property.parameters.size(), 50U);
    EXPECT_EQ(property.value, "v");
}

TEST(VcardValue, IsDecodedFromEachEncoding)
{
    EXPECT_EQ(Decoded("FN:Zo\xC3\xAB"), "Zoë");
    EXPECT_EQ(Decoded("FN;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:Zo=C3=AB=0D=0Ax=zz="), "Zoë\nx=zz=");
    EXPECT_EQ(Decoded("FN;ENCODING=b:Wm/Dqw=="), "Zoë");
    EXPECT_EQ(Decoded("FN;BASE64: Wm/D qw=="), "Zoë");
    EXPECT_EQ(Decoded("FN;ENCODING=8BIT:Zo\xC3\xAB"), "Zoë");
    EXPECT_EQ(Decoded("X-BINARY;ENCODING=b:AAEC"), "");
}

TEST(VcardValue, IsDecodedFromEachCharset)
{
    EXPECT_EQ(Decoded("FN;CHARSET=ISO-8859-1:Zo\xEB"), "Zoë");
    EXPECT_EQ(Decoded("FN:Zo\xEB"), "Zoë") << "of the old version no charset is declared";
    EXPECT_EQ(Decoded("FN;CHARSET=KOI8-R;ENCODING=QUOTED-PRINTABLE:=E1=CE=CE=C1"), "Анна");
    EXPECT_EQ(Decoded("FN;CHARSET=SHIFT_JIS;ENCODING=QUOTED-PRINTABLE:=95\\=8E=A6"), "表示");
}

TEST(VcardValue, IsUnescaped)
{
    EXPECT_EQ(UnescapedText("a\\nb\\Nc\\, d\\; e\\: \\\\f \\\"g\\\" C:\\x \\"), "a\nb\nc, d; e: \\f \"g\" C:\\x \\");
}

TEST(VcardValue, IsSplitWhereItIsNotEscaped)
{
    EXPECT_EQ(SplitCardText("Lee;Ann; \\;x ;", ';'), (Parts{"Lee", "Ann", ";x", ""}));
    EXPECT_EQ(SplitCardText("a\\,b,c\\\\,d", ','), (Parts{"a,b", "c\\", "d"}));
    EXPECT_EQ(SplitCardText("a;b\\", ';'), (Parts{"a", "b\\"}));
    EXPECT_EQ(SplitCardText("", ';'), Parts{""});
}

}  // namespace
}  // namespace pavex
