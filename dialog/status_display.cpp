// dialog/status_display.cpp: the three status lines, from the run statistics and the saved progress.
#include "dialog/status_display.h"

#include <optional>
#include <string>

#include "addin/lifecycle.h"
#include "dialog/control_ids.h"
#include "dialog/controls.h"
#include "dialog/progress_text.h"
#include "platform/store.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"
#include "strings/string_resources.h"

namespace {

constexpr unsigned short kLineBytes = 767;  // SCS
constexpr unsigned short kTimeBytes = 255;

// The overall line, and whether something is going on.
struct OverallStatus {
    std::string state;  // UTF-8
    bool activityVisible = false;
};

std::string Localized(int id)
{
    CString text;
    text.LoadString(id);
    return CutUtf8(text.toString(), kStateBytes);
}

std::string ProgressText(int formatId, uint32_t processed, uint32_t total)
{
    CString format;  // whole: half a conversion would make it useless
    format.LoadString(formatId);
    return FormatProgress(format.toString(), processed, total);
}

// "indexed up to" and the slot's stored time; nothing when none is stored or it has no text.
std::optional<std::string> TimeText(int slot)
{
    TIMEDATE time = {};
    char scs[kTimeBytes] = "";
    WORD length = 0;
    if (!GetDbTimestamp(slot, &time) || IsTimeDateClear(&time) ||
        ConvertTIMEDATEToText(nullptr, nullptr, &time, scs, kTimeBytes, &length) != 0 || length == 0)
        return std::nullopt;
    char native[kTimeBytes + 1] = "";
    const unsigned short nativeLength = TranslateText(scs, length, native, kTimeBytes, false);
    return CutUtf8(Localized(kStringStateIndexedUpTo) + std::string(native, nativeLength), kStateBytes);
}

bool IsPassRunningOn(const PLUGINCONTEXT& statistics, int slot)
{
    const bool running = (statistics.passFlag & 0xFF) != 0 || statistics.inProgress != 0 || statistics.resumed != 0;
    return running && static_cast<uint32_t>(slot) == statistics.database;
}

std::string SelectedState(const PLUGINCONTEXT& statistics, int slot)
{
    if (slot < 0)
        return Localized(kStringStateNotSaved);
    if (IsPassRunningOn(statistics, slot)) {
        // The numbers of an ordinary pass stand on the overall line, which a history pass hides.
        return statistics.historyActive == 0
                   ? Localized(kStringStateIndexingNow)
                   : ProgressText(kStringProgressDatabase, statistics.processed, statistics.total);
    }
    TIMEDATE until = {};
    unsigned int note = 0;
    unsigned int processed = 0;
    unsigned int total = 0;
    if (GetDbRecovery(slot, &until, &note)) {
        return GetDbRecoveryProgress(slot, &processed, &total) ? ProgressText(kStringProgressDatabase, processed, total)
                                                               : Localized(kStringStateInterrupted);
    }
    return TimeText(slot).value_or(Localized(kStringStateNothing));
}

void SetLine(unsigned long window, int id, int leadId, const std::string& state)
{
    CString line;
    line.LoadString(leadId);
    line += CString(state.c_str());
    SetControlText(window, id, line, kLineBytes);
}

void PutSelectedLine(unsigned long window, const PLUGINCONTEXT& statistics)
{
    const std::optional<std::string> path = ListEntry(window, ListSelection(window));
    if (!path) {
        ShowControl(window, kTextSelectedStatus, false);
        return;
    }
    SetLine(window, kTextSelectedStatus, kStringLeadDatabase, SelectedState(statistics, GetDbIndex(path->c_str())));
    ShowControl(window, kTextSelectedStatus, true);
}

// Sets the text alone; whether it is shown is the overall status's business.
void PutActivityText(unsigned long window, const PLUGINCONTEXT& statistics)
{
    char scs[kMaxDbPathBytes + 1] = "";
    if (!IsEnabled() || statistics.database >= static_cast<uint32_t>(kDatabaseSlots) ||
        !GetDbPath(static_cast<int>(statistics.database), scs, kMaxDbPathBytes))
        return;
    if (statistics.historyActive != 0) {
        SetLine(window, kTextActivityStatus, kStringLeadActivity, Localized(kStringActivityHistory));
        return;
    }
    char native[kMaxDbPathBytes + 1] = "";
    const auto length = static_cast<unsigned short>(std::string_view(scs).size());
    native[TranslateText(scs, length, native, kMaxDbPathBytes, false)] = '\0';
    SetLine(window, kTextActivityStatus, kStringLeadActivity, native);
}

OverallStatus OverallOf(const PLUGINCONTEXT& statistics)
{
    if (!IsEnabled())
        return {Localized(kStringStateOff), false};
    if (statistics.historyActive != 0)
        return {Localized(kStringStateNothing), true};
    if (statistics.passFlag == 0 && statistics.inProgress != 0)
        return {ProgressText(kStringProgressOverall, statistics.processed, statistics.total), true};
    if (statistics.passFlag == 0 && statistics.resumed == 0) {
        std::optional<std::string> time;
        if (statistics.upToDate != 0 && statistics.database < static_cast<uint32_t>(kDatabaseSlots))
            time = TimeText(static_cast<int>(statistics.database));
        return {time.value_or(Localized(kStringStateNothing)), false};
    }
    return {ProgressText(kStringProgressDatabase, statistics.processed, statistics.total), true};
}

}  // namespace

void PutStatus(unsigned long window)
{
    PLUGINCONTEXT statistics{};
    CopyPluginStatistics(&statistics);
    PutSelectedLine(window, statistics);
    PutActivityText(window, statistics);
    const OverallStatus overall = OverallOf(statistics);
    SetLine(window, kTextOverallStatus, kStringLeadOverall, overall.state);
    ShowControl(window, kTextOverallStatus, statistics.historyActive == 0);
    ShowControl(window, kTextActivityStatus, overall.activityVisible);
}
