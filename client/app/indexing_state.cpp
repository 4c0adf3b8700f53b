// client/app/indexing_state.cpp: whether anything is indexed at all.
#include "client/app/indexing_state.h"

#include <algorithm>
#include <filesystem>

#include "client/app/command.h"
#include "client/app/note_finder.h"
#include "client/app/policy_check.h"
#include "client/store/note_link.h"
#include "client/store/shell_word.h"
#include "platform/store.h"

namespace pavex {

namespace {

bool AnyDatabase(const std::vector<Slot>& slots)
{
    return std::ranges::any_of(slots, [](const Slot& slot) { return slot.number != kHistorySlot; });
}

// " --add mail.vlt" and so on: the databases of this home that could be chosen.
std::string OptionsToAdd()
{
    std::string options;
    for (const std::string& file : FindKnownDatabases().files)
        if (std::filesystem::path(file).filename() != kHistoryFile)
            options += " --add " + ShellWord(DatabaseName(file));
    return options;
}

}  // namespace

std::string WhyNothingIsIndexed(const std::vector<Slot>& slots)
{
    if (PolicyLocksIndexing())
        return "the administrator's policy locks indexing off";
    if (OSGetEnvironmentLong("GDSIndexEnabled") == 0)
        return "indexing is switched off in the settings";
    if (!AnyDatabase(slots))
        return "no databases are chosen";
    return {};
}

std::string HowToIndex(const std::vector<Slot>& slots)
{
    std::string why = WhyNothingIsIndexed(slots);
    if (PolicyLocksIndexing())
        return why;
    if (why.empty())
        return "index with: pavex index";
    const std::string add = AnyDatabase(slots) ? "" : OptionsToAdd();
    if (!AnyDatabase(slots) && add.empty())
        return "there are no notes; bring some in first, with: pavex import SOURCE";
    const std::string enable = OSGetEnvironmentLong("GDSIndexEnabled") == 0 ? " --enable --yes" : "";
    return why + "; index with: pavex settings" + enable + add + ", then pavex index";
}

}  // namespace pavex
