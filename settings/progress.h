// settings/progress.h: the databases, and how far each is indexed.
// Sixteen slots: 0..14 are the databases chosen in the dialog, 15 is the client's history.  Each has a
// path and a progress record in the client's ini file (docs/formats/progress.md).  The dialog's thread
// and the indexing thread both come here: every call takes the lock of progress.cpp, and loads the
// settings first.  A slot outside 0..15 has no path, no record, and cannot be set.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/store.h"

constexpr int kProgressSlots = 16;
constexpr size_t kMaxDbPathBytes = 256;  // SCS, terminator not counted

// True when the slot has a path; at most `size` (and at most kMaxDbPathBytes) bytes of it go to `out`,
// cut between characters, and a terminator after them: out has room for size + 1 bytes.  Null: only asks.
bool GetDbPath(int slot, char* out, unsigned short size);
// Null, or an empty path: the slot becomes free.
void SetDbPath(int slot, const char* path);
// The slot, 0..14, with exactly this path, or -1.
int GetDbIndex(const char* path);

// *out: every change up to it is indexed; the minimum time, and false, when none is stored.
bool GetDbTimestamp(int slot, TIMEDATE* out);
// Stores how far a slot is: since alone when a pass is complete, until, resume note and the two numbers
// with it when it was interrupted.  Null since: nothing is indexed.
void SetDbTimestamp(int slot, const TIMEDATE* since, const TIMEDATE* until, unsigned int note, unsigned int processed,
                    unsigned int total);
// Before a pass over a slot of which nothing is indexed: the record says so in its other form, so that a reset by
// another process meanwhile, which leaves an empty record, can be told from none.
void MarkPassBegun(int slot);
// As SetDbTimestamp, for a pass over `path` that has ended.  Stores nothing, and returns false, when the
// record is no longer this pass's to write: the slot was given to another database meanwhile, a reset is
// pending, or another process changed the slot in the ini file, which is then taken over.
bool RecordPass(int slot, const char* path, const TIMEDATE* since, const TIMEDATE* until, unsigned int note,
                unsigned int processed, unsigned int total);
// The end time and the resume note of an interrupted pass; false, and nothing written, without one.
bool GetDbRecovery(int slot, TIMEDATE* until, unsigned int* note);
// How many notes of how many it had visited; false, and nothing written, when that is not known.
bool GetDbRecoveryProgress(int slot, unsigned int* processed, unsigned int* total);
// True for the store's minimum time.
bool IsTimeDateClear(const TIMEDATE* time);
// Reads every slot afresh; finds the client's history database where none is stored.
void getIniMailInfo();

// The records, by slot; written by settings/progress.cpp alone, behind its lock.
extern char szMailDbName[kProgressSlots][kMaxDbPathBytes + 1];  // empty: not configured
extern TIMEDATE MailLastUpdated[kProgressSlots];
extern bool bMailTimestampValid[kProgressSlots];
extern TIMEDATE MailRecovery[kProgressSlots];
extern uint32_t dwMailRecoveryNote[kProgressSlots][3];  // resume note, processed, total
extern bool bMailRecoveryValid[kProgressSlots];
