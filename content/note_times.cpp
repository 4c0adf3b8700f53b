// content/note_times.cpp: the store's times as CoreFoundation absolute times.
#include "content/note_times.h"

#include "platform/foundation.h"

namespace {

constexpr DWORD kNone = 0xFFFFFFFF;  // no date, or no time of day
constexpr CFOptionFlags kAllDateUnits = 0xFFFFFF;

ORIGINATORID OriginatorIdOf(NOTEHANDLE note)
{
    ORIGINATORID oid{};
    // A note that does not answer has no date, rather than the minimum time.
    oid.SequenceTime = oid.Unid.Note = TIMEDATE{{kNone, kNone}};
    VLTNoteGetInfo(note, kNoteInfoOriginatorId, &oid);
    return oid;
}

}  // namespace

bool TIMEDATEtoUTC(const TIMEDATE* time, double& out)
{
    TIME fields{};
    fields.GM = *time;
    if (TimeExtractJulianDate(&fields.GM) == kNone)
        return false;
    if (TimeExtractTicks(&fields.GM) == kNone)
        fields.GM = TimeConstruct(TimeExtractDate(&fields.GM), 0);
    fields.dst = 0;
    fields.zone = 0;
    // What cannot be broken down stays month 0 and so is no valid date.
    static_cast<void>(TimeGMToLocalZone(&fields));

    CFGregorianDate date{};
    date.year = static_cast<WORD>(fields.year);
    date.month = static_cast<SInt8>(fields.month);
    date.day = static_cast<SInt8>(fields.day);
    date.hour = static_cast<SInt8>(fields.hour < 0 ? 0 : fields.hour);
    date.minute = static_cast<SInt8>(fields.minute < 0 ? 0 : fields.minute);
    date.second = fields.second < 0 ? 0.0 : static_cast<double>(static_cast<WORD>(fields.second));
    out = CFGregorianDateGetAbsoluteTime(date, nullptr);
    return CFGregorianDateIsValid(date, kAllDateUnits) != 0;
}

bool GetModifiedTime(NOTEHANDLE note, double& out)
{
    const ORIGINATORID oid = OriginatorIdOf(note);
    if (TIMEDATEtoUTC(&oid.SequenceTime, out))
        return true;
    TIMEDATE modified{{kNone, kNone}};
    VLTNoteGetInfo(note, kNoteInfoModified, &modified);
    return TIMEDATEtoUTC(&modified, out);
}

bool GetCreationTime(NOTEHANDLE note, double& out)
{
    const ORIGINATORID oid = OriginatorIdOf(note);
    return TIMEDATEtoUTC(&oid.Unid.Note, out);
}
