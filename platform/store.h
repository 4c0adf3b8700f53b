// platform/store.h: the client's store library as the add-in sees it.
// C linkage and plain types only.  A status is 16 bits, 0 for success.  Text is in the store's
// character set (SCS, ASCII-safe multi-byte) unless said otherwise.  A WORD length is the number of
// bytes written, terminator not counted.  "Terminated" output always leaves room for its NUL:
// a buffer of `size` bytes receives at most size - 1 bytes of text.  Cuts fall between characters.
// Calls on one database, note or table handle come from one thread at a time.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

extern "C" {

// ---- Types ----------------------------------------------------------------------------------

using BYTE = uint8_t;
using WORD = uint16_t;
using DWORD = uint32_t;
using STATUS = uint16_t;
using NOTEID = uint32_t;          // id of a note in its database; the top bit marks a deletion entry
using DBHANDLE = uint32_t;        // 0: none
using NOTEHANDLE = uint32_t;      // 0: none
using IDTABLE = uint32_t;         // 0: none
using COMPUTEHANDLE = uint32_t;   // 0: none
using COMPOUNDHANDLE = uint32_t;  // 0: none

// Two words: [0] hundredths of a second since midnight GMT, [1] Julian day number in the low 24
// bits.  All ones in [0] means "no time of day"; all ones in [1] means "no date".
struct TIMEDATE {
    DWORD Innards[2];
};

// Universal note id: the file part is random, the note part is the note's creation time.
struct UNID {
    TIMEDATE File;
    TIMEDATE Note;
};

struct ORIGINATORID {
    UNID Unid;
    DWORD Sequence;         // counts the note's changes, from 1
    TIMEDATE SequenceTime;  // when the note was last changed, as users see it
};

// A block of store memory: which pool, and where in it.  {0, 0} is the null block.
struct BLOCKID {
    DWORD pool;
    DWORD block;
};

struct DBREPLICAINFO {
    TIMEDATE ID;  // the replica id
    WORD Flags;
    WORD CutoffInterval;
    TIMEDATE Cutoff;
};

struct TIME {
    int year, month, day;                 // month and day from 1
    int weekday;                          // 1 Sunday .. 7 Saturday
    int hour, minute, second, hundredth;  // -1 where GM carries no time of day
    int dst;                              // daylight flag
    int zone;                             // hours west of GMT
    TIMEDATE GM;
};

// ---- Statuses the add-in or its tests give meaning to ---------------------------------------

constexpr STATUS kStatusOk = 0;
constexpr STATUS kStatusNoSuchFile = 259;    // no such file or folder
constexpr STATUS kStatusCancelled = 413;     // the user cancelled a chooser
constexpr STATUS kStatusNotADatabase = 513;  // the file is not a database, or is damaged beyond opening
constexpr STATUS kStatusNewerFormat = 514;   // written by a newer store
constexpr STATUS kStatusLocked = 515;        // another process kept the database locked
constexpr STATUS kStatusReadOnly = 516;      // the file may not be written
constexpr STATUS kStatusDiskFull = 517;
constexpr STATUS kStatusDamaged = 518;         // this part of the database cannot be read
constexpr STATUS kStatusNoAccess = 519;        // the file may not be opened
constexpr STATUS kStatusModeUnsuitable = 540;  // opened, but its mode does not allow indexing
constexpr STATUS kStatusItemNotFound = 546;
constexpr STATUS kStatusNoteDeleted = 549;      // only the deletion stub is left
constexpr STATUS kStatusNoSuchNote = 551;       // never was in this database
constexpr STATUS kStatusNothingModified = 572;  // nothing modified since the given time
constexpr STATUS kStatusBadHandle = 590;
constexpr STATUS kStatusBadText = 591;  // text that cannot be converted or parsed
constexpr STATUS kStatusNoMemory = 592;
constexpr STATUS kStatusNotFound = 593;  // no design note, policy or variable of that name
constexpr STATUS kStatusFormulaFailed = 594;
constexpr STATUS kStatusSealed = 595;  // no key to decrypt the note with
constexpr STATUS kStatusIoError = 596;
constexpr STATUS kStatusStopped = 719;  // ended on request
constexpr STATUS kStatusRemoteNotAllowed = 788;
constexpr STATUS kStatusRemoteUnreachable = 789;  // a server part, and no server is to be had
constexpr STATUS kStatusRemovalFailed = 11779;    // pass stopped: a removal or blank write failed

// ---- Item data types: the first 16-bit word (host byte order) of an item's value -------------

constexpr WORD kTypeRichText = 0x0001;
constexpr WORD kTypeNumber = 0x0300;       // one double
constexpr WORD kTypeNumberRange = 0x0301;  // WORD list count, WORD range count, doubles
constexpr WORD kTypeTime = 0x0400;         // one TIMEDATE
constexpr WORD kTypeTimeRange = 0x0401;    // WORD list count, WORD range count, TIMEDATEs
constexpr WORD kTypeText = 0x0500;         // bytes; a NUL byte is a line break
constexpr WORD kTypeTextList = 0x0501;     // WORD count, that many WORD lengths, the entries back to back
constexpr WORD kTypeFormula = 0x0600;      // formula source text
// Values are unaligned: copy them out with memcpy.

// ---- Process, threads and time --------------------------------------------------------------

// True on the client's main thread: the one that called MainEntryPoint.
bool OSIsClientMainThread(void);
// True once the client is ending.
bool AddInShouldTerminate(void);
// Default stack size in bytes for a thread of the given kind (0: background).
DWORD OSGetDefaultThreadStackBytes(WORD kind);
// Starts `entry(arg)` on a new thread.  thread: out, may be null.
STATUS OSCreateThread(void (*entry)(void*), DWORD stackBytes, void* arg, DWORD* thread);
// Priority of the calling thread: -1 low, 0 normal.
void OSSetThreadPriority(int priority);
// Gives the processor away once.
void OSPreempt(void);
// Waits on the calling thread, milliseconds.
void OSDelayThread(DWORD milliseconds);
// The system timer, milliseconds, 32 bits; wraps.
DWORD OSGetSystemTimer(void);
// Per-thread start and end of the store's state.  Each successful Init takes one Term.
STATUS PavexInitThread(void);
void PavexTermThread(void);

// ---- Environment (ini variables), policy, user, log -----------------------------------------

// Decimal value of a variable; 0 when it is absent or no number.
long OSGetEnvironmentLong(const char* name);
// Text of a variable into value[size], terminated.  False when it is absent (an empty one exists).
bool OSGetEnvironmentString(const char* name, char* value, WORD size);
void OSSetEnvironmentInt(const char* name, int value);
// Null value: the variable is removed.
void OSSetEnvironmentVariable(const char* name, const char* value);
// The client's data directory into path[256], terminated, no final '/'.  Returns its length.
WORD OSGetDataDirectory(char* path);
// function 1: the current user's full name into name[256], terminated.  reserved: 0.
STATUS SECKFMUserInfo(WORD function, char* name, void* reserved);
// The effective policy note of a user; *note is 0 when there is none.  Close with VLTNoteClose.
// The zero arguments are reserved.
STATUS NAMEGetPolicy(const char* user, DWORD reserved1, DWORD reserved2, const char* view, DWORD reserved3,
                     DWORD reserved4, const char* policy, DWORD reserved5, DWORD reserved6, NOTEHANDLE* note);
bool NAMEDPIsFieldLocked(NOTEHANDLE policyNote, const char* field);
// One entry in the client's log.  id: number of the add-in's localized text, whose conversions
// consume the further arguments in order: %s (const char*, SCS), %d %u %X (32-bit), %T (const
// TIMEDATE*).  status is shown when it is not 0.
void LogEvent(DWORD id, DWORD reserved, DWORD status, ...);  // a DWORD: the variable arguments follow it
// Formats into buffer (terminated, at most 1024 bytes): %H takes a pointer to an 8-byte id and
// prints 16 upper-case hexadecimal digits, Innards[1] first; %s, %d, %u and %X as printf.
// Returns the length.
WORD AddInFormatErrorText(char* buffer, const char* format, ...);

// ---- Databases ------------------------------------------------------------------------------

// path: SCS.  Handles are counted: each open takes one close.
// 259, 513, 514, 515, 516, 519 or 789 when it cannot be opened; *db is then 0.
STATUS VLTDbOpen(const char* path, DBHANDLE* db);
STATUS VLTDbClose(DBHANDLE db);
// Lowest bit set: an ordinary database of notes, which can be indexed.
STATUS VLTDbModeGet(DBHANDLE db, WORD* mode);
// Stamp of the last data change; nonData (may be null) gets that of the last design change.
STATUS VLTDbModifiedTime(DBHANDLE db, TIMEDATE* data, TIMEDATE* nonData);
STATUS VLTDbReplicaInfoGet(DBHANDLE db, DBREPLICAINFO* info);
// Notes of the classes in classMask (1 documents, 4 forms) with a change stamp greater than
// `since`, deletions included.  *until gets the greatest stamp of the database that was seen;
// `since` itself if that is greater.  572 with *until set when there is none.
// The table is the caller's: IDDestroyTable.
STATUS VLTDbGetModifiedNoteTable(DBHANDLE db, WORD classMask, TIMEDATE since, TIMEDATE* until, IDTABLE* table);
// The user's unread notes.  name[nameLength], flags 0.  The table is the caller's.
STATUS VLTDbGetUnreadNoteTable(DBHANDLE db, const char* name, WORD nameLength, DWORD flags, IDTABLE* table);
// Any of the outs may be null.  549 for a deletion stub, with *oid filled in; 551 for no note.
STATUS VLTDbGetNoteInfo(DBHANDLE db, NOTEID id, ORIGINATORID* oid, TIMEDATE* modified, WORD* noteClass);
// The database information buffer, 128 bytes; field 0 of it is the title (Parse: terminated).
STATUS VLTDbInfoGet(DBHANDLE db, char* info128);
void VLTDbInfoParse(const char* info128, WORD field, char* buffer, WORD size);
// The design note of a class (4: form) by its title; 593 when there is none.
STATUS IDXFindDesignNote(DBHANDLE db, const char* name, WORD noteClass, NOTEID* id);

DWORD IDEntries(IDTABLE table);
// Calls back in ascending unsigned id order (deletions last); a non-zero answer ends the walk and
// is returned.
STATUS IDEnumerate(IDTABLE table, STATUS (*callback)(void* context, NOTEID id), void* context);
STATUS IDDestroyTable(IDTABLE table);

// ---- Notes and items ------------------------------------------------------------------------

constexpr WORD kNoteInfoDatabase = 0;      // DBHANDLE
constexpr WORD kNoteInfoId = 1;            // NOTEID
constexpr WORD kNoteInfoOriginatorId = 2;  // ORIGINATORID
constexpr WORD kNoteInfoClass = 3;         // WORD
constexpr WORD kNoteInfoModified = 4;      // TIMEDATE, last modified

// 549 for a stub, 551 for no note.  flags: 0.  The note is the caller's: VLTNoteClose.
STATUS VLTNoteOpen(DBHANDLE db, NOTEID id, WORD flags, NOTEHANDLE* note);
// A new note in memory, in the database but not saved.
STATUS VLTNoteCreate(DBHANDLE db, DWORD flags, NOTEHANDLE* note);
// Null note: fails with 590, nothing happens.  Unsaved changes are dropped.
STATUS VLTNoteClose(NOTEHANDLE note);
// Writes one member, by selector; nothing is written for a bad handle or selector.
void VLTNoteGetInfo(NOTEHANDLE note, WORD selector, void* value);
// True when either is; the outs may be null.
bool VLTNoteIsSignedOrSealed(NOTEHANDLE note, bool* isSigned, bool* isSealed);
// Makes the sealed items of the open note readable.  595 without a fitting key.
STATUS VLTNoteDecrypt(NOTEHANDLE note, WORD flags, void* reserved);

// Item names are ASCII, compared without regard to case.  The first item of a name counts.
// value: the block holds the value, its type word first; valueBytes counts that word too.  The block
// is borrowed until the note is closed.  Any out may be null.  546 when the note has no such item.
STATUS VLTItemInfo(NOTEHANDLE note, const char* name, WORD nameLength, BLOCKID* item, WORD* type, BLOCKID* value,
                   DWORD* valueBytes);
// Borrowed pointer to a block's bytes (null for a null or stale block), to be given back.
void* OSLockBlock(BLOCKID block);
void OSUnlockBlock(BLOCKID block);
// Text of an item, terminated, at most maxText bytes (so text[maxText + 1]); of a list the first value.
// Numbers and times in their text form.  0 when it is absent, empty, or rich text or a formula.
WORD VLTItemGetText(NOTEHANDLE note, const char* name, char* text, WORD maxText);
// As VLTItemGetText with all values of a list, separated by `separator`.
WORD VLTItemConvertToText(NOTEHANDLE note, const char* name, char* text, WORD maxText, char separator);
// Entry `index` (from 0) of a text list (or of a text as its one entry) into text[maxText + 1].
// 0 past the last entry: VLTItemGetTextListEntries tells the number.
WORD VLTItemGetTextListEntry(NOTEHANDLE note, const char* name, WORD index, char* text, WORD maxText);
WORD VLTItemGetTextListEntries(NOTEHANDLE note, const char* name);
// Number (first of a list) truncated to long, or the default.
long VLTItemGetLong(NOTEHANDLE note, const char* name, long defaultValue);
// First time of a time item.
bool VLTItemGetTime(NOTEHANDLE note, const char* name, TIMEDATE* time);
// Every item of the note in stored order.  value points at the type word.  A non-zero answer ends
// the scan and is returned.
using ItemScanCallback = STATUS (*)(WORD spare, WORD itemFlags, const char* name, WORD nameLength, const void* value,
                                    DWORD valueBytes, void* context);
STATUS VLTItemScan(NOTEHANDLE note, ItemScanCallback callback, void* context);

// ---- Mail -----------------------------------------------------------------------------------

// Fields by number: 0 SendTo, 1 CopyTo, 2 From, 3 Subject, 5 PostedDate, 13 BlindCopyTo, 123 ReplyTo.
// Text of the field into text[maxText + 1], values joined with ", ".  An absent field: 546, length 0.
STATUS MailGetMessageItem(NOTEHANDLE note, WORD number, char* text, WORD maxText, WORD* length);
STATUS MailGetMessageItemTimeDate(NOTEHANDLE note, WORD number, TIMEDATE* time);
// Plain text of a rich-text (or text) item, null: "Body", into a file (SCS name; replaced).
// Lines end with lineEnd, are wrapped at lineLength bytes (65535: never), tabs become blanks when
// convertTabs.  size: bytes written.  546 when the item is absent.
STATUS MailGetMessageBodyText(NOTEHANDLE note, const char* item, const char* lineEnd, WORD lineLength, bool convertTabs,
                              const char* fileName, DWORD* size);

// ---- Rich text ------------------------------------------------------------------------------

constexpr DWORD kStyleDefault = 0xFFFFFFFF;

// Compound text for one item of a note.  Close writes it into the note and ends the handle; Discard
// ends it without; Discard of a handle that has ended, by a failed Close too, does nothing.
STATUS CompoundTextCreate(NOTEHANDLE note, const char* item, COMPOUNDHANDLE* compound);
void CompoundTextInitStyle(void* style64);  // 64 bytes
STATUS CompoundTextDefineStyle(COMPOUNDHANDLE compound, const char* name, const void* style64, DWORD* styleId);
// Adds text; a lineDelimiter[delimiterLength] in it starts a new paragraph.
STATUS CompoundTextAddTextExt(COMPOUNDHANDLE compound, DWORD styleId, DWORD fontId, const char* text, DWORD textLength,
                              const char* lineDelimiter, WORD delimiterLength, void* reserved);
STATUS CompoundTextAddParagraphExt(COMPOUNDHANDLE compound, DWORD styleId, DWORD fontId, const char* text,
                                   DWORD textLength, void* reserved);
// The whole note as the client displays it.
STATUS CompoundTextAddRenderedNote(COMPOUNDHANDLE compound, NOTEHANDLE note);
STATUS CompoundTextClose(COMPOUNDHANDLE compound);
void CompoundTextDiscard(COMPOUNDHANDLE compound);

// Walks the records of a rich-text value (its block, length with the type word).  record points at
// the record's signature word, recordBytes is its whole length.  A damaged record ends the walk with
// 518; a non-zero answer of the callback ends it and is returned.
using RecordCallback = STATUS (*)(const char* record, WORD signature, DWORD recordBytes, void* context);
STATUS EnumCompositeBuffer(BLOCKID value, DWORD valueBytes, RecordCallback callback, void* context);
// Canonical form to host structure.  631: the 24-byte fixed part of a link record; 33: the 44-byte
// link (see LINKRECORD, NOTELINK); 3: a WORD.  *source advances past what was read, never past `end`:
// 518 and nothing is written when too little is left.
STATUS ODSReadMemory(const char** source, const char* end, WORD structureType, void* structure, WORD iterations);
WORD ODSLength(WORD structureType);

struct LINKRECORD {    // structure type 631
    WORD signature;    // as a signed word: -10, -166, -143 or -136 carry links
    WORD recordBytes;  // the whole record, this part included
    DWORD flags;       // bit value 2 in the low byte: the link follows the variable parts
    WORD linkType;     // 2: a link to a note
    WORD firstCount;   // two variable parts of firstCount, then secondCount, words each ...
    WORD secondCount;  // ... stand before the link
    WORD spare[5];
};
static_assert(sizeof(LINKRECORD) == 24);

struct NOTELINK {  // structure type 33
    TIMEDATE replica;
    UNID view;
    UNID note;
    DWORD spare;
};
static_assert(sizeof(NOTELINK) == 44);
constexpr WORD kOdsLinkRecord = 631;
constexpr WORD kOdsNoteLink = 33;
constexpr WORD kOdsWord = 3;

// ---- Formulas -------------------------------------------------------------------------------

// Compiles the formula of a value (type word first).  The handle is the caller's: VLTComputeStop.
STATUS VLTComputeStart(const void* value, DWORD valueBytes, COMPUTEHANDLE* compute);
// Evaluates against a note.  *result is a value (type word first), borrowed until the next call on
// the handle or its stop.
STATUS VLTComputeEvaluate(COMPUTEHANDLE compute, NOTEHANDLE note, const void** result, DWORD* resultBytes);
STATUS VLTComputeStop(COMPUTEHANDLE compute);

// ---- Times ----------------------------------------------------------------------------------

void OSCurrentTIMEDATE(TIMEDATE* now);
// type 0: the minimum time, 1: the maximum, 2: the wildcard (no time, no date).
void TimeConstant(WORD type, TIMEDATE* time);
// -1, 0 or 1, by date and time of day.
int TimeDateCollate(const TIMEDATE* a, const TIMEDATE* b);
DWORD TimeExtractJulianDate(const TIMEDATE* time);  // 0xFFFFFFFF: no date
DWORD TimeExtractTicks(const TIMEDATE* time);       // hundredths since midnight; 0xFFFFFFFF: none
DWORD TimeExtractDate(const TIMEDATE* time);        // the date word as it stands
TIMEDATE TimeConstruct(DWORD date, DWORD ticks);
// Breaks time->GM down into the other fields, for time->zone and time->dst.  True on failure.
bool TimeGMToLocalZone(TIME* time);
// Text form of a time, reads back exactly.  The first two arguments (international settings,
// format) are 0.  The minimum time has an empty text.  591 when it does not fit or is no time.
STATUS ConvertTIMEDATEToText(const void* intl, const void* format, const TIMEDATE* time, char* text, WORD size,
                             WORD* length);
// *text advances past what was read.
STATUS ConvertTextToTIMEDATE(const void* intl, const void* format, char** text, WORD maxLength, TIMEDATE* time);
STATUS ConvertFLOATToText(const void* intl, const void* format, const double* number, char* text, WORD size,
                          WORD* length);

// ---- Text, names, paths and files -----------------------------------------------------------

// Converts `length` bytes into at most `size` bytes, not terminated; returns bytes written.
// Modes: 0 native (UTF-8) to SCS, 1 SCS to native, 20 SCS to UTF-16 (host byte order), 21 UTF-16 to
// SCS, 22 SCS to UTF-8.  Malformed input becomes U+FFFD.
constexpr WORD kTranslateNativeToScs = 0;
constexpr WORD kTranslateScsToNative = 1;
constexpr WORD kTranslateScsToUtf16 = 20;
constexpr WORD kTranslateUtf16ToScs = 21;
constexpr WORD kTranslateScsToUtf8 = 22;
WORD OSTranslate(WORD mode, const void* source, WORD length, void* target, WORD size);
// UTF-16, sourceBytes bytes of it, to SCS; returns bytes written, at most targetSize; not terminated.
DWORD OSUnicodeToSCS32(const uint16_t* source, DWORD sourceBytes, char* target, DWORD targetSize);
// Steps to the next character of SCS text.
const char* OSNextCharacter(const char* text);
// "CN=Ann Lee/O=Acme" becomes "Ann Lee/Acme"; an Internet address stays.  Into out[size], terminated.
STATUS DNAbbreviate(DWORD flags, void* reserved, const char* name, char* out, WORD size, WORD* length);
// The port and server parts of a path (each out 256 bytes, empty for a local path, or null).  reserved: 0.
// 591 for a malformed one.
STATUS OSPathNetParse(const char* path, char* reserved, char* port, char* server);
// Resolves "." and ".." and doubled separators, in place, path[256].
STATUS OSPathCanonicalize(char* path);
// Makes and opens an empty file in the temporary folder, mode 0600; its name (SCS) into name[size].
STATUS OSCreateTempFile(char* name, WORD size, DWORD* file);
STATUS OSCloseFile(DWORD file);
STATUS OSFileDelete(const char* name);

// The add-in's bundle, as the client found it when it loaded the add-in; borrowed, 0 when there is none.
struct __CFBundle* GetPavexBundle(void);  // NOLINT(bugprone-reserved-identifier): the system's own name

}  // extern "C"
