// tests/client/check/explain_test.cpp: the reasons and their order.
#include "client/check/explain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace pavex {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

// A mail that is indexed and found.
NoteFacts GoodMail()
{
    NoteFacts facts;
    facts.database = "/data/mail.vlt";
    facts.id = 7;
    facts.fate = {Fate::kIndexed, kSearchKinds.data()};
    facts.record = ProgressRecord{.slot = 0, .path = "mail.vlt", .variable = "GDSTimestamp"};
    facts.file.state = FileState::kGood;
    facts.found = kSearchKinds.data();
    return facts;
}

Explanation After(const std::function<void(NoteFacts&, SearchFacts&)>& change)
{
    NoteFacts facts = GoodMail();
    SearchFacts search{.whyNoPass = "", .isInEngine = true};
    change(facts, search);
    return Explain(facts, search);
}

void NoFile(NoteFacts& facts)
{
    facts.file.state = FileState::kMissing;
    facts.found = nullptr;
}

TEST(Explain, SaysAsWhatAGoodNoteIsFound)
{
    const Explanation good = After([](NoteFacts&, SearchFacts&) {});
    EXPECT_TRUE(good.isFindable);
    EXPECT_EQ(good.reason, "indexed");
    EXPECT_EQ(good.text, "Findable as mail.");
}

TEST(Explain, TakesNoNoteForFoundWhenTheEngineCannotTell)
{
    const auto unknown = [](NoteFacts&, SearchFacts& search) {
        search.isInEngine.reset();
        search.whyUnknown = "the engine is not installed";
    };
    const Explanation explanation = After(unknown);
    EXPECT_FALSE(explanation.isFindable);
    EXPECT_EQ(explanation.reason, "engine-unavailable");
    EXPECT_EQ(explanation.text, "Not findable now: the engine is not installed. Its metafile is there.");
    const Explanation missing = After([&unknown](NoteFacts& facts, SearchFacts& search) {
        unknown(facts, search);
        NoFile(facts);
    });
    EXPECT_EQ(missing.reason, "metafile-missing") << "whatever the engine has";
}

TEST(Explain, TellsOfWhatIsSealed)
{
    EXPECT_THAT(After([](NoteFacts& facts, SearchFacts&) { facts.isSealed = true; }).text, HasSubstr("--encrypted on"));
}

TEST(Explain, TellsThatNothingIsKeptUpToDate)
{
    const auto off = [](NoteFacts&, SearchFacts& search) { search.whyNoPass = "indexing is switched off"; };
    EXPECT_EQ(After(off).text, "Findable as mail. It is not kept up to date: indexing is switched off.");
}

struct Row {
    const char* reason;
    const char* text;
    std::function<void(NoteFacts&)> change;
};

const Row kNotFindable[] = {
    {"deleted", "Not findable: the note was deleted.", [](NoteFacts& facts) { facts.state = NoteState::kDeleted; }},
    {"note-damaged", "Not findable: the note cannot be read in its database: broken.",
     [](NoteFacts& facts) {
         facts.state = NoteState::kDamaged;
         facts.damage = "broken";
     }},
    {"no-document", "Not findable: it is a form", [](NoteFacts& facts) { facts.state = NoteState::kNoDocument; }},
    {"database-not-indexed",
     "Not findable: the database /data/mail.vlt is not among the indexed ones. Add it with: "
     "pavex settings --add /data/mail.vlt",
     [](NoteFacts& facts) { facts.record.reset(); }},
    {"draft",
     "Not findable: the note was never sent, and drafts are not indexed. Have them indexed with: pavex "
     "settings --drafts on",
     [](NoteFacts& facts) { facts.fate.fate = Fate::kDraft; }},
    {"waiting", "Not findable: it has not been indexed since it came or changed. Have a pass now with: pavex index",
     [](NoteFacts& facts) { facts.isWaiting = true; }},
    {"waiting",
     "Not findable: it has not been indexed since it came or changed. The last pass over its database was "
     "interrupted",
     [](NoteFacts& facts) {
         facts.isWaiting = true;
         facts.record->until = 5;
     }},
    {"metafile-missing", "Not findable: its metafile is missing", [](NoteFacts&) {}},
    {"metafile-damaged", "Not findable: its metafile is damaged: it is empty. Repair with: pavex check --repair",
     [](NoteFacts& facts) {
         facts.file = {FileState::kDamaged, "it is empty"};
     }},
};

TEST(Explain, GivesTheReasonWhyANoteIsNotFound)
{
    for (const Row& row : kNotFindable) {
        const Explanation explanation = After([&row](NoteFacts& facts, SearchFacts&) {
            NoFile(facts);
            row.change(facts);
        });
        EXPECT_FALSE(explanation.isFindable);
        EXPECT_EQ(explanation.reason, row.reason);
        EXPECT_THAT(explanation.text, StartsWith(row.text));
    }
}

const Row kFindableStill[] = {
    {"deleted", "Findable, although the note was deleted. Repair with",
     [](NoteFacts& facts) { facts.state = NoteState::kDeleted; }},
    {"deleted", "Findable, although the note was deleted. The next pass removes its metafile. Have a pass now",
     [](NoteFacts& facts) {
         facts.state = NoteState::kDeleted;
         facts.isWaiting = true;
     }},
    {"note-damaged", "Findable as it was at its last indexing: it cannot be read in its database any more: broken.",
     [](NoteFacts& facts) {
         facts.state = NoteState::kDamaged;
         facts.damage = "broken";
     }},
    {"no-document", "Findable, although it is a form.", [](NoteFacts& facts) { facts.state = NoteState::kNoDocument; }},
    {"database-not-indexed", "Findable as it was at its last indexing: the database /data/mail.vlt is not among",
     [](NoteFacts& facts) { facts.record.reset(); }},
    {"draft", "Findable, although the note was never sent, and drafts are not indexed. Repair with",
     [](NoteFacts& facts) { facts.fate.fate = Fate::kDraft; }},
    {"waiting", "Findable as it was at its last indexing: it changed since",
     [](NoteFacts& facts) { facts.isWaiting = true; }},
    {"metafile-other-kind", "Findable as task, although it is of the kind mail.",
     [](NoteFacts& facts) {
         facts.file.state = FileState::kMissing;
         facts.found = &kSearchKinds[2];
     }},
    {"metafile-outdated", "Findable as it was at an earlier time: of its metafile, it is old. Repair with",
     [](NoteFacts& facts) {
         facts.file = {FileState::kOutdated, "it is old"};
     }},
};

TEST(Explain, SaysWhatIsWrongWithANoteThatIsFoundAllTheSame)
{
    for (const Row& row : kFindableStill) {
        const Explanation explanation = After([&row](NoteFacts& facts, SearchFacts&) { row.change(facts); });
        EXPECT_TRUE(explanation.isFindable) << row.text;
        EXPECT_EQ(explanation.reason, row.reason);
        EXPECT_THAT(explanation.text, StartsWith(row.text));
    }
}

TEST(Explain, SaysWhenTheSearchEngineDidNotTakeTheMetafile)
{
    const auto gone = [](NoteFacts&, SearchFacts& search) { search.isInEngine = false; };
    EXPECT_EQ(After(gone).reason, "not-in-search-index");
    EXPECT_FALSE(After(gone).isFindable);
}

TEST(Explain, SaysWhyNoPassWillCome)
{
    const Explanation explanation = After([](NoteFacts& facts, SearchFacts& search) {
        NoFile(facts);
        facts.isWaiting = true;
        search.whyNoPass = "indexing is switched off";
    });
    EXPECT_THAT(explanation.text, HasSubstr("No pass will come: indexing is switched off."));
}

}  // namespace
}  // namespace pavex
