// client/store/log.cpp: the client's log, a text file with one line an entry.
// Several processes append to it: a line is one write at the file's end.  An entry that cannot be written
// is dropped, since there is nowhere to say so.
#include <fcntl.h>

#include <cstdarg>
#include <ctime>
#include <memory>
#include <mutex>
#include <string>

#include "client/store/charset.h"
#include "client/store/clock.h"
#include "client/store/descriptor.h"
#include "client/store/host.h"
#include "client/store/log_format.h"
#include "platform/foundation.h"
#include "platform/store.h"

namespace pavex {

namespace {

using Observer = std::function<bool(const LogEntry&)>;
using Argument = std::variant<std::string, int64_t>;

constexpr const char* kTable = "libtorvik";

std::mutex observerMutex;                  // guards the observer
std::shared_ptr<const Observer> observer;  // null: none; written in this file only

struct CFRelease_ {
    void operator()(const void* object) const { CFRelease(object); }
};
using StringOwner = std::unique_ptr<const __CFString, CFRelease_>;

StringOwner MakeString(const std::string& utf8)
{
    return StringOwner(CFStringCreateWithCString(kCFAllocatorDefault, utf8.c_str(), kCFStringEncodingUTF8));
}

std::string Utf8Of(CFStringRef text)
{
    const CFIndex most = CFStringGetLength(text) * 3 + 1;  // bytes; no UTF-16 unit takes more than three
    std::string utf8(static_cast<size_t>(most), '\0');
    if (!CFStringGetCString(text, utf8.data(), most, kCFStringEncodingUTF8))
        return {};
    return utf8.substr(0, utf8.find('\0'));
}

// The add-in's text of an entry by the user's language; a substitute, without arguments, when there is none.
std::string TextOfEvent(DWORD id)
{
    const std::string key = std::to_string(id);
    std::string substitute = "event " + key;
    const CFBundleRef bundle = GetPavexBundle();
    if (bundle == nullptr)
        return substitute;
    const StringOwner name = MakeString(key);
    const StringOwner value = MakeString(substitute);
    const StringOwner table = MakeString(kTable);
    const StringOwner text(CFBundleCopyLocalizedString(bundle, name.get(), value.get(), table.get()));
    return text == nullptr ? substitute : Utf8Of(text.get());
}

std::string TextOfTime(const TIMEDATE* time)
{
    char text[80];
    WORD length = 0;
    if (time == nullptr || ConvertTIMEDATEToText(nullptr, nullptr, time, text, sizeof text, &length) != kStatusOk)
        return {};
    return {text, length};
}

std::string Printed(const Argument& argument, char kind)
{
    if (const auto* const text = std::get_if<std::string>(&argument))
        return *text;
    const int64_t number = std::get<int64_t>(argument);
    if (kind != 'X')
        return std::to_string(number);
    char digits[32];
    std::snprintf(digits, sizeof digits, "%llX", static_cast<unsigned long long>(number));
    return digits;
}

struct VariableArguments {
    va_list list;
};

// The next argument, which is of this kind.
Argument TakeArgument(char kind, VariableArguments* arguments)
{
    switch (kind) {
    case 's': {
        const char* const scs = va_arg(arguments->list, const char*);
        return Utf8FromScs(scs == nullptr ? "" : scs);
    }
    case 'T':
        return TextOfTime(va_arg(arguments->list, const TIMEDATE*));
    case 'd': {
        const int number = va_arg(arguments->list, int);
        return int64_t{number};
    }
    default:  // 'u' and 'X'
        return int64_t{va_arg(arguments->list, unsigned int)};
    }
}

// The caller's own time zone: the log is for people.
std::string LineStart()
{
    const auto seconds = static_cast<time_t>(CurrentClock().NowHundredths() / 100);
    tm local{};
    localtime_r(&seconds, &local);
    char text[40];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S ", &local)};
}

void AppendLine(const LogEntry& entry)
{
    std::string line = LineStart() + std::to_string(entry.id) + " " + OneLine(entry.text);
    if (entry.status != 0)
        line += " (status " + std::to_string(entry.status) + ")";
    line += "\n";
    const Descriptor file(open(CurrentPlaces().log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
    if (file.IsOpen())
        (void)WriteAll(file.Get(), line);
}

void Deliver(const LogEntry& entry)
{
    std::shared_ptr<const Observer> current;
    {
        const std::lock_guard lock(observerMutex);
        current = observer;
    }
    // Called without the lock: an observer may log, too.
    if (current == nullptr || (*current)(entry))
        AppendLine(entry);
}

}  // namespace

void SetLogObserver(std::function<bool(const LogEntry&)> newObserver)
{
    const std::lock_guard lock(observerMutex);
    observer = newObserver ? std::make_shared<const Observer>(std::move(newObserver)) : nullptr;
}

void Log(const std::string& utf8)
{
    Deliver({0, 0, utf8, {}});
}

}  // namespace pavex

using namespace pavex;

void LogEvent(DWORD id, DWORD, DWORD status, ...)
{
    LogEntry entry{id, static_cast<STATUS>(status), TextOfEvent(id), {}};
    if (const auto format = LogFormat::Parse(entry.text)) {
        std::vector<std::string> printed;
        VariableArguments arguments;
        va_start(arguments.list, status);
        for (const char kind : format->Kinds()) {
            Argument argument = TakeArgument(kind, &arguments);
            printed.push_back(Printed(argument, kind));
            entry.arguments.push_back(std::move(argument));
        }
        va_end(arguments.list);
        entry.text = format->Fill(printed);
    }
    Deliver(entry);
}
