// settings/settings.h: the add-in's variables in the client's ini file.
// Read once, on the first question, and kept; only "GDSIndexEnabled" is read each time.  Any thread may
// ask; the setters are the dialog's.  Every value is a lock-free atomic of its stated width, relaxed
// order: a question that is asked while another thread loads is answered with the defaults.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

// Loads the variables and the databases' progress, unless that has been done or begun.
void getIniVariables();
// Takes the switches from the ini file once more: another process has changed it.
void RereadSwitches();

// ---- Administrator ---------------------------------------------------------------------------

bool HasAdminLockFiles();  // the list of databases is fixed
bool HasAdminLockUI();     // no menu entry
bool HasAdminOverride();

// ---- What is indexed -------------------------------------------------------------------------

bool IsEnabled();  // the user's switch, unless the policy locks the add-in off
// Writes the switch when it differs.  Where the policy locks it, switching on is written all the same
// (and has no effect yet), switching off is not.
void SetEnabled(bool on);

// A setter writes the ini file only when the value differs from the one known.
bool IsIndexingEncrypted();
void SetIndexingEncrypted(bool on);
bool IsIndexingDrafts();
void SetIndexingDrafts(bool on);
bool IsIndexingChats();
void SetIndexingChats(bool on);
bool IsIndexingDiscussion();
void SetIndexingDiscussion(bool on);
bool IsIndexingHistory();
void SetIndexingHistory(bool on);
bool HasInstallInstructions();
void SetInstallInstructions(bool on);
bool CanIndexRemote();
bool IsDeletingNotes();
bool IsIndexingAllNotes();
bool ComputeOK();
bool ShouldSkipLegal();
bool IsBuildForInhouse();  // does not load the variables

// Names of items to search for a note's contents, into out[kDataFieldsBytes].  False, and an empty
// text, when there are none.  Does not load the variables.
constexpr size_t kDataFieldsBytes = 256;
bool GetDataFieldsSearch(char* out);

// Bits of the note kinds that the index accepts; not stored.
constexpr uint32_t kNoteKindMail = 1;
constexpr uint32_t kNoteKindDiscussion = 2;
constexpr uint32_t kNoteKindContact = 4;
constexpr uint32_t kNoteKindCalendar = 16;
constexpr uint32_t kNoteKindTask = 32;
constexpr uint32_t kNoteKindGeneric = 64;  // and history
constexpr uint32_t kNoteKindJournal = 256;
constexpr uint32_t kNoteKindRemoval = 2048;
constexpr uint32_t kNoteKindsDefault = 0x0F77;

// True when any of the bits is set, and always when mail is among them.
bool DoesGoogleSupport(uint32_t mask);
// With mail among the bits: off clears them, on does nothing.
void SetGoogleSupport(uint32_t mask, bool on);
// Read as a signed 16-bit number it is negative: the index is there.
uint16_t GetGoogleStatus();

// ---- When ------------------------------------------------------------------------------------

uint32_t GetIndexingFreq();              // minutes, 1..99
void SetIndexingFreq(uint32_t minutes);  // 0 becomes 5, more than 99 becomes 99
uint32_t GetIndexingWaitTime();          // milliseconds after each note
bool IsIdleIndexing();
void SetIdleIndexing(bool on);
void IdleIncrement();      // one idle tick more
bool ShouldIndexOnIdle();  // true unless on-idle indexing is on; then every ninth tick, which is used up
bool ShouldStop();         // the thread is to end, or the client is ending

// ---- The rest --------------------------------------------------------------------------------

bool IsDebug();
bool IsDebugLots();
uint32_t GetQueryCookie();
void SetQueryCookie(uint32_t cookie);  // 0 empties the variable
uint32_t JustRegistered();             // not stored; does not load the variables
void SetJustRegistered(uint32_t on);
int GetHistoryIndex();  // 15, the slot of the history database

// ---- The values themselves -------------------------------------------------------------------
// Written by settings/settings.cpp alone; one byte or one 32-bit word each.

extern std::atomic<uint8_t> bIniInit;  // the load has begun
extern std::atomic<uint8_t> bAdminLock;
extern std::atomic<uint8_t> bAdminNoUI;
extern std::atomic<uint8_t> bAdminOverride;
extern std::atomic<uint8_t> bIniDebug;
extern std::atomic<uint8_t> bIniDebugLots;
extern std::atomic<uint8_t> bIniIndexEncrypted;
extern std::atomic<uint8_t> bIniInstallInstruct;
extern std::atomic<uint8_t> bIniIndexRemote;
extern std::atomic<uint8_t> bIniIndexDrafts;
extern std::atomic<uint8_t> bIniIndexChats;
extern std::atomic<uint8_t> bIniDelete;
extern std::atomic<uint8_t> bIniOnIdle;
extern std::atomic<uint8_t> bIniIndexDiscussion;
extern std::atomic<uint8_t> bIniIndexHistory;
extern std::atomic<uint8_t> bIniIndexAllNotes;
extern std::atomic<uint8_t> bIniSkipLegal;
extern std::atomic<uint8_t> bIniInhouse;
extern std::atomic<uint8_t> bIniComputeOk;
extern std::atomic<uint32_t> dwIniFreq;      // minutes
extern std::atomic<uint32_t> dwIniWaitTime;  // milliseconds
extern std::atomic<uint32_t> dwQueryCookie;
extern std::atomic<uint32_t> bJustRegistered;
extern std::atomic<uint32_t> dwGoogleSupport;  // kNoteKind... bits
extern std::atomic<uint32_t> dwIdleCount;      // ticks
extern char szDataFields[kDataFieldsBytes];    // SCS, terminated; behind a lock of settings.cpp
