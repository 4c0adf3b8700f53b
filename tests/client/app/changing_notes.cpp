// tests/client/app/changing_notes.cpp: see the header.
#include "tests/client/app/changing_notes.h"

namespace pavex {

namespace fs = std::filesystem;

namespace {

std::string Unid(int number)
{
    std::string digits = std::to_string(number);
    return "0011223344556677" + std::string(16 - digits.size(), '0') + digits;
}

// A note in its n-th version: now and then as another kind, its text of another length.
std::string NoteJson(int number, unsigned version)
{
    constexpr const char* kForms[] = {"Memo", "Memo", "Task", "Memo", "Person"};
    return R"({"items":{"Form":")" + std::string(kForms[version % 5]) + R"(","Subject":"Note )" +
           std::to_string(number) + " version " + std::to_string(version) +
           R"(","From":"ann@example.org","SendTo":["bo@example.org"],"PostedDate":{"time":"2007-03-05T14:00:00Z"},)"
           R"("CalendarDateTime":{"times":["2007-03-05T14:00:00Z"]},)"
           R"("Body":{"richtext":[")" +
           std::string(version % 7 * 300, 'x') +
           R"("]}},"created":"2007-03-01T08:00:00Z","modified":"2007-03-02T09:30:00Z","unid":")" + Unid(number) +
           "\"}\n";
}

}  // namespace

void PutFirstVersions(ProgramHome& home, int count)
{
    std::string notes;
    for (int i = 0; i < count; ++i)
        notes += NoteJson(i, 0);
    (void)home.Put("mail.vlt", notes);
}

Changer::Changer(ProgramHome& home, int notes, unsigned seed)
    : home_(home), notes_(notes), random_(seed), thread_([this] { Run(); })
{
}

Changer::~Changer()
{
    ended_ = true;
    thread_.join();
}

void Changer::Run()
{
    for (unsigned round = 1; !ended_; ++round) {
        std::string notes;
        for (int i = 0; i < 3; ++i)
            notes += NoteJson(Draw(notes_), round);
        (void)home_.Put("mail.vlt", notes);
        if (Draw(4) == 0)  // a note that is gone already cannot be deleted
            (void)home_.Run({"note", "delete", "--db", "mail.vlt", Unid(Draw(notes_))});
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
    }
}

void ExpectAWholePassPutsItRight(ProgramHome& home)
{
    (void)home.Index();
    const Metafiles metafiles = home.ReadMetafiles();
    EXPECT_EQ(home.OtherFiles(), std::vector<std::string>());

    ProgramHome fresh;
    fs::create_directories(fresh.Path("home"));
    fs::copy(home.Path("home/data"), fresh.Path("home/data"), fs::copy_options::recursive);
    fresh.Enable();
    (void)fresh.Index();
    EXPECT_EQ(metafiles, fresh.ReadMetafiles());
    EXPECT_FALSE(metafiles.empty());
    EXPECT_EQ(home.Index()["status"], 572);
}

}  // namespace pavex
