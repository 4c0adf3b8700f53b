// strings/string_ids.h: the numbers of the add-in's texts, each a key of LANG.lproj/libtorvik.strings.
// Texts of log entries name their arguments; the order here is the order in which LogEvent takes them.
#pragma once

// ---- Menu and dialog -------------------------------------------------------------------------

constexpr int kStringMenuEntry = 101;
constexpr int kStringStateOff = 106;          // status: indexing is switched off
constexpr int kStringStateNothing = 107;      // status: nothing is known, never indexed
constexpr int kStringStateIndexedUpTo = 108;  // status lead-in: a time follows
constexpr int kStringProgressOverall = 109;   // status: %d processed, %d total, %d percent
constexpr int kStringProgressDatabase = 110;  // status: %d processed, %d total, %d percent
constexpr int kStringEnableCaption = 115;
constexpr int kStringEnableNotice = 116;
constexpr int kStringReindexQuestion = 149;
constexpr int kStringReindexCaption = 150;
constexpr int kStringStateIndexingNow = 156;
constexpr int kStringStateNotSaved = 157;  // status: the database is not among the saved ones
constexpr int kStringInstructionsOff = 161;
constexpr int kStringInstructionsOn = 162;
constexpr int kStringActivityHistory = 185;   // activity: the history, in place of a path
constexpr int kStringStateInterrupted = 186;  // status: interrupted, how far is not known
constexpr int kStringLeadDatabase = 193;      // lead-in of the selected database's line
constexpr int kStringLeadActivity = 202;      // lead-in of the activity line
constexpr int kStringLeadOverall = 203;       // lead-in of the overall line
constexpr int kStringListFullCaption = 260;
constexpr int kStringListFull = 261;

// ---- Message boxes of the database check -----------------------------------------------------

constexpr int kStringNoDatabaseChosen = 112;
constexpr int kStringRemoteNotAllowed = 113;
constexpr int kStringCannotOpenDatabase = 114;
constexpr int kStringNoSuchDatabase = 184;

// ---- Categories, by their codes --------------------------------------------------------------

constexpr int kStringCategoryHoliday = 165;     // "H"
constexpr int kStringCategoryVacation = 166;    // "V"
constexpr int kStringCategoryProjects = 167;    // "P"
constexpr int kStringCategoryClients = 168;     // "C"
constexpr int kStringCategoryPhoneCalls = 169;  // "PC"
constexpr int kStringCategoryTravel = 170;      // "T"

// ---- Log entries -----------------------------------------------------------------------------

constexpr unsigned int kLogNoNote = 121;            // no arguments
constexpr unsigned int kLogSendFailed = 126;        // %d result
constexpr unsigned int kLogPropertyFailed = 127;    // %s key, %d result
constexpr unsigned int kLogThreadStarted = 128;     // no arguments
constexpr unsigned int kLogThreadEnded = 129;       // no arguments
constexpr unsigned int kLogThreadNotStarted = 130;  // no arguments
constexpr unsigned int kLogIndexingOff = 131;       // no arguments
constexpr unsigned int kLogIndexUnavailable = 132;  // no arguments
constexpr unsigned int kLogCannotOpen = 134;        // %s path
constexpr unsigned int kLogOpened = 135;            // %s path
constexpr unsigned int kLogLoop = 136;              // no arguments; the loop begins, and ends
constexpr unsigned int kLogNoModifiedTime = 138;    // %s path
constexpr unsigned int kLogStopRequested = 139;     // no arguments
constexpr unsigned int kLogProgressReset = 140;     // no arguments
constexpr unsigned int kLogListed = 141;            // %s path, %T since, %T until, %X resume note
constexpr unsigned int kLogNothingModified = 142;   // %s path
constexpr unsigned int kLogNotListed = 143;         // %s path
constexpr unsigned int kLogPassCounters = 144;      // %s path, %u indexed, skipped, errors, blank failures, deleted
constexpr unsigned int kLogPassStopped = 145;       // %s path
constexpr unsigned int kLogNoteNotOpened = 147;     // %X note id
constexpr unsigned int kLogBlankFailed = 159;       // %s path, %u indexed, %d result
constexpr unsigned int kLogPassIndexed = 160;       // %s path, %u indexed
constexpr unsigned int kLogNoteUrl = 187;           // %s URL
constexpr unsigned int kLogPoll = 188;              // no arguments
constexpr unsigned int kLogNoCachesFolder = 301;    // no arguments; once a process: no metafile is written
