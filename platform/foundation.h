// platform/foundation.h: the part of CoreFoundation, CoreServices and IOKit that the add-in uses.
// On macOS these are the system's own frameworks; elsewhere the client's foundation library offers the
// same names.  Rules for all of it: a function with Create or Copy in its name hands a reference to the
// caller, who releases it with CFRelease; one with Get lends it.  Immutable objects may be used by any
// number of threads at once; a mutable one by one thread at a time.  Where a null object is not spoken
// of, passing one ends the process.  The allocator argument is always kCFAllocatorDefault or null.
#pragma once

#ifdef __APPLE__

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>
#include <IOKit/ps/IOPSKeys.h>
#include <IOKit/ps/IOPowerSources.h>

#else

extern "C" {

// ---- Types ----------------------------------------------------------------------------------

using Boolean = unsigned char;
using UInt8 = unsigned char;
using SInt8 = signed char;
using SInt16 = short;
using UInt16 = unsigned short;
using SInt32 = int;
using UInt32 = unsigned int;
using OSStatus = SInt32;
using OSErr = SInt16;
using OSType = UInt32;
using UniChar = UInt16;  // one UTF-16 unit
using CFIndex = signed long;
using CFTypeID = unsigned long;
using CFOptionFlags = unsigned long;
using CFHashCode = unsigned long;
using CFStringEncoding = UInt32;
using CFTimeInterval = double;  // seconds
using CFAbsoluteTime = double;  // seconds since 2001-01-01 00:00:00 GMT

// The tags are those of the frameworks, so that a forward declaration means the same type everywhere.
// NOLINTBEGIN(bugprone-reserved-identifier)
using CFTypeRef = const void*;
using CFPropertyListRef = CFTypeRef;
using CFAllocatorRef = const struct __CFAllocator*;
using CFStringRef = const struct __CFString*;
using CFMutableStringRef = struct __CFString*;
using CFDictionaryRef = const struct __CFDictionary*;
using CFMutableDictionaryRef = struct __CFDictionary*;
using CFArrayRef = const struct __CFArray*;
using CFDataRef = const struct __CFData*;
using CFNumberRef = const struct __CFNumber*;
using CFBooleanRef = const struct __CFBoolean*;
using CFDateRef = const struct __CFDate*;
using CFTimeZoneRef = const struct __CFTimeZone*;
using CFURLRef = const struct __CFURL*;
using CFBundleRef = struct __CFBundle*;
// NOLINTEND(bugprone-reserved-identifier)

struct CFRange {
    CFIndex location;
    CFIndex length;
};
inline CFRange CFRangeMake(CFIndex location, CFIndex length)
{
    return {location, length};
}

enum CFComparisonResult : CFIndex { kCFCompareLessThan = -1, kCFCompareEqualTo = 0, kCFCompareGreaterThan = 1 };
constexpr CFIndex kCFNotFound = -1;
extern const CFAllocatorRef kCFAllocatorDefault;  // null

// ---- Every object ---------------------------------------------------------------------------

// Takes a further reference; returns its argument.
CFTypeRef CFRetain(CFTypeRef cf);
// Gives one reference back.  Constants (CFSTR, kCFBooleanTrue...) may be released any number of times.
void CFRelease(CFTypeRef cf);
// Same kind and same value; texts unit by unit, numbers by value.
Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2);
// Equal objects have equal codes.
CFHashCode CFHash(CFTypeRef cf);

// ---- Strings: UTF-16 inside, any units, also U+0000 and lone surrogates ----------------------

constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;
constexpr CFStringEncoding kCFStringEncodingInvalidId = 0xFFFFFFFF;

using CFStringCompareFlags = CFOptionFlags;
constexpr CFStringCompareFlags kCFCompareCaseInsensitive = 1;

// A constant string of a literal (UTF-8); one object a text, never freed.
CFStringRef PavexConstantString(const char* utf8);
#define CFSTR(literal)                                                                                                 \
    ([]() -> CFStringRef {                                                                                             \
        static const CFStringRef constantString = PavexConstantString("" literal "");                                  \
        return constantString;                                                                                         \
    }())

// Copies numChars units, whatever they are.  (null, 0) gives the empty string.
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef alloc, const UniChar* chars, CFIndex numChars);
// From NUL-terminated bytes, UTF-8.  Null when they are malformed (cut short, overlong, surrogates,
// above U+10FFFF) or the encoding is another.  One leading byte order mark is dropped.
CFStringRef CFStringCreateWithCString(CFAllocatorRef alloc, const char* cStr, CFStringEncoding encoding);
// An independent copy that can be changed.  maxLength: 0, no limit.
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef alloc, CFIndex maxLength, CFStringRef theString);
// Replaces every match that lies wholly in the range; returns how many.  Matches are found first, do not
// overlap, and what replaces them is not searched.  Units are compared as they are: compareOptions 0.
CFIndex CFStringFindAndReplace(CFMutableStringRef theString, CFStringRef stringToFind, CFStringRef replacementString,
                               CFRange rangeToSearch, CFStringCompareFlags compareOptions);
// Length in UTF-16 units.
CFIndex CFStringGetLength(CFStringRef theString);
// Copies range.length units to the buffer, no terminator.  The range lies in the string.
void CFStringGetCharacters(CFStringRef theString, CFRange range, UniChar* buffer);
// Converts to UTF-8 without terminator or byte order mark and returns how many units were converted;
// *usedBufLen (may be null) gets the bytes.  Stops before a lone surrogate, whatever the lossByte, and
// before a character that does not fit in maxBufLen bytes.  A null buffer only counts.  Another encoding:
// 0 units, 0 bytes.
CFIndex CFStringGetBytes(CFStringRef theString, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                         Boolean isExternalRepresentation, UInt8* buffer, CFIndex maxBufLen, CFIndex* usedBufLen);
// Options 0: order of UTF-16 units.  kCFCompareCaseInsensitive: order of the code points after full
// Unicode case folding, independent of any locale.
CFComparisonResult CFStringCompare(CFStringRef theString1, CFStringRef theString2, CFStringCompareFlags compareOptions);
// The encoding of the system's narrow texts: UTF-8 here.
CFStringEncoding CFStringGetSystemEncoding(void);
// True when all of it, NUL included, is in the buffer as UTF-8; else false and buffer[0] is 0.  bufferSize
// in bytes; 0: false, the buffer is left alone.
Boolean CFStringGetCString(CFStringRef theString, char* buffer, CFIndex bufferSize, CFStringEncoding encoding);

// ---- Collections ----------------------------------------------------------------------------

struct CFDictionaryKeyCallBacks {
    CFIndex version;  // 0
    const void* (*retain)(CFAllocatorRef allocator, const void* value);
    void (*release)(CFAllocatorRef allocator, const void* value);
    CFStringRef (*copyDescription)(const void* value);
    Boolean (*equal)(const void* value1, const void* value2);
    CFHashCode (*hash)(const void* value);
};
struct CFDictionaryValueCallBacks {
    CFIndex version;  // 0
    const void* (*retain)(CFAllocatorRef allocator, const void* value);
    void (*release)(CFAllocatorRef allocator, const void* value);
    CFStringRef (*copyDescription)(const void* value);
    Boolean (*equal)(const void* value1, const void* value2);
};
// For keys and values that are objects: retained, compared with CFEqual.  Keys are not copied.
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

// capacity: a hint.  Null callbacks: bare pointers, compared by identity, not retained.
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks);
// A dictionary of its own with the same (retained) keys and values and the same callbacks.
CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFDictionaryRef theDict);
// Adds an entry; when the key is there already nothing happens: the first value stays.
void CFDictionaryAddValue(CFMutableDictionaryRef theDict, const void* key, const void* value);
// Borrowed; null when the key is absent.
const void* CFDictionaryGetValue(CFDictionaryRef theDict, const void* key);
CFIndex CFDictionaryGetCount(CFDictionaryRef theDict);

CFIndex CFArrayGetCount(CFArrayRef theArray);
// Borrowed.  0 <= idx < count, or the process ends.
const void* CFArrayGetValueAtIndex(CFArrayRef theArray, CFIndex idx);

// Length in bytes.
CFIndex CFDataGetLength(CFDataRef theData);
// Borrowed, valid while the data lives; not terminated.  Null for empty data.
const UInt8* CFDataGetBytePtr(CFDataRef theData);

// ---- Numbers and booleans -------------------------------------------------------------------

enum CFNumberType : CFIndex {
    kCFNumberSInt8Type = 1,
    kCFNumberSInt16Type = 2,
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloat32Type = 5,
    kCFNumberFloat64Type = 6,
    kCFNumberCharType = 7,
    kCFNumberShortType = 8,
    kCFNumberIntType = 9,
    kCFNumberLongType = 10,
    kCFNumberLongLongType = 11,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,
    kCFNumberCFIndexType = 14,
    kCFNumberNSIntegerType = 15,
    kCFNumberCGFloatType = 16
};
// Copies the value that valuePtr points to, of the C type that theType names.
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType theType, const void* valuePtr);
// Writes the value as the C type that theType names; false when that lost something (a truncated value
// is written all the same).
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void* valuePtr);

extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
// True only for kCFBooleanTrue; null is false.
Boolean CFBooleanGetValue(CFBooleanRef boolean);

// ---- Dates ----------------------------------------------------------------------------------

struct CFGregorianDate {
    SInt32 year;
    SInt8 month;  // from 1
    SInt8 day;    // from 1
    SInt8 hour;
    SInt8 minute;
    double second;
};
enum CFGregorianUnitFlags : CFOptionFlags {
    kCFGregorianUnitsYears = 1,
    kCFGregorianUnitsMonths = 2,
    kCFGregorianUnitsDays = 4,
    kCFGregorianUnitsHours = 8,
    kCFGregorianUnitsMinutes = 16,
    kCFGregorianUnitsSeconds = 32,
    kCFGregorianAllUnits = 0x00FFFFFF
};
extern const CFTimeInterval kCFAbsoluteTimeIntervalSince1970;  // add it to get Unix time

// Keeps any double, bit by bit.
CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime at);
CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef theDate);

// The calendar is the proleptic Gregorian one with astronomical years, without leap seconds; the time
// zone is null: GMT.
// Checks the flagged units only: year above 0, month 1..12, day 1..31 (the month's true length when year,
// month and day are all flagged), hour 0..23, minute 0..59, second from 0 to below 60.
Boolean CFGregorianDateIsValid(CFGregorianDate gdate, CFOptionFlags unitFlags);
// Checks nothing: day, hour, minute and second add up, also when negative or too large.  Month 13 is
// January of the next year; any other month outside 1..12 counts as January of the same year.
CFAbsoluteTime CFGregorianDateGetAbsoluteTime(CFGregorianDate gdate, CFTimeZoneRef tz);
// second keeps the fraction.  Years beyond 32 bits are clamped.
CFGregorianDate CFAbsoluteTimeGetGregorianDate(CFAbsoluteTime at, CFTimeZoneRef tz);

// ---- Property lists -------------------------------------------------------------------------

// The XML form: UTF-8, tab-indented, keys sorted by UTF-16 units, dates in GMT to whole seconds (the
// fraction is cut).  A character that XML cannot hold, a lone surrogate too, is written as U+FFFD.
// Null for null, a value that is no property list type, a key that is no string, a container in itself.
CFDataRef CFPropertyListCreateXMLData(CFAllocatorRef allocator, CFPropertyListRef propertyList);

// ---- URLs of files --------------------------------------------------------------------------

// From a path: bufLen bytes, kept verbatim; a relative one belongs to the working directory of this
// moment.  Null for no bytes or a NUL among them.
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* buffer, CFIndex bufLen,
                                                 Boolean isDirectory);
// Appends literal text after one '/'; an inner '/' makes more components.  Null when the text holds
// U+0000 or a lone surrogate.
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url, CFStringRef pathComponent,
                                               Boolean isDirectory);
// Adds ".extension", never replaces one.  An empty extension gives the same URL, retained.  Null when the
// extension ends in a dot, holds '/', or has a space or a direction mark after its last dot.
CFURLRef CFURLCreateCopyAppendingPathExtension(CFAllocatorRef allocator, CFURLRef url, CFStringRef extension);
// The folder of it, as a directory URL.  The root gives "/..", that "/../..": no end by itself.
CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url);
// The path, NUL-terminated, no final '/' except the root's, into buffer[maxBufLen] bytes.  False, and
// buffer[0] is 0, when it does not fit; false for a null url.  resolveAgainstBase: a relative URL becomes
// absolute, its ".." resolved.
Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer, CFIndex maxBufLen);

enum CFURLError : CFIndex { kCFURLUnknownError = -10 };
// Writes the data to the file in place: created with mode 0666 less umask, or cut to nothing and written
// anew, its mode kept.  A directory URL: creates the directory, whatever the data.  Null data: writes
// nothing, true.  propertiesToWrite: null.  *errorCode (may be null): 0, or kCFURLUnknownError with false.
Boolean CFURLWriteDataAndPropertiesToResource(CFURLRef url, CFDataRef dataToWrite, CFDictionaryRef propertiesToWrite,
                                              SInt32* errorCode);

// ---- Localized texts ------------------------------------------------------------------------

// The text of a key in LANG.lproj/tableName.strings of the bundle, by the user's languages and at last
// English; the value when there is none; the key when the value is null or empty.  tableName null or
// empty: "Localizable".  A null key: the value, or the empty string.
CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value, CFStringRef tableName);

// ---- Folders (CoreServices) -----------------------------------------------------------------

using FSVolumeRefNum = SInt16;
// Names an existing item of the file system.
struct FSRef {
    UInt8 hidden[80];
};
constexpr OSErr noErr = 0;
constexpr OSErr fnfErr = -43;  // no such item
constexpr OSErr pathTooLongErr = -2110;
constexpr FSVolumeRefNum kUserDomain = -32763;
constexpr OSType kCachedDataFolderType = 0x63616368;  // 'cach'
constexpr Boolean kDontCreateFolder = 0;
constexpr Boolean kCreateFolder = 1;

// True when the item exists; symbolic links are followed.
Boolean CFURLGetFSRef(CFURLRef url, struct FSRef* fsRef);
// The user's caches folder (kUserDomain, kCachedDataFolderType); 0, or fnfErr when there is none.
OSErr FSFindFolder(FSVolumeRefNum vRefNum, OSType folderType, Boolean createFolder, FSRef* foundRef);
// The absolute path, UTF-8, NUL-terminated, into path[pathBufferSize] bytes; 0, fnfErr or pathTooLongErr.
OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 pathBufferSize);

// ---- Power sources (IOKit) ------------------------------------------------------------------

#define kIOPSIsPresentKey "Is Present"                 // CFBoolean; false for an empty battery bay
#define kIOPSPowerSourceStateKey "Power Source State"  // CFString, one of the three below
#define kIOPSACPowerValue "AC Power"
#define kIOPSBatteryPowerValue "Battery Power"
#define kIOPSOffLineValue "Off Line"

// A snapshot of the power sources; null when they cannot be read.
CFTypeRef IOPSCopyPowerSourcesInfo(void);
// The handles of the snapshot's sources; none without a battery.  Null for what is no snapshot.
CFArrayRef IOPSCopyPowerSourcesList(CFTypeRef blob);
// The properties of one source, borrowed from the snapshot; null when the handle is not of it.
CFDictionaryRef IOPSGetPowerSourceDescription(CFTypeRef blob, CFTypeRef ps);

}  // extern "C"

#endif
