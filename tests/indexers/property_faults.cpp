// tests/indexers/property_faults.cpp: the wrappers of the event's calls.
#include "tests/indexers/property_faults.h"

#include "platform/store.h"

namespace {

constexpr SearchEngineResult kRefused = -7;

int failingProperty = 0;
bool refuseSend = false;
bool sent = false;
bool hideNoteTimes = false;
bool hideClock = false;
std::vector<std::string> keys;

bool Refuses(const CString& key)
{
    keys.push_back(key.toString());
    return failingProperty != 0 && static_cast<int>(keys.size()) == failingProperty;
}

}  // namespace

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
SearchEngineResult __real__ZN17SearchEngineEvent11AddPropertyERK7CStringS2_(SearchEngineEvent*, const CString&,
                                                                            const CString&);
SearchEngineResult __real__ZN17SearchEngineEvent11AddPropertyERK7CStringRKd(SearchEngineEvent*, const CString&,
                                                                            const double&);
SearchEngineResult __real__ZN17SearchEngineEvent11AddPropertyERK7CStringRKj(SearchEngineEvent*, const CString&,
                                                                            const unsigned&);
SearchEngineResult __real__ZN17SearchEngineEvent4SendEiPi(SearchEngineEvent*, int, int*);
void __real_VLTNoteGetInfo(NOTEHANDLE, WORD, void*);
void __real_OSCurrentTIMEDATE(TIMEDATE*);

SearchEngineResult __wrap__ZN17SearchEngineEvent11AddPropertyERK7CStringS2_(SearchEngineEvent* event,
                                                                            const CString& key, const CString& value)
{
    return Refuses(key) ? kRefused : __real__ZN17SearchEngineEvent11AddPropertyERK7CStringS2_(event, key, value);
}

SearchEngineResult __wrap__ZN17SearchEngineEvent11AddPropertyERK7CStringRKd(SearchEngineEvent* event,
                                                                            const CString& key, const double& value)
{
    return Refuses(key) ? kRefused : __real__ZN17SearchEngineEvent11AddPropertyERK7CStringRKd(event, key, value);
}

SearchEngineResult __wrap__ZN17SearchEngineEvent11AddPropertyERK7CStringRKj(SearchEngineEvent* event,
                                                                            const CString& key, const unsigned& value)
{
    return Refuses(key) ? kRefused : __real__ZN17SearchEngineEvent11AddPropertyERK7CStringRKj(event, key, value);
}

SearchEngineResult __wrap__ZN17SearchEngineEvent4SendEiPi(SearchEngineEvent* event, int flags, int* error)
{
    sent = true;
    return refuseSend ? kRefused : __real__ZN17SearchEngineEvent4SendEiPi(event, flags, error);
}

void __wrap_VLTNoteGetInfo(NOTEHANDLE note, WORD selector, void* value)
{
    __real_VLTNoteGetInfo(note, selector, value);
    if (!hideNoteTimes)
        return;
    if (selector == kNoteInfoModified)
        TimeConstant(2, static_cast<TIMEDATE*>(value));
    if (selector == kNoteInfoOriginatorId) {
        TimeConstant(2, &static_cast<ORIGINATORID*>(value)->SequenceTime);
        TimeConstant(2, &static_cast<ORIGINATORID*>(value)->Unid.Note);
    }
}

void __wrap_OSCurrentTIMEDATE(TIMEDATE* time)
{
    __real_OSCurrentTIMEDATE(time);
    if (hideClock)
        TimeConstant(2, time);
}
}
// NOLINTEND(bugprone-reserved-identifier)

PropertyFault::PropertyFault(int failing, bool sendFails)
{
    failingProperty = failing;
    refuseSend = sendFails;
    sent = false;
    keys.clear();
}

PropertyFault::~PropertyFault()
{
    failingProperty = 0;
    refuseSend = false;
}

const std::vector<std::string>& PropertyFault::Keys() const
{
    return keys;
}

bool PropertyFault::Sent() const
{
    return sent;
}

NoteTimesFault::NoteTimesFault()
{
    hideNoteTimes = true;
}

NoteTimesFault::~NoteTimesFault()
{
    hideNoteTimes = false;
}

ClockFault::ClockFault()
{
    hideClock = true;
}

ClockFault::~ClockFault()
{
    hideClock = false;
}
