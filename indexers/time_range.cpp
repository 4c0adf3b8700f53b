// indexers/time_range.cpp: the occurrences of a calendar entry or task.
// An item of several dates is read in its text form, the values split at "|".
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "content/buffers.h"
#include "content/note_times.h"
#include "indexers/calendar.h"
#include "indexers/note_kind.h"
#include "platform/foundation.h"
#include "strings/cstring.h"

TimePair StartEndTimes[2 * kMaxTimePairs];

namespace {

constexpr char kSeparator = '|';
constexpr char kSeparators[] = {kSeparator, '\0'};
constexpr size_t kDateTextBytes = 128;

// The values of an item, in Buffer4, one after the other.
class DateTokens {
public:
    DateTokens(NOTEHANDLE note, const char* item)
    {
        Buffer4[0] = '\0';
        // A text that fills the buffer to its limit has a negative length, as a signed word, and counts as none.
        const auto length = static_cast<int16_t>(VLTItemConvertToText(note, item, Buffer4, kBufferLimit, kSeparator));
        if (length <= 0)
            return;
        Buffer4[length] = '\0';
        next_ = strtok_r(Buffer4, kSeparators, &rest_);
    }

    // Null after the last.
    char* Next()
    {
        char* token = next_;
        if (token != nullptr)
            next_ = strtok_r(nullptr, kSeparators, &rest_);
        return token;
    }

private:
    char* next_ = nullptr;
    char* rest_ = nullptr;
};

bool ReadDate(char* token, double* seconds)
{
    TIMEDATE time;
    if (token == nullptr)
        return false;
    const auto length = static_cast<WORD>(strlen(token));
    return ConvertTextToTIMEDATE(nullptr, nullptr, &token, length, &time) == kStatusOk &&
           TIMEDATEtoUTC(&time, *seconds);
}

bool ReadFirstDate(NOTEHANDLE note, const char* item, double* seconds)
{
    return ReadDate(DateTokens(note, item).Next(), seconds);
}

// Dates that cannot be read leave no gap; those past the last pair are dropped.
WORD FillStarts(NOTEHANDLE note, TimePair* pairs)
{
    DateTokens tokens(note, "CalendarDateTime");
    WORD count = 0;
    for (char* token = tokens.Next(); token != nullptr && count < kMaxTimePairs; token = tokens.Next()) {
        double start = 0;
        if (ReadDate(token, &start))
            pairs[count++].start = start;
    }
    return count;
}

// Blank-padded, in GMT, seconds truncated.
void FormatDate(double seconds, char (&text)[kDateTextBytes])
{
    const CFGregorianDate date = CFAbsoluteTimeGetGregorianDate(seconds, nullptr);
    std::snprintf(text, sizeof text, "%2d-%2d-%4d %2d:%2d:%2d", date.month, date.day, static_cast<int>(date.year),
                  date.hour, date.minute, static_cast<int>(date.second));
}

// Every occurrence, past ones too.
CString RecurrencePattern(const TimePair* pairs, WORD count)
{
    CString pattern;
    char text[kDateTextBytes];
    for (WORD i = 0; i < count; ++i) {
        FormatDate(pairs[i].start, text);
        pattern += CString(text);
        pattern += CString(" / ");
        FormatDate(pairs[i].end, text);
        pattern += CString(text);
        if (i + 1 < count)
            pattern += CString("; ");
    }
    return pattern;
}

// The first in array order that is still to come, else the first of all.
const TimePair& ChooseOccurrence(const TimePair* pairs, WORD count)
{
    TIMEDATE time;
    double now = 0;
    OSCurrentTIMEDATE(&time);
    if (!TIMEDATEtoUTC(&time, now))
        return pairs[0];
    const TimePair* next = std::find_if(pairs, pairs + count, [now](const TimePair& pair) { return pair.start > now; });
    return next != pairs + count ? *next : pairs[0];
}

template <typename Value>
SearchEngineResult AddTimeProperty(SearchEngineEvent& event, const char* key, const char* logKey, const Value& value)
{
    return LogIfFailed(logKey, event.AddProperty(CString(key), value));
}

SearchEngineResult AddDuration(SearchEngineEvent& event, const TimePair& chosen)
{
    const auto seconds = static_cast<int64_t>(chosen.end - chosen.start);
    if (seconds <= 0)
        return kSearchEngineNoError;
    return AddTimeProperty(event, "duration", "duration", static_cast<unsigned>(seconds));
}

}  // namespace

WORD FillStartEndTimeArray(NOTEHANDLE note, TimePair* pairs, WORD /*bound*/, const char* startItem, const char* endItem)
{
    const WORD count = FillStarts(note, pairs);
    double start = 0;
    double end = 0;
    if (count == 0 || !ReadFirstDate(note, startItem, &start) || !ReadFirstDate(note, endItem, &end) || end < start)
        return 0;
    for (WORD i = 0; i < count; ++i)
        pairs[i].end = pairs[i].start + (end - start);
    return count;
}

SearchEngineResult IndexStartEndTimeArray(const TimePair* /*pairs*/, WORD count, bool task, SearchEngineEvent& event)
{
    if (count == 0)
        return kSearchEngineNoError;
    // Always the calendar array: what a task reports is what the last calendar entry left there.
    const TimePair* pairs = StartEndTimes1;
    count = std::min(count, kMaxTimePairs);
    const TimePair chosen = ChooseOccurrence(pairs, count);
    SearchEngineResult result = AddTimeProperty(event, "start_date", "start_date", chosen.start);
    if (result == kSearchEngineNoError)
        result = AddTimeProperty(event, task ? "due_date" : "end_date", "end_date", chosen.end);
    if (result == kSearchEngineNoError && !task)
        result = AddDuration(event, chosen);
    if (result == kSearchEngineNoError && count > 1)
        result = AddTimeProperty(event, "recurrence_pattern", "recurrence_pattern", RecurrencePattern(pairs, count));
    return result;
}
