// bench/kinds.cpp: what a contact, a calendar entry and a task cost beside a message, in own processor time.
// kinds [NOTES of each]; judged from 1000 notes up.
#include <cstdio>
#include <iterator>

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "bench/bench_home.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace {

using namespace pavex;

constexpr int kRounds = 5;
constexpr double kLimit = 1.5;
constexpr int64_t kStart = 1'173'103'200;  // 2007-03-05 14:00 GMT
constexpr int64_t kWeek = 604'800;

Item Body(const std::string& about)
{
    RichTextBuilder body;
    for (int line = 0; line < 5; ++line)
        body.AddParagraph("Line " + std::to_string(line) + " of what there is to say about " + about + ".");
    return RichTextItem("Body", body.Records());
}

// All that a full address book says of a person.
Note Contact(int number)
{
    const std::string n = std::to_string(number);
    Note note;
    note.items = {TextItem("Form", "Person"), TextItem("FullName", "CN=Ann Lee " + n + "/O=Acme"), Body("Ann")};
    const char* const texts[] = {"OfficeStreetAddress",
                                 "OfficeCity",
                                 "OfficeState",
                                 "OfficeZip",
                                 "OfficeCountry",
                                 "StreetAddress",
                                 "City",
                                 "State",
                                 "Zip",
                                 "Country",
                                 "Assistant",
                                 "WebSite",
                                 "Children",
                                 "Department",
                                 "CompanyName",
                                 "Spouse",
                                 "Manager",
                                 "JobTitle",
                                 "OfficePhoneNumber",
                                 "PersPager",
                                 "PhoneNumber",
                                 "HomeFAXPhoneNumber",
                                 "CellPhoneNumber",
                                 "InternetAddress"};
    for (const char* item : texts)
        note.items.push_back(TextItem(item, std::string(item) + " " + n));
    note.items.push_back(TextItem("MailAddress", "ann" + n + "@example.org"));
    note.items.push_back(TextItem("MiscPhone1", "second" + n + "@example.org"));
    note.items.push_back(TextItem("MiscLabel1", "email"));
    note.items.push_back(TextListItem("Categories", {"Friends", "Work"}));
    note.items.push_back(TimeItem("Birthday", TimeFromUnix(kStart - 900'000'000)));
    return note;
}

// A meeting of a quarter, every week.
Note Meeting(int number)
{
    std::vector<TIMEDATE> times(13);
    for (size_t week = 0; week < times.size(); ++week)
        times[week] = TimeFromUnix(kStart + number + static_cast<int64_t>(week) * kWeek);
    Note note;
    note.items = {TextItem("Form", "Appointment"),
                  TextItem("Subject", "Review " + std::to_string(number)),
                  TimeListItem("CalendarDateTime", times),
                  TimeItem("StartDateTime", times.front()),
                  TimeItem("EndDateTime", TimeFromUnix(kStart + number + 3600)),
                  TextItem("Chair", "Ann Lee <ann@example.org>"),
                  TextListItem("RequiredAttendees", {"Bo Chen <bo@example.org>", "Cy Diaz <cy@example.org>"}),
                  TextListItem("OptionalAttendees", {"CN=Di Evans/O=Acme"}),
                  TextItem("Location", "Room 7"),
                  TextListItem("Categories", {"Work"}),
                  Body("the review")};
    return note;
}

Note Task(int number)
{
    Note note;
    note.items = {TextItem("Form", "Task"),
                  TextItem("Subject", "Task " + std::to_string(number)),
                  TimeItem("CalendarDateTime", TimeFromUnix(kStart + number)),
                  TimeItem("StartDateTime", TimeFromUnix(kStart + number)),
                  TimeItem("DueDateTime", TimeFromUnix(kStart + number + kWeek)),
                  NumberItem("TaskType", 1),
                  NumberItem("DueState", 1),
                  NumberItem("Importance", 2),
                  TextItem("Chair", "Ann Lee <ann@example.org>"),
                  TextListItem("Categories", {"House"}),
                  Body("the task")};
    return note;
}

struct Kind {
    const char* name;
    const char* file;
    Note (*make)(int number);  // null: the messages of every other measurement
    std::vector<double> cpu;   // ms a note, of each round
};

}  // namespace

int main(int argc, char** argv)
{
    const int count = CountArgument(argc, argv, 3000);
    BenchHome home;
    Kind kinds[] = {{"mail", "mail.vlt", nullptr, {}},
                    {"contact", "names.vlt", Contact, {}},
                    {"calendar entry", "calendar.vlt", Meeting, {}},
                    {"task", "tasks.vlt", Task, {}}};
    for (const Kind& kind : kinds) {
        const auto slot = &kind - kinds;
        const std::string path = home.PathOf(kind.file);
        home.Set("GDSFilePath" + (slot == 0 ? std::string() : std::to_string(slot)), path);
        if (kind.make == nullptr)
            MakeMailbox(path, count);
        else
            MakeDatabase(path, count, kind.make);
    }
    home.Set("GoogleWaitTime", "0");
    for (int round = 0; round < kRounds; ++round) {
        StopAndReset();
        bStopAndReset = 0;
        for (Kind& kind : kinds) {
            const auto slot = static_cast<int>(&kind - kinds);
            const uint32_t before = GlobalContext.indexed;
            kind.cpu.push_back(MeasureOnce([slot] { IndexFile(slot, false); }).ownCpuMs / count);
            const uint32_t indexed = GlobalContext.indexed - before;
            if (indexed != static_cast<uint32_t>(count)) {
                std::printf("%u metafiles of kind %s in place of %d\n", indexed, kind.name, count);
                return 1;
            }
        }
    }
    bool holds = true;
    for (const Kind& kind : kinds) {
        const double cost = Median(kind.cpu);
        std::printf("%s: %.3f ms a note\n", kind.name, cost);
        if (kind.make != nullptr)
            holds = Report(std::string(kind.name) + ": own cpu, times a message's", cost / Median(kinds[0].cpu), kLimit,
                           count >= 1000) &&
                    holds;
    }
    return holds ? 0 : 1;
}
