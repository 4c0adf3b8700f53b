// client/import/calendar_occurrences.cpp: rules are followed by libical in local time, so that a meeting at nine
// stays at nine when the clocks change; everything else is done on instants.
#include "client/import/calendar_occurrences.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <set>

#include "client/store/civil_date.h"

namespace pavex {
namespace {

// A rule is followed so far: half a thousand years of days.  What repeats by the second never comes to an end.
constexpr int kMostSteps = 200000;
constexpr int kMostStepsOfAll = 4 * kMostSteps;  // of the rules of one entry together

struct IteratorReleaser {
    void operator()(icalrecur_iterator* iterator) const { icalrecur_iterator_free(iterator); }
};

int DayKey(const icaltimetype& time)
{
    return (time.year * 16 + time.month) * 32 + time.day;
}

// The parser takes the thirty-ninth of a thirteenth month too.
bool IsTime(const icaltimetype& time)
{
    return time.year > 0 && IsCivilDate({time.year, time.month, time.day}) && time.hour >= 0 && time.hour < 24 &&
           time.minute >= 0 && time.minute < 60 && time.second >= 0 && time.second <= 60;
}

template <size_t Count> bool AnyGiven(const short (&parts)[Count])
{
    return std::any_of(std::begin(parts), std::end(parts), [](short by) { return by != ICAL_RECURRENCE_ARRAY_MAX; });
}

template <size_t Count> std::ptrdiff_t CountOf(const short (&parts)[Count])
{
    return std::find(std::begin(parts), std::end(parts), short{ICAL_RECURRENCE_ARRAY_MAX}) - std::begin(parts);
}

// libical tries each of them on every day, also on the days that the rule leaves out.
bool HasManyTimesADay(const icalrecurrencetype& rule)
{
    constexpr std::ptrdiff_t kMostTimes = 4;
    const auto atLeastOne = [](std::ptrdiff_t count) { return std::max<std::ptrdiff_t>(count, 1); };
    return atLeastOne(CountOf(rule.by_hour)) * atLeastOne(CountOf(rule.by_minute)) *
               atLeastOne(CountOf(rule.by_second)) >
           kMostTimes;
}

// libical looks for the next match of such a rule second by second, minute by minute or hour by hour, for ever.
bool IsEndlessSearch(const icalrecurrencetype& rule)
{
    const bool fine = rule.freq == ICAL_SECONDLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE;
    const short days[] = {rule.by_day[0], rule.by_month_day[0], rule.by_year_day[0], rule.by_week_no[0],
                          rule.by_month[0]};
    const short times[] = {rule.by_hour[0], rule.by_minute[0], rule.by_second[0]};
    const bool daily = rule.freq == ICAL_DAILY_RECURRENCE;
    return (daily && AnyGiven(days) && HasManyTimesADay(rule)) ||
           ((fine || rule.freq == ICAL_HOURLY_RECURRENCE) && AnyGiven(days)) || (fine && AnyGiven(times));
}

// Past and future ones, as many of each as may be listed.
class OccurrenceWindow {
public:
    explicit OccurrenceWindow(int64_t today) : today_(today) {}

    // False when it lies behind all that will be listed.
    bool Add(const CalendarInstant& start)
    {
        std::set<CalendarInstant>& side = start.seconds < today_ ? past_ : future_;
        side.insert(start);
        if (side.size() <= kMostOccurrences)
            return true;
        const auto farthest = &side == &past_ ? side.begin() : std::prev(side.end());
        const bool inside = &side == &past_ || !(*farthest == start);
        side.erase(farthest);
        dropped_ = true;
        return inside;
    }

    Occurrences List() const
    {
        Occurrences list;
        const size_t room = kMostOccurrences - future_.size();
        const size_t kept = std::min(room, past_.size());
        list.starts.assign(std::prev(past_.end(), static_cast<std::ptrdiff_t>(kept)), past_.end());
        list.starts.insert(list.starts.end(), future_.begin(), future_.end());
        list.shortened = dropped_ || kept < past_.size();
        return list;
    }

private:
    int64_t today_;
    std::set<CalendarInstant> past_;
    std::set<CalendarInstant> future_;
    bool dropped_ = false;
};

class SeriesReader {
public:
    SeriesReader(const CalendarSeries& series, CalendarZones& zones, int64_t today)
        : series_(series), zones_(zones), window_(today)
    {
    }

    Occurrences Read()
    {
        if (series_.master != nullptr)
            start_ = TimeOfComponent(series_.master, ICAL_DTSTART_PROPERTY);
        for (icalcomponent* change : series_.changes)
            TakeChange(change);
        if (series_.master != nullptr)
            TakeMaster();
        Occurrences list = window_.List();
        list.unreadable = unreadable_;
        list.skippedRules = rules_ > kMostRules;
        return list;
    }

private:
    // What happens to the instances from one on.
    struct Shift {
        bool cancelled;
        int64_t by;  // seconds
    };

    // An instance moved to its own start, or cancelled; with all that follow when it says so.
    void TakeChange(icalcomponent* change)
    {
        icalproperty* const property = icalcomponent_get_first_property(change, ICAL_RECURRENCEID_PROPERTY);
        const std::optional<CalendarTime> instance =
            property != nullptr ? LikeTheStart(TimeOfProperty(property)) : std::nullopt;
        const std::optional<CalendarTime> start = TimeOfComponent(change, ICAL_DTSTART_PROPERTY);
        const bool cancelled = icalcomponent_get_status(change) == ICAL_STATUS_CANCELLED;
        if (instance)
            Exclude(*instance);
        if (!cancelled && start)
            window_.Add(zones_.InstantOf(*start));
        if (instance && (cancelled || start) && HasAllThatFollow(property)) {
            const int64_t from = zones_.InstantOf(*instance).seconds;
            shifts_[from] = {cancelled, cancelled ? 0 : zones_.InstantOf(*start).seconds - from};
        }
    }

    static bool HasAllThatFollow(icalproperty* property)
    {
        icalparameter* const range = icalproperty_get_first_parameter(property, ICAL_RANGE_PARAMETER);
        return range != nullptr && icalparameter_get_range(range) == ICAL_RANGE_THISANDFUTURE;
    }

    // Of a series of days an instance is a day too, also where it is written with a time.
    std::optional<CalendarTime> LikeTheStart(std::optional<CalendarTime> instance) const
    {
        if (instance && start_ && start_->date)
            instance->local.is_date = instance->date = true;
        return instance;
    }

    void Exclude(const CalendarTime& time)
    {
        if (time.date)
            excludedDays_.insert(DayKey(time.local));
        else
            excluded_.insert(zones_.InstantOf(time).seconds);
    }

    void TakeMaster()
    {
        if (!start_)
            return;
        EachProperty(ICAL_EXDATE_PROPERTY, [this](icalproperty* property) {
            if (const std::optional<CalendarTime> time = LikeTheStart(TimeOfProperty(property)))
                Exclude(*time);
        });
        EachProperty(ICAL_EXRULE_PROPERTY, [&](icalproperty* property) {
            Follow(icalproperty_get_exrule(property), *start_, [this](const CalendarTime& time) {
                excluded_.insert(zones_.InstantOf(time).seconds);
                return true;
            });
        });
        AddUnlessExcluded(*start_);
        EachProperty(ICAL_RDATE_PROPERTY, [this](icalproperty* property) {
            if (const std::optional<CalendarTime> time = TimeOfProperty(property))
                AddUnlessExcluded(*time);
        });
        EachProperty(ICAL_RRULE_PROPERTY, [&](icalproperty* property) {
            Follow(icalproperty_get_rrule(property), *start_,
                   [this](const CalendarTime& time) { return AddUnlessExcluded(time); });
        });
    }

    template <typename Work> void EachProperty(icalproperty_kind kind, const Work& work)
    {
        for (icalproperty* property = icalcomponent_get_first_property(series_.master, kind); property != nullptr;
             property = icalcomponent_get_next_property(series_.master, kind))
            work(property);
    }

    // False when it and all later ones are of no use.
    bool AddUnlessExcluded(const CalendarTime& time)
    {
        CalendarInstant instant = zones_.InstantOf(time);
        if (excluded_.contains(instant.seconds) || excludedDays_.contains(DayKey(time.local)))
            return true;
        const auto behind = shifts_.upper_bound(instant.seconds);
        if (behind == shifts_.begin())
            return window_.Add(instant);
        const Shift& shift = std::prev(behind)->second;
        if (shift.cancelled)
            return behind != shifts_.end();
        instant.seconds += shift.by;
        return window_.Add(instant);
    }

    template <typename Work> void Follow(icalrecurrencetype rule, const CalendarTime& start, const Work& work)
    {
        if (++rules_ > kMostRules)
            return;
        if (IsEndlessSearch(rule)) {
            unreadable_ = true;
            return;
        }
        rule.until = UntilLike(rule.until, start);
        const std::unique_ptr<icalrecur_iterator, IteratorReleaser> iterator(icalrecur_iterator_new(rule, start.local));
        if (!iterator) {
            unreadable_ = true;
            return;
        }
        CalendarTime time = start;
        for (int step = 0; step < kMostSteps && steps_ < kMostStepsOfAll; ++step, ++steps_) {
            time.local = icalrecur_iterator_next(iterator.get());
            if (icaltime_is_null_time(time.local) || !work(time))
                return;
        }
        unreadable_ = true;
    }

    // The end of a rule in the form of its start: some write a day, or a time of UTC, whatever the start is.
    icaltimetype UntilLike(icaltimetype until, const CalendarTime& start)
    {
        if (icaltime_is_null_time(until))
            return until;
        if (!start.date && until.is_date) {
            until.hour = 23;
            until.minute = 59;
            until.second = 59;
        } else if (!start.date && !start.utc && icaltime_is_utc(until)) {
            CalendarTime time;
            time.local = until;
            time.utc = true;
            until = zones_.LocalOf(zones_.InstantOf(time).seconds, start);
        }
        until.is_date = start.date ? 1 : 0;
        until.zone = nullptr;
        if (start.date)
            until.hour = until.minute = until.second = 0;
        return until;
    }

    const CalendarSeries& series_;
    CalendarZones& zones_;
    OccurrenceWindow window_;
    std::set<int64_t> excluded_;
    std::set<int> excludedDays_;
    std::optional<CalendarTime> start_;  // of the master
    std::map<int64_t, Shift> shifts_;    // by the instant that they begin with
    int rules_ = 0;                      // met
    int steps_ = 0;                      // of all rules
    bool unreadable_ = false;
};

}  // namespace

std::optional<CalendarTime> TimeOfProperty(icalproperty* property)
{
    icalvalue* const value = icalproperty_get_value(property);
    if (value == nullptr)
        return std::nullopt;
    CalendarTime time;
    switch (icalvalue_isa(value)) {
    case ICAL_DATE_VALUE:
        time.local = icalvalue_get_date(value);
        break;
    case ICAL_DATETIME_VALUE:
        time.local = icalvalue_get_datetime(value);
        break;
    case ICAL_PERIOD_VALUE:
        time.local = icalvalue_get_period(value).start;
        break;
    case ICAL_DATETIMEPERIOD_VALUE: {
        const icaldatetimeperiodtype either = icalvalue_get_datetimeperiod(value);
        time.local = icaltime_is_null_time(either.time) ? either.period.start : either.time;
        break;
    }
    default:
        return std::nullopt;
    }
    if (!IsTime(time.local))
        return std::nullopt;
    time.utc = icaltime_is_utc(time.local) != 0;
    time.date = time.local.is_date != 0;
    time.local.zone = nullptr;
    icalparameter* const zone = icalproperty_get_first_parameter(property, ICAL_TZID_PARAMETER);
    if (zone != nullptr && !time.utc && icalparameter_get_tzid(zone) != nullptr)
        time.zone = icalparameter_get_tzid(zone);
    return time;
}

std::optional<CalendarTime> TimeOfComponent(icalcomponent* component, icalproperty_kind kind)
{
    icalproperty* const property = icalcomponent_get_first_property(component, kind);
    return property != nullptr ? TimeOfProperty(property) : std::nullopt;
}

Occurrences ListOccurrences(const CalendarSeries& series, CalendarZones& zones, int64_t today)
{
    return SeriesReader(series, zones, today).Read();
}

}  // namespace pavex
