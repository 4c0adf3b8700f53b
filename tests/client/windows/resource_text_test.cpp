// tests/client/windows/resource_text_test.cpp: dialogs in the user's language, and the shipped translations.
#include "client/windows/resource_text.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>

#include "client/foundation/host.h"
#include "client/store/charset.h"
#include "client/store/host.h"
#include "tests/client/windows/recording_procedure.h"
#include "tests/client/windows/text_rooms.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/translations.h"

namespace {

constexpr unsigned int kDialog = 2070;
using Texts = std::map<std::string, std::string>;

Texts EnglishTexts()
{
    const pavex::DialogResource* resource = pavex::FindDialogResource(kDialog);
    Texts texts = {{"2070", resource->title}};
    for (const pavex::ControlRow& row : resource->controls) {
        if (*row.text != '\0')
            texts["2070." + std::to_string(row.id)] = row.text;
    }
    return texts;
}

// The widest text that a control, or the title, has room for.
size_t RoomOf(const std::string& key)
{
    if (key == "2070")
        return kTitleColumns;
    for (const pavex::ControlRow& row : pavex::FindDialogResource(kDialog)->controls) {
        if ("2070." + std::to_string(row.id) == key)
            return ColumnsOf(row.kind);
    }
    return 0;
}

// A word in a menu, or a sentence in a box.
size_t RoomOfClientText(const pavex::ClientText& text)
{
    return &text == &pavex::kTextPathTooLong ? kBoxColumns : kMenuColumns;
}

struct SameAsEnglish {
    const char* language;
    const char* key;
    const char* reason;
};
constexpr SameAsEnglish kSameAsEnglish[] = {
    {"de", "2070.1", "the button is called so in this language, too"},
    {"fr", "2070.1", "the button is called so in this language, too"},
    {"ja", "2070.1", "the button is called so in this language, too"},
    {"fr", "2070.3396", "the same word in both languages"},
};

bool MayBeEnglish(const std::string& language, const std::string& key)
{
    for (const SameAsEnglish& row : kSameAsEnglish) {
        if (row.language == language && row.key == key)
            return true;
    }
    return false;
}

class ResourceTextTest : public testing::Test {
protected:
    ~ResourceTextTest() override
    {
        pavex::SetAddInBundle("");
        pavex::SetUserLanguages({"en"});
    }
    static void Speak(const std::string& language, const std::string& bundle = TORVIK_SOURCE_DIR "/resources")
    {
        pavex::SetUserLanguages({language});
        pavex::SetAddInBundle(bundle);
    }
    // As the dialog shows them, by the keys of the table.
    static Texts Shown()
    {
        const RecordedDialog dialog;
        Texts texts = {{"2070", dialog.Title()}};
        for (const pavex::Control& control : dialog.Controls()) {
            if (!control.text.empty())
                texts["2070." + std::to_string(control.id)] = pavex::Utf8FromScs(control.text);
        }
        return texts;
    }
};

TEST_F(ResourceTextTest, IsEnglishWithoutABundleAndInALanguageThatNobodyTranslatedTo)
{
    Speak("de", "");
    EXPECT_EQ(Shown(), EnglishTexts());
    for (const char* language : {"en", "pt_BR.UTF-8", "zh_TW", "C"}) {
        Speak(language);
        EXPECT_EQ(Shown(), EnglishTexts()) << language;
    }
}

TEST_F(ResourceTextTest, OfTheClientIsEnglishWhereThereIsNoTranslation)
{
    for (const std::string& bundle : {std::string(), std::string(TORVIK_SOURCE_DIR "/resources")}) {
        Speak("en", bundle);
        for (const pavex::ClientText* text : pavex::kClientTexts)
            EXPECT_EQ(Localized(*text), text->english);
    }
}

TEST_F(ResourceTextTest, IsEnglishWhereTheTranslationLacksIt)
{
    const TemporaryDirectory bundle;
    std::filesystem::create_directory(bundle.Path() / "de.lproj");
    WriteWholeFile(bundle / "de.lproj/dialogs.strings", "\"2070.2\" = \"Abbrechen\";\n\"2070.3383\" = \"nichts\";\n");
    Speak("de", bundle.Path());
    Texts expected = EnglishTexts();
    expected["2070.2"] = "Abbrechen";  // while the list, without a text in English, stays without one
    EXPECT_EQ(Shown(), expected);
}

class DialogTranslation : public ResourceTextTest, public testing::WithParamInterface<std::string> {
protected:
    const Texts texts_ = ReadTable(GetParam(), "dialogs");
};
INSTANTIATE_TEST_SUITE_P(Shipped, DialogTranslation, testing::ValuesIn(kTranslations),
                         [](const auto& language) { return language.param.substr(0, language.param.find('-')); });

TEST_P(DialogTranslation, IsWhatTheDialogShowsInEveryControlThatHasAText)
{
    Speak(GetParam());
    EXPECT_EQ(Shown(), texts_);
    EXPECT_EQ(texts_.size(), EnglishTexts().size());
}

TEST_P(DialogTranslation, LeavesNothingEmptyAndNothingInEnglish)
{
    const Texts english = EnglishTexts();
    for (const auto& [key, text] : texts_) {
        EXPECT_NE(text, "") << key;
        ASSERT_TRUE(english.contains(key)) << key;
        EXPECT_EQ(text == english.at(key), MayBeEnglish(GetParam(), key)) << key << " " << text;
    }
}

TEST_P(DialogTranslation, HasTheClientsOwnTextsAndNoOther)
{
    Speak(GetParam());
    Texts shown, english;
    for (const pavex::ClientText* text : pavex::kClientTexts) {
        shown[text->key] = Localized(*text);
        EXPECT_NE(Localized(*text), text->english);
        EXPECT_LE(Columns(Localized(*text)), RoomOfClientText(*text)) << Localized(*text);
        EXPECT_EQ(BadPunctuation(GetParam(), Localized(*text)), "") << Localized(*text);
    }
    EXPECT_EQ(ReadTable(GetParam(), "client"), shown);
}

TEST_P(DialogTranslation, FitsTheControls)
{
    for (const auto& [key, text] : texts_)
        EXPECT_LE(Columns(text), RoomOf(key)) << key << " " << text;
}

TEST_P(DialogTranslation, KeepsThePunctuationOfItsLanguage)
{
    for (const auto& [key, text] : texts_)
        EXPECT_EQ(BadPunctuation(GetParam(), text), "") << key << " " << text;
}

TEST_P(DialogTranslation, MarksAsManyLettersAsEnglishDoesAndEachOnce)
{
    std::multiset<char> english, translated;
    for (const auto& [key, text] : EnglishTexts())
        english.merge(AccessKeys(text));
    for (const auto& [key, text] : texts_)
        translated.merge(AccessKeys(text));
    EXPECT_EQ(translated.size(), english.size());
    EXPECT_EQ(std::set<char>(translated.begin(), translated.end()).size(), translated.size());
}

}  // namespace
