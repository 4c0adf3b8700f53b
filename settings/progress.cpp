// settings/progress.cpp: the databases, and how far each is indexed.
// The dialog's thread clears and reads what the indexing thread writes, so a lock covers the records
// and their variables together: what is remembered is what is written.  No store call that may come
// back here is made under it.
#include "settings/progress.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <optional>
#include <string>

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "content/paths.h"
#include "platform/posix.h"
#include "settings/settings.h"

char szMailDbName[kProgressSlots][kMaxDbPathBytes + 1];
TIMEDATE MailLastUpdated[kProgressSlots];
bool bMailTimestampValid[kProgressSlots];
TIMEDATE MailRecovery[kProgressSlots];
uint32_t dwMailRecoveryNote[kProgressSlots][3];
bool bMailRecoveryValid[kProgressSlots];

namespace {

constexpr const char* kPathKey = "GDSFilePath";
constexpr const char* kRecordKey = "GDSTimestamp";
constexpr const char* kClearTime = "0";
constexpr const char* kSeparator = "|";
constexpr const char* kHistoryDatabase = "bookmark.vlt";
constexpr size_t kMaxTimeBytes = 80;
constexpr size_t kMaxRecordBytes = 256;
constexpr WORD kMinimumTime = 0;  // selector of TimeConstant

enum RecoveryNumber { kResumeNote, kProcessed, kTotal };

std::mutex recordsLock;                   // guards the records above, and the writing of their variables
std::string knownRecord[kProgressSlots];  // each slot's record as this process last read or wrote it

bool IsSlot(int slot)
{
    return slot >= 0 && slot < kProgressSlots;
}

void EnsureLoaded()
{
    if (bIniInit.load(std::memory_order_relaxed) == 0)
        getIniVariables();
}

// The first slot's variables carry no number.
std::string SlotKey(const char* key, int slot)
{
    return slot > 0 ? key + std::to_string(slot) : key;
}

// Copies at most maxBytes of SCS text, whole characters, and a terminator.
void CopyText(char* out, const char* text, size_t maxBytes)
{
    size_t length = std::strlen(text);
    if (length > maxBytes) {
        length = 0;
        for (const char* next = OSNextCharacter(text); static_cast<size_t>(next - text) <= maxBytes;
             next = OSNextCharacter(next))
            length = static_cast<size_t>(next - text);
    }
    std::memcpy(out, text, length);
    out[length] = '\0';
}

void ClearSince(int slot)
{
    TimeConstant(kMinimumTime, &MailLastUpdated[slot]);
    bMailTimestampValid[slot] = false;
}

void ClearRecovery(int slot)
{
    TimeConstant(kMinimumTime, &MailRecovery[slot]);
    std::memset(dwMailRecoveryNote[slot], 0, sizeof dwMailRecoveryNote[slot]);
    bMailRecoveryValid[slot] = false;
}

// None when the time cannot be converted; empty when the store has no text for it.
std::optional<std::string> TimeText(const TIMEDATE& time)
{
    char text[kMaxTimeBytes + 1] = {};
    WORD length = 0;
    if (ConvertTIMEDATEToText(nullptr, nullptr, &time, text, sizeof text, &length) != kStatusOk)
        return std::nullopt;
    return std::string(text, length);
}

bool ReadTime(char* text, TIMEDATE* time)
{
    TIMEDATE read;
    if (ConvertTextToTIMEDATE(nullptr, nullptr, &text, kMaxTimeBytes, &read) != kStatusOk)
        return false;
    *time = read;
    return true;
}

// The text for a time up to which all is indexed; empty when there is none for it.
std::string SinceText(const TIMEDATE& since)
{
    const std::optional<std::string> text = TimeText(since);
    if (!text)
        return {};
    return text->empty() && IsTimeDateClear(&since) ? kClearTime : *text;
}

// The number of a field, as atoi has it, which reads what "%d" wrote.
uint32_t NumberField(const char* text)
{
    return static_cast<uint32_t>(std::strtol(text, nullptr, 10));
}

std::string RecordText(int slot, const std::string& since, const std::string& until)
{
    const uint32_t* const numbers = dwMailRecoveryNote[slot];
    char text[kMaxRecordBytes];
    std::snprintf(text, sizeof text, "%s%s%s%s%d%s%d%s%d", since.c_str(), kSeparator, until.c_str(), kSeparator,
                  static_cast<int>(numbers[kResumeNote]), kSeparator, static_cast<int>(numbers[kProcessed]), kSeparator,
                  static_cast<int>(numbers[kTotal]));
    return text;
}

// Takes the record into the arrays; what cannot be read stays as if it were absent.
void ParseRecord(int slot, char* record)
{
    char* rest = nullptr;
    const auto next = [&rest](char* text) { return strtok_r(text, kSeparator, &rest); };

    char* const since = next(record);
    if (since == nullptr)
        return;
    bMailTimestampValid[slot] = std::strcmp(since, kClearTime) != 0 && ReadTime(since, &MailLastUpdated[slot]);
    char* const until = next(nullptr);
    if (until == nullptr || !ReadTime(until, &MailRecovery[slot]))
        return;
    bMailRecoveryValid[slot] = true;
    const char* const note = next(nullptr);
    if (note == nullptr)
        return;
    dwMailRecoveryNote[slot][kResumeNote] = NumberField(note);
    const char* const processed = next(nullptr);
    const char* const total = processed != nullptr ? next(nullptr) : nullptr;
    if (total == nullptr)
        return;
    dwMailRecoveryNote[slot][kProcessed] = NumberField(processed);
    dwMailRecoveryNote[slot][kTotal] = NumberField(total);
}

// Puts a record into the arrays and the ini file.
void Store(int slot, const TIMEDATE* since, const TIMEDATE* until, const std::array<uint32_t, 3>& numbers)
{
    ClearSince(slot);
    ClearRecovery(slot);
    std::string record;
    const std::string sinceText = since != nullptr ? SinceText(*since) : std::string();
    if (!sinceText.empty()) {
        record = sinceText;
        MailLastUpdated[slot] = *since;
        bMailTimestampValid[slot] = true;
        // without a text for its end time an interrupted pass is begun again
        const std::string untilText = until != nullptr ? TimeText(*until).value_or("") : std::string();
        if (!untilText.empty()) {
            MailRecovery[slot] = *until;
            std::copy(numbers.begin(), numbers.end(), dwMailRecoveryNote[slot]);
            bMailRecoveryValid[slot] = true;
            record = RecordText(slot, sinceText, untilText);
        }
    }
    OSSetEnvironmentVariable(SlotKey(kRecordKey, slot).c_str(), record.c_str());
    knownRecord[slot] = record;
}

std::string Variable(const std::string& name)
{
    std::array<char, kMaxRecordBytes + 1> value{};
    if (!OSGetEnvironmentString(name.c_str(), value.data(), static_cast<WORD>(value.size())))
        return {};
    return value.data();
}

// Whether the ini file holds what this process last read from it or wrote to it for the slot.
bool IniFileAgrees(int slot)
{
    return Variable(SlotKey(kPathKey, slot)) == szMailDbName[slot] &&
           Variable(SlotKey(kRecordKey, slot)) == knownRecord[slot];
}

// False when the slot has no path variable.
bool LoadSlotLocked(int slot)
{
    szMailDbName[slot][0] = '\0';
    ClearSince(slot);
    ClearRecovery(slot);
    if (!OSGetEnvironmentString(SlotKey(kPathKey, slot).c_str(), szMailDbName[slot], sizeof szMailDbName[slot])) {
        szMailDbName[slot][0] = '\0';
        return false;
    }
    knownRecord[slot] = Variable(SlotKey(kRecordKey, slot));
    std::string record = knownRecord[slot];
    ParseRecord(slot, record.data());
    return true;
}

bool LoadSlot(int slot)
{
    const std::lock_guard guard(recordsLock);
    return LoadSlotLocked(slot);
}

// The client keeps its history in its data directory, under a name that never changes.
void FindHistoryDatabase()
{
    char directory[kMaxDbPathBytes] = {};
    char path[kMaxDbPathBytes] = {};
    OSGetDataDirectory(directory);
    MyPathConstruct(directory, kHistoryDatabase, path);
    if (VerifyDatabase(0, path, nullptr) == kStatusOk)
        SetDbPath(GetHistoryIndex(), path);
}

}  // namespace

bool GetDbPath(int slot, char* out, unsigned short size)
{
    EnsureLoaded();
    if (out != nullptr)
        out[0] = '\0';
    if (!IsSlot(slot))
        return false;
    const std::lock_guard guard(recordsLock);
    if (szMailDbName[slot][0] == '\0')
        return false;
    if (out != nullptr)
        CopyText(out, szMailDbName[slot], size < kMaxDbPathBytes ? size : kMaxDbPathBytes);
    return true;
}

void SetDbPath(int slot, const char* path)
{
    EnsureLoaded();
    if (!IsSlot(slot))
        return;
    const std::lock_guard guard(recordsLock);
    CopyText(szMailDbName[slot], path != nullptr ? path : "", kMaxDbPathBytes);
    OSSetEnvironmentVariable(SlotKey(kPathKey, slot).c_str(), szMailDbName[slot]);
}

int GetDbIndex(const char* path)
{
    EnsureLoaded();
    const std::lock_guard guard(recordsLock);
    for (int slot = 0; slot < GetHistoryIndex(); ++slot) {
        if (std::strcmp(szMailDbName[slot], path) == 0)
            return slot;
    }
    return -1;
}

bool GetDbTimestamp(int slot, TIMEDATE* out)
{
    EnsureLoaded();
    if (!IsSlot(slot)) {
        TimeConstant(kMinimumTime, out);
        return false;
    }
    const std::lock_guard guard(recordsLock);
    *out = MailLastUpdated[slot];
    return bMailTimestampValid[slot];
}

void SetDbTimestamp(int slot, const TIMEDATE* since, const TIMEDATE* until, unsigned int note, unsigned int processed,
                    unsigned int total)
{
    EnsureLoaded();
    if (!IsSlot(slot))
        return;
    const std::lock_guard guard(recordsLock);
    Store(slot, since, until, {note, processed, total});
}

void MarkPassBegun(int slot)
{
    EnsureLoaded();
    if (!IsSlot(slot))
        return;
    const std::lock_guard guard(recordsLock);
    const std::string key = SlotKey(kRecordKey, slot);
    if (!knownRecord[slot].empty() || !Variable(key).empty())
        return;
    OSSetEnvironmentVariable(key.c_str(), kClearTime);
    knownRecord[slot] = Variable(key);
}

bool RecordPass(int slot, const char* path, const TIMEDATE* since, const TIMEDATE* until, unsigned int note,
                unsigned int processed, unsigned int total)
{
    EnsureLoaded();
    if (!IsSlot(slot))
        return false;
    const std::lock_guard guard(recordsLock);
    if (bStopAndReset != 0 || std::strcmp(szMailDbName[slot], path) != 0)
        return false;
    if (!IniFileAgrees(slot)) {
        LoadSlotLocked(slot);
        RereadSwitches();  // with other switches everything is to be indexed again
        return false;
    }
    Store(slot, since, until, {note, processed, total});
    return true;
}

bool GetDbRecovery(int slot, TIMEDATE* until, unsigned int* note)
{
    EnsureLoaded();
    const std::lock_guard guard(recordsLock);
    if (!IsSlot(slot) || !bMailRecoveryValid[slot])
        return false;
    *until = MailRecovery[slot];
    *note = dwMailRecoveryNote[slot][kResumeNote];
    return true;
}

bool GetDbRecoveryProgress(int slot, unsigned int* processed, unsigned int* total)
{
    EnsureLoaded();
    const std::lock_guard guard(recordsLock);
    if (!IsSlot(slot) || !bMailRecoveryValid[slot])
        return false;
    const uint32_t* const numbers = dwMailRecoveryNote[slot];
    if (numbers[kProcessed] == 0 || numbers[kTotal] == 0)
        return false;
    *processed = numbers[kProcessed];
    *total = numbers[kTotal];
    return true;
}

bool IsTimeDateClear(const TIMEDATE* time)
{
    TIMEDATE minimum;
    TimeConstant(kMinimumTime, &minimum);
    return TimeDateCollate(time, &minimum) == 0;
}

void getIniMailInfo()
{
    for (int slot = 0; slot < kProgressSlots; ++slot) {
        if (!LoadSlot(slot) && slot == GetHistoryIndex())
            FindHistoryDatabase();
    }
}
