// client/check/explain.cpp: why a note is findable, or is not.
// The rules are tried in their order; the first that applies is the reason.
#include "client/check/explain.h"

#include "client/store/shell_word.h"

namespace pavex {

namespace {

struct Case {
    const NoteFacts& facts;
    const SearchFacts& search;
};

std::string KindOf(const NoteFacts& facts)
{
    return facts.found != nullptr ? facts.found->name : "";
}

bool IsLeftOut(const NoteFacts& facts)
{
    return facts.state == NoteState::kLive && facts.fate.fate != Fate::kIndexed;
}

std::string Obstacle(const NoteFacts& facts)
{
    return facts.obstacle.empty() ? "" : "Its metafile cannot be written: " + facts.obstacle + ". ";
}

// What brings the note's next pass, or keeps it away.
std::string NextPass(const Case& c)
{
    if (!c.search.whyNoPass.empty())
        return "No pass will come: " + c.search.whyNoPass + ".";
    std::string text = Obstacle(c.facts);
    if (c.facts.record && c.facts.record->until)
        text += "The last pass over its database was interrupted, and the next goes on from there. ";
    return text + "Have a pass now with: pavex index";
}

std::string SettingsAdd(const NoteFacts& facts)
{
    return "the database " + facts.database + " is not among the indexed ones. Add it with: pavex settings --add " +
           ShellWord(facts.database);
}

constexpr const char* kRepair = "Repair with: pavex check --repair";

// One reason: when it applies, what it is called (null: as the note's fate is), what it says behind the verdict.
struct Rule {
    const char* name;
    bool (*applies)(const Case& c);
    std::string (*text)(const Case& c);
};

// ---- not findable -----------------------------------------------------------------------------

const Rule kNotFindable[] = {
    {"deleted", [](const Case& c) { return c.facts.state == NoteState::kDeleted; },
     [](const Case&) { return std::string("the note was deleted."); }},
    {"note-damaged", [](const Case& c) { return c.facts.state == NoteState::kDamaged; },
     [](const Case& c) {
         return "the note cannot be read in its database: " + c.facts.damage +
                ". Import it again, or restore the database from a copy.";
     }},
    {"no-document", [](const Case& c) { return c.facts.state == NoteState::kNoDocument; },
     [](const Case&) { return std::string("it is a form, and only documents are indexed."); }},
    {"database-not-indexed", [](const Case& c) { return !c.facts.record.has_value(); },
     [](const Case& c) { return SettingsAdd(c.facts); }},
    {nullptr, [](const Case& c) { return IsLeftOut(c.facts); },
     [](const Case& c) {
         const FateText& fate = TextOfFate(c.facts.fate.fate);
         return std::string("the note ") + fate.reason + "." + (*fate.remedy != '\0' ? " " : "") + fate.remedy;
     }},
    {"waiting", [](const Case& c) { return c.facts.isWaiting; },
     [](const Case& c) { return "it has not been indexed since it came or changed. " + NextPass(c); }},
    {"metafile-missing", [](const Case& c) { return c.facts.file.state == FileState::kMissing; },
     [](const Case& c) {
         return "its metafile is missing, although its database is indexed up to a later change. " + Obstacle(c.facts) +
                kRepair;
     }},
    {"metafile-damaged", [](const Case& c) { return c.facts.file.state == FileState::kDamaged; },
     [](const Case& c) { return "its metafile is damaged: " + c.facts.file.reason + ". " + kRepair; }},
    {"not-in-search-index", [](const Case&) { return true; },
     [](const Case& c) {
         return "its metafile is there, but the search engine has not taken it. Its log may tell why: " +
                c.search.engineLog;
     }},
};

// ---- findable, with something to say about it ---------------------------------------------------

const Rule kFindable[] = {
    {"deleted", [](const Case& c) { return c.facts.state == NoteState::kDeleted; },
     [](const Case& c) {
         return std::string(", although the note was deleted. ") +
                (c.facts.isWaiting ? "The next pass removes its metafile. " + NextPass(c) : kRepair);
     }},
    {"note-damaged", [](const Case& c) { return c.facts.state == NoteState::kDamaged; },
     [](const Case& c) {
         return " as it was at its last indexing: it cannot be read in its database any more: " + c.facts.damage + ".";
     }},
    {"no-document", [](const Case& c) { return c.facts.state == NoteState::kNoDocument; },
     [](const Case&) { return std::string(", although it is a form. ") + kRepair; }},
    {"database-not-indexed", [](const Case& c) { return !c.facts.record.has_value(); },
     [](const Case& c) { return " as it was at its last indexing: " + SettingsAdd(c.facts); }},
    {nullptr, [](const Case& c) { return IsLeftOut(c.facts); },
     [](const Case& c) {
         return std::string(", although the note ") + TextOfFate(c.facts.fate.fate).reason + ". " + kRepair;
     }},
    {"waiting", [](const Case& c) { return c.facts.isWaiting; },
     [](const Case& c) {
         return " as it was at its last indexing: it changed since, and waits for the next pass. " + NextPass(c);
     }},
    {"metafile-other-kind", [](const Case& c) { return c.facts.file.state == FileState::kMissing; },
     [](const Case& c) {
         return " as " + KindOf(c.facts) + ", although it is of the kind " + c.facts.fate.kind->name + ". " + kRepair;
     }},
    {"metafile-outdated", [](const Case& c) { return c.facts.file.state == FileState::kOutdated; },
     [](const Case& c) {
         return " as it was at an earlier time: of its metafile, " + c.facts.file.reason + ". " + Obstacle(c.facts) +
                kRepair;
     }},
    {"indexed", [](const Case&) { return true; },
     [](const Case& c) {
         std::string text = " as " + KindOf(c.facts) + ".";
         if (c.facts.isSealed)
             text += " What is sealed of it is not searched; it is with: pavex settings --encrypted on --yes";
         if (!c.search.whyNoPass.empty())
             text += " It is not kept up to date: " + c.search.whyNoPass + ".";
         return text;
     }},
};

}  // namespace

Explanation Explain(const NoteFacts& facts, const SearchFacts& search)
{
    const Case c{facts, search};
    const bool hasFile = facts.found != nullptr && facts.file.state != FileState::kDamaged;
    if (hasFile && !search.isInEngine)
        return {false, "engine-unavailable", "Not findable now: " + search.whyUnknown + ". Its metafile is there."};
    Explanation explanation;
    explanation.isFindable = hasFile && *search.isInEngine;
    const auto take = [&](const Rule& rule) {
        if (!explanation.text.empty() || !rule.applies(c))
            return;
        explanation.reason = rule.name != nullptr ? rule.name : TextOfFate(facts.fate.fate).name;
        explanation.text = (explanation.isFindable ? "Findable" : "Not findable: ") + rule.text(c);
    };
    if (explanation.isFindable)
        for (const Rule& rule : kFindable)
            take(rule);
    else
        for (const Rule& rule : kNotFindable)
            take(rule);
    return explanation;
}

}  // namespace pavex
