// client/import/calendar_reader.cpp: where the entries of a calendar lie, and which belong together.
#include "client/import/calendar_reader.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "client/import/calendar_note.h"
#include "client/import/calendar_text.h"
#include "client/import/content_lines.h"
#include "client/import/digest.h"
#include "client/import/text_file.h"
#include "client/import/words.h"
#include "client/store/clock.h"

namespace pavex {
namespace {

// An entry with more text is nothing that anybody wrote.
constexpr uint64_t kLargestComponent = uint64_t{32} * 1024 * 1024;
constexpr uint64_t kLargestZone = uint64_t{256} * 1024;

struct ComponentReleaser {
    void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using ComponentOwner = std::unique_ptr<icalcomponent, ComponentReleaser>;

struct KindRow {
    const char* name;
    CalendarKind kind;
    icalcomponent_kind component;
};
// In the order of the kinds.
constexpr KindRow kKinds[] = {
    {"VEVENT", CalendarKind::kEvent, ICAL_VEVENT_COMPONENT},
    {"VTODO", CalendarKind::kTask, ICAL_VTODO_COMPONENT},
    {"VJOURNAL", CalendarKind::kJournal, ICAL_VJOURNAL_COMPONENT},
};

constexpr std::string_view kSuffixes[] = {".ics", ".ical", ".icalendar", ".vcs"};

// A component of the file, seen from outside.
struct Piece {
    CalendarKind kind = CalendarKind::kEvent;
    uint64_t offset = 0;
    uint64_t endOffset = 0;
    uint64_t line = 0;
    std::string uid;        // of a zone its name
    bool instance = false;  // of a series
};

std::string_view ValueOf(std::string_view line)
{
    const size_t value = ContentValue(line);
    return value == line.npos ? std::string_view() : TrimmedText(line.substr(value));
}

class CalendarReader {
public:
    CalendarReader(const SourceFile& file, const TextFile& text, EntryHandler& handler)
        : file_(file), text_(text), handler_(handler)
    {
    }

    bool Read()
    {
        icalerror_set_errors_are_fatal(0);
        return Survey() && HandOut();
    }

private:
    std::string Where(uint64_t line) const { return file_.path + ":line " + std::to_string(line); }

    bool Survey()
    {
        ContentLines lines(text_.descriptor.Get(), text_.start, text_.end);
        uint64_t last = 0;
        for (ContentLine line; lines.Next(&line); last = line.number) {
            if (!SurveyLine(line))
                return false;
        }
        if (lines.Error() != 0)
            handler_.Unreadable(file_.path, std::string("cannot be read: ") + std::strerror(lines.Error()));
        else if (inPiece_)
            EndUnfinished();
        else if (!open_.empty())
            handler_.Unreadable(Where(last), "the calendar is not ended: its END line is missing");
        return true;
    }

    bool SurveyLine(const ContentLine& line)
    {
        const std::string name = ContentName(line.text);
        const std::string_view value = ValueOf(line.text);
        if (name == "BEGIN")
            return Open(value, line);
        if (name == "END")
            return Close(value, line);
        if ((inPiece_ || inZone_) && open_.size() == depth_) {
            if (name == (inZone_ ? "TZID" : "UID"))
                piece_.uid = value;
            piece_.instance = piece_.instance || name == "RECURRENCE-ID";
        }
        return true;
    }

    // A component that begins where an entry cannot hold one: the entry before was not ended.
    bool Open(std::string_view name, const ContentLine& line)
    {
        const KindRow* const row = RowOf(name);
        const bool zone = SameWord(name, "VTIMEZONE");
        if (inPiece_ && (row != nullptr || zone || SameWord(name, "VCALENDAR")))
            EndUnfinished();
        open_.emplace_back(name);
        if (inPiece_ || inZone_ || (row == nullptr && !zone))
            return SameWord(name, "VFREEBUSY") ? handler_.Rejected(Where(line.number), kFreeBusy) : true;
        piece_ = {row != nullptr ? row->kind : CalendarKind::kEvent, line.offset, 0, line.number, {}, false};
        inPiece_ = row != nullptr;
        inZone_ = zone;
        depth_ = open_.size();
        return true;
    }

    bool Close(std::string_view name, const ContentLine& line)
    {
        if (open_.empty() || !SameWord(open_.back(), name)) {
            if (inPiece_ && open_.size() > depth_) {
                open_.resize(depth_);  // an alarm that was not ended ends with its entry
                return Close(name, line);
            }
            if (inPiece_)
                EndUnfinished();
            return true;
        }
        if ((inPiece_ || inZone_) && open_.size() == depth_) {
            piece_.endOffset = line.endOffset;
            Keep();
        }
        open_.pop_back();
        return true;
    }

    void Keep()
    {
        if (inZone_) {
            zonePieces_.push_back(piece_);
        } else if (piece_.uid.empty()) {
            groups_.push_back({piece_});
        } else {
            const auto [at, fresh] = groupOf_.try_emplace({piece_.kind, piece_.uid}, groups_.size());
            if (fresh)
                groups_.emplace_back();
            groups_[at->second].push_back(piece_);
        }
        inPiece_ = inZone_ = false;
    }

    void EndUnfinished()
    {
        open_.clear();
        inPiece_ = inZone_ = false;
        handler_.Unreadable(Where(piece_.line), "is not ended: its END line is missing");
    }

    static const KindRow* RowOf(std::string_view name)
    {
        for (const KindRow& row : kKinds) {
            if (SameWord(row.name, name))
                return &row;
        }
        return nullptr;
    }

    bool HandOut()
    {
        bool shortened = false;  // a line that is no zone's own
        for (const Piece& zone : zonePieces_) {
            if (zone.endOffset - zone.offset <= kLargestZone)
                zones_.Define(zone.uid, CalendarText(text_.descriptor.Get(), zone.offset, zone.endOffset, &shortened));
        }
        uint64_t reported = 0;
        for (const std::vector<Piece>& group : groups_) {
            if (!HandOutGroup(group))
                return false;
            const uint64_t end = group.back().endOffset;
            if (end > reported) {
                if (!handler_.Progress(end - reported))
                    return false;
                reported = end;
            }
        }
        return handler_.Progress(file_.size > reported ? file_.size - reported : 0);
    }

    static const KindRow& RowOf(CalendarKind kind) { return kKinds[static_cast<size_t>(kind)]; }

    // Null with *reason when the entry cannot be read.
    //   digest  of what it says; the time of the export is no part of it.
    ComponentOwner Parse(const Piece& piece, std::string* digest, bool* shortened, std::string* reason)
    {
        if (piece.endOffset - piece.offset > kLargestComponent) {
            *reason = "has more than 32 MB";
            return nullptr;
        }
        const std::string text = CalendarText(text_.descriptor.Get(), piece.offset, piece.endOffset, shortened);
        ComponentOwner component(icalparser_parse_string(text.c_str()));
        if (!component || icalcomponent_isa(component.get()) != RowOf(piece.kind).component) {
            *reason = "cannot be parsed";
            return nullptr;
        }
        *digest = DigestOf(WithoutStamp(text));
        return component;
    }

    static std::string WithoutStamp(const std::string& text)
    {
        std::string rest = text;
        const size_t stamp = rest.find("\r\nDTSTAMP");
        if (stamp != rest.npos)
            rest.erase(stamp, rest.find("\r\n", stamp + 2) - stamp);
        return rest;
    }

    bool HandOutGroup(const std::vector<Piece>& group)
    {
        Series series;
        for (const Piece& piece : group) {
            std::string digest;
            std::string reason;
            ComponentOwner component = Parse(piece, &digest, &series.parts.shortened, &reason);
            const bool taken =
                component ? TakeInto(&series, std::move(component), piece, digest) : Reject(piece, {}, reason);
            if (!taken)
                return false;
        }
        return series.owners.empty() || HandOutSeries(group.front(), series);
    }

    // An entry, its changed instances, and what holds them.
    struct Series {
        CalendarSeries parts;
        std::string digest;  // of the master, or of the first instance where there is none
        std::vector<ComponentOwner> owners;
    };

    // Of two entries of one id the newer version counts.  Two that claim to be the same version and differ are two
    // entries, of which the first is kept: by one id there is one note.
    bool TakeInto(Series* series, ComponentOwner component, const Piece& piece, const std::string& digest)
    {
        icalcomponent* const held = series->parts.master;
        if (!piece.instance && held != nullptr) {
            const int newer = icalcomponent_get_sequence(component.get()) - icalcomponent_get_sequence(held);
            if (newer == 0 && digest != series->digest)
                return handler_.Rejected(Where(piece.line), "has the id (UID) of another entry of this file");
            if (newer <= 0)
                return true;
        }
        if (piece.instance)
            series->parts.changes.push_back(component.get());
        else
            series->parts.master = component.get();
        if (!piece.instance || series->digest.empty())
            series->digest = digest;
        series->owners.push_back(std::move(component));
        return true;
    }

    // What is held of an entry with an id stays; of one without, nobody knows which it was.
    bool Reject(const Piece& piece, const std::string& identity, const std::string& reason)
    {
        if (piece.uid.empty()) {
            handler_.Unreadable(Where(piece.line), reason);
            return true;
        }
        const std::string known = identity.empty() ? IdentityOf(piece, true) : identity;
        return handler_.RejectedVersion(EntryKind::kCalendar, known, Where(piece.line), reason);
    }

    // Instances whose series is elsewhere must not take its place.
    static std::string IdentityOf(const Piece& piece, bool master)
    {
        return std::string("calendar:") + RowOf(piece.kind).name + (master ? ":" : " instances:") + piece.uid;
    }

    static bool OnlyCancels(const CalendarSeries& series)
    {
        return series.master == nullptr &&
               std::all_of(series.changes.begin(), series.changes.end(), [](icalcomponent* change) {
                   return icalcomponent_get_status(change) == ICAL_STATUS_CANCELLED;
               });
    }

    bool HandOutSeries(const Piece& first, const Series& series)
    {
        SourceEntryFound entry;
        entry.identity =
            first.uid.empty() ? "calendar:sha256:" + series.digest : IdentityOf(first, series.parts.master != nullptr);
        if (OnlyCancels(series.parts))
            return Reject(first, entry.identity, "only cancels an occurrence of an entry that is not in this file");
        auto made = std::make_shared<CalendarNote>();
        std::string reason;
        const auto now = static_cast<int64_t>(CurrentClock().NowHundredths() / 100);
        if (!MakeCalendarNote(first.kind, series.parts, zones_, now, made.get(), &reason))
            return Reject(first, entry.identity, reason);
        entry.kind = EntryKind::kCalendar;
        entry.where = Where(first.line);
        entry.digest = made->digest;
        entry.notice = made->notice;
        entry.revision = made->revision;
        entry.make = [made](Note* note, std::string*) {
            *note = made->note;
            return true;
        };
        return handler_.Found(std::move(entry));
    }

    static constexpr const char* kFreeBusy = "says when somebody is free or busy, which is no entry of a calendar";

    const SourceFile& file_;
    const TextFile& text_;
    EntryHandler& handler_;
    CalendarZones zones_;

    std::vector<std::string> open_;  // components that are begun and not ended
    bool inPiece_ = false;
    bool inZone_ = false;
    size_t depth_ = 0;  // of open_ inside the piece
    Piece piece_;

    std::vector<Piece> zonePieces_;
    std::vector<std::vector<Piece>> groups_;  // of one identity, in the order of their first
    std::map<std::pair<CalendarKind, std::string>, size_t> groupOf_;
};

}  // namespace

bool LooksLikeCalendar(const SourceFile& file)
{
    const std::string text = TextOfHead(file.head);
    const std::string_view head = TrimmedText(text);
    if (BeginsWithWord(head, "BEGIN:VCALENDAR"))
        return true;
    // Single entries, and what stands after a preface, by the name of the file.
    const bool named = std::any_of(std::begin(kSuffixes), std::end(kSuffixes),
                                   [&](std::string_view suffix) { return EndsWithWord(file.path, suffix); });
    for (size_t line = 0; named && line < head.size(); line = head.find('\n', line) + 1) {
        const std::string_view rest = head.substr(line);
        if (BeginsWithWord(rest, "BEGIN:VCALENDAR") ||
            std::any_of(std::begin(kKinds), std::end(kKinds),
                        [&](const KindRow& row) { return BeginsWithWord(rest, std::string("BEGIN:") + row.name); }))
            return true;
        if (rest.find('\n') == rest.npos)
            break;
    }
    return false;
}

bool ReadCalendar(const SourceFile& file, const ImportOptions&, EntryHandler& handler)
{
    TextFile text;
    std::string reason;
    if (!OpenTextFile(file.path, &text, &reason)) {
        handler.Unreadable(file.path, reason);
        return true;
    }
    return CalendarReader(file, text, handler).Read();
}

}  // namespace pavex
