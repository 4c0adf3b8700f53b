// tests/indexers/random_notes_test.cpp: notes of every kind with any items absent and of any type, indexed
// through the dispatch and held against the model.
#include <algorithm>
#include <random>

#include "addin/dispatch.h"
#include "indexers/calendar.h"
#include "settings/settings.h"
#include "tests/indexers/indexer_fixture.h"
#include "tests/indexers/note_model.h"

namespace {

constexpr int kNotes = 600;

struct KindOfNote {
    const char* form;
    std::vector<const char*> items;
};
const KindOfNote kKindsOfNotes[] = {
    {"Memo", {"Principal", "From", "SendTo", "CopyTo", "BlindCopyTo", "ReplyTo"}},
    {"Appointment",
     {"CalendarDateTime", "StartDateTime", "EndDateTime", "Subject", "Chair", "RequiredAttendees", "OptionalAttendees",
      "Location", "Categories"}},
    {"Task",
     {"CalendarDateTime", "StartDateTime", "DueDateTime", "Subject", "Chair", "Categories", "TaskType", "DueState",
      "PostedDate", "CompletedDateTime", "Importance"}},
    {"Person",
     {"OfficeStreetAddress",
      "OfficeCity",
      "OfficeState",
      "OfficeZip",
      "OfficeCountry",
      "StreetAddress",
      "City",
      "State",
      "Zip",
      "Country",
      "OfficePhoneNumber",
      "CellPhoneNumber",
      "PersPager",
      "PhoneNumber_6",
      "PhoneNumber",
      "OfficeFAXPhoneNumber",
      "HomeFAXPhoneNumber",
      "FullName",
      "Assistant",
      "Birthday",
      "WebSite",
      "Categories",
      "Children",
      "CompanyName",
      "Department",
      "MailAddress",
      "Spouse",
      "JobTitle",
      "Manager",
      "Location",
      "Anniversary",
      "MiscLabel1",
      "MiscLabel2",
      "MiscLabel3",
      "MiscPhone1",
      "MiscPhone2",
      "MiscPhone3",
      "InternetAddress"}},
    {"JournalEntry", {"Subject", "Categories", "TimeCreated"}},
    {"MainTopic", {"Subject", "Topic", "From", "Author"}},
    {"HistoryListEntry", {"Title", "URL"}},
    {"Unheard of", {"Subject", "From"}},
};

class RandomNotes : public IndexerTest {
protected:
    unsigned Below(unsigned bound) { return static_cast<unsigned>(random_()) % bound; }
    const char* OneOf(std::initializer_list<const char*> choices)
    {
        return choices.begin()[Below(static_cast<unsigned>(choices.size()))];
    }

    std::string RandomText(std::string_view item)
    {
        if (item.starts_with("MiscLabel"))
            return OneOf({"email", "EMail", "url", "nick", "OnlineName", "homeurl", "garden", "email"});
        if (item == "Categories" && Below(2) == 0)
            return OneOf({"H", "V", "P", "C", "PC", "T", "h", "pc", "Pc", "HH"});
        return OneOf({"Ann Lee", "CN=Bo Ek/O=Acme", "dee@example.org", "Grüße", "日本語", "smile \xF0\x9F\x98\x80",
                      "a & <b>", "+1 555 0100", "email", "x"});
    }
    TIMEDATE RandomTime() { return pavex::TimeFromUnix(1167609600 + int64_t{Below(200 * 24)} * 3600 + Below(60)); }
    // For items: often a day without a time.
    TIMEDATE RandomTimeOrDay()
    {
        TIMEDATE time = RandomTime();
        if (Below(4) == 0)
            time.Innards[0] = pavex::kNoTimeOfDay;
        return time;
    }
    unsigned RandomListSize() { return Below(8) == 0 ? 95 + Below(30) : 1 + Below(4); }
    std::string RandomRichText()
    {
        pavex::RichTextBuilder text;
        for (unsigned pieces = Below(4); pieces > 0; --pieces) {
            if (Below(3) == 0)
                text.AddLink({RandomTime(), {RandomTime(), RandomTime()}, {RandomTime(), RandomTime()}, 0}, "there");
            else
                text.AddParagraph(RandomText(""));
        }
        return text.Records();
    }
    pavex::Item RandomItem(const char* name)
    {
        const std::string_view item = name;
        // Most times are times and most links are links, so that all of a kind's road is taken.
        const bool isTime =
            item.ends_with("Time") || item == "Birthday" || item == "Anniversary" || item == "TimeCreated";
        const bool isNumber = item == "TaskType" || item == "DueState" || item == "Importance";
        unsigned type = Below(8);
        if (isTime && Below(5) != 0)
            type = 3 + Below(2);
        if (isNumber && Below(4) != 0)
            type = 2;
        if (item == "URL" && Below(3) != 0)
            type = 5;
        switch (type) {
        case 1: {
            std::vector<std::string> values;
            for (unsigned n = 1 + Below(3); n > 0; --n)
                values.push_back(RandomText(item));
            return TextListItem(name, values);
        }
        case 2:
            return NumberItem(name, static_cast<int>(Below(13)) - 1);
        case 3:
            return pavex::TimeItem(name, RandomTimeOrDay());
        case 4: {
            std::vector<TIMEDATE> times;
            for (unsigned n = RandomListSize(); n > 0; --n)
                times.push_back(RandomTimeOrDay());
            return pavex::TimeListItem(name, times);
        }
        case 5:
            return pavex::RichTextItem(name, RandomRichText());
        case 6:
            return pavex::FormulaItem(name, "1 + 1");
        case 7:
            return TextItem(name, "");
        default:
            return TextItem(name, RandomText(item));
        }
    }
    pavex::Note RandomNote()
    {
        const KindOfNote& kind = kKindsOfNotes[Below(std::size(kKindsOfNotes))];
        pavex::Note note;
        note.created = RandomTime();
        note.modified = RandomTime();
        note.items.push_back(TextItem("Form", kind.form));
        const unsigned present = 1 + Below(4);  // of 4
        for (const char* item : kind.items)
            if (Below(4) < present)
                note.items.push_back(RandomItem(item));
        if (std::string_view(kind.form) == "Memo") {
            if (Below(3) != 0)
                note.items.push_back(Below(4) != 0 ? pavex::TimeItem("PostedDate", RandomTimeOrDay())
                                                   : TextItem("PostedDate", "soon"));
            if (Below(3) != 0)
                note.items.push_back(Below(2) != 0 ? TextItem("Subject", RandomText(""))
                                                   : TextListItem("Subject", {RandomText(""), RandomText("")}));
        }
        if (Below(2) != 0)
            note.items.push_back(BodyItem({"First", "Second"}));
        std::shuffle(note.items.begin() + 1, note.items.end(), random_);
        return note;
    }

private:
    std::mt19937 random_{20070310};
};

TEST_F(RandomNotes, LeaveTheMetafilesThatTheTablesAskFor)
{
    SetIndexingDiscussion(true);
    std::fill(StartEndTimes1, StartEndTimes1 + kMaxTimePairs, TimePair{});
    NoteModel model("The Notes", pavex::UnixFromTime(Time(kNow)).value());
    for (int i = 0; i < kNotes; ++i) {
        SCOPED_TRACE(i);
        pavex::Note note = RandomNote();
        const std::optional<ExpectedFile> expected = model.Expect(note);
        ASSERT_EQ(Db().Put(&note), 0);
        Index(
            note.id, +[](NOTEHANDLE open, INDEXCONTEXT* context) {
                char form[32];
                VLTItemGetText(open, "Form", form, sizeof form - 1);
                context->history = std::string_view(form) == "HistoryListEntry";
                return IndexNote(open, context);
            });
        ExpectedFile found{Extension(note.id), Metafile(note.id)};
        ASSERT_EQ(found.extension, expected ? expected->extension : "");
        ASSERT_EQ(found.properties, expected ? expected->properties : Properties());
    }
}

}  // namespace
