// client/check/progress_record.cpp: the slots of the ini file.
#include "client/check/progress_record.h"

#include <charconv>
#include <filesystem>
#include <sstream>

#include "client/store/charset.h"
#include "client/store/host.h"
#include "client/store/note_link.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

constexpr int kHistorySlot = 15;
constexpr size_t kMostBytes = 256;
constexpr size_t kCompleteFields = 1;
constexpr size_t kInterruptedFields = 5;

std::vector<std::string> FieldsOf(const std::string& text)
{
    std::vector<std::string> fields;
    std::istringstream stream(text);
    for (std::string field; std::getline(stream, field, '|');)
        if (!field.empty())
            fields.push_back(field);
    return fields;
}

std::optional<uint64_t> StampOf(const std::string& field)
{
    std::string text = ScsFromUtf8(field);
    char* next = text.data();
    TIMEDATE time{};
    constexpr WORD kMostTimeBytes = 80;
    if (ConvertTextToTIMEDATE(nullptr, nullptr, &next, kMostTimeBytes, &time) != 0)
        return std::nullopt;
    return HundredthsOf(time);
}

// Written as a signed number of 32 bits.
std::optional<uint32_t> NumberOf(const std::string& field)
{
    int32_t number = 0;
    const char* const end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, number);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return static_cast<uint32_t>(number);
}

void ReadInterruption(const std::vector<std::string>& fields, ProgressRecord* record)
{
    record->until = StampOf(fields[1]);
    if (!record->until) {
        record->damage = "\"" + fields[1] + "\" is no time";
        return;
    }
    const std::optional<uint32_t> note = fields.size() > 2 ? NumberOf(fields[2]) : std::nullopt;
    record->resumeNote = note.value_or(0);
    if (fields.size() != kInterruptedFields)
        record->damage = "it has " + std::to_string(fields.size()) + " parts, not 1 or 5";
    else if (!note || !NumberOf(fields[3]) || !NumberOf(fields[4]))
        record->damage = "its last three parts are not all numbers";
}

void ReadRecord(ProgressRecord* record)
{
    const std::vector<std::string> fields = FieldsOf(record->text);
    if (fields.empty())
        return;
    if (record->text.size() > kMostBytes)
        record->damage = "it is longer than " + std::to_string(kMostBytes) + " bytes";
    const std::optional<uint64_t> since = fields[0] == "0" ? 0 : StampOf(fields[0]);
    record->since = since.value_or(0);
    if (!since)
        record->damage = "\"" + fields[0] + "\" is no time";
    else if (fields.size() > kCompleteFields)
        ReadInterruption(fields, record);
}

// The path of a slot.  Without a variable of its own the history's is where it always is: the add-in finds it there.
std::string PathOfSlot(int slot, const std::string& suffix)
{
    std::string path;
    std::string history = CurrentPlaces().data + "/" + kHistoryFile;
    std::error_code none;
    if (!GetVariable("GDSFilePath" + suffix, &path) && slot == kHistorySlot && std::filesystem::exists(history, none))
        return history;
    return path;
}

}  // namespace

bool ProgressRecord::IsHistory() const
{
    return slot == kHistorySlot;
}

bool ProgressRecord::IsWaiting(uint32_t note, uint64_t stamp) const
{
    if (stamp <= since)
        return false;
    return !until || note >= resumeNote || stamp > *until;
}

std::vector<ProgressRecord> ReadProgressRecords()
{
    std::vector<ProgressRecord> records;
    for (int slot = 0; slot <= kHistorySlot; ++slot) {
        const std::string suffix = slot == 0 ? "" : std::to_string(slot);
        ProgressRecord record;
        record.slot = slot;
        record.variable = "GDSTimestamp" + suffix;
        record.path = PathOfSlot(slot, suffix);
        (void)GetVariable(record.variable, &record.text);
        if (record.path.empty() && record.text.empty())
            continue;
        ReadRecord(&record);
        records.push_back(std::move(record));
    }
    return records;
}

}  // namespace pavex
