// client/app/note_command.cpp: pavex note: put, get, list and delete single notes.
#include <fstream>
#include <iostream>
#include <memory>

#include "client/app/command.h"
#include "client/app/json_input.h"
#include "client/app/json_output.h"
#include "client/app/note_json.h"
#include "client/app/note_target.h"
#include "client/app/note_text.h"
#include "client/app/terminal_text.h"
#include "client/store/database.h"
#include "client/store/note_link.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

constexpr uint64_t kNotesPerTransaction = 5000;

struct NoteOptions {
    std::string database;
    std::string input = "-";
    std::vector<std::string> ids;
    bool json = false;
};

int FailWith(STATUS status, const std::string& path)
{
    return Fail(path + ": " + DescribeStatus(status));
}

// ---- put -------------------------------------------------------------------------------------

// What is wrong with one note, rather than with the database: the others can still be written.
bool IsRefusalOfOneNote(STATUS status)
{
    for (const STATUS refusal : {kStatusBadText, kStatusNoMemory, kStatusSealed, kStatusDamaged, kStatusNoteDeleted})
        if (status == refusal)
            return true;
    return false;
}

// Notes in transactions of some thousands; a note that cannot be taken is reported, the rest come in.  What
// is printed is in the database.
class NoteWriter {
public:
    NoteWriter(Database* database, std::string source, bool json)
        : database_(database), source_(std::move(source)), json_(json)
    {
    }

    // False when the database can take no more.
    bool Take(const nlohmann::ordered_json& value, size_t line, const std::string& error)
    {
        Note note;
        std::string wrong = error;
        if (!wrong.empty() || !NoteFromJson(value, &note, &wrong)) {
            Refuse(line, wrong);
            return true;
        }
        status_ = Write(&note);
        if (IsRefusalOfOneNote(status_)) {
            Refuse(line, DescribeStatus(status_));
            status_ = 0;
        } else if (status_ == 0) {
            written_.push_back(note);
        }
        if (written_.size() >= kNotesPerTransaction)
            Commit();
        return status_ == 0;
    }

    // Ends the transaction, so that nobody waits for it while no input comes.
    void Commit()
    {
        if (!inTransaction_)
            return;
        inTransaction_ = false;
        if (status_ == 0)
            status_ = database_->Commit();
        if (status_ != 0)
            database_->Rollback();
        else
            for (const Note& note : written_)
                Print(note);
        written_.clear();
    }

    STATUS Status() const { return status_; }
    bool Refused() const { return refused_; }

private:
    void Refuse(size_t line, const std::string& reason)
    {
        Fail(source_ + ":" + std::to_string(line) + ": " + reason);
        refused_ = true;
    }

    STATUS Write(Note* note)
    {
        if (!inTransaction_)
            if (const STATUS status = database_->Begin(); status != 0)
                return status;
        inTransaction_ = true;
        return database_->Put(note);
    }

    void Print(const Note& note) const
    {
        const std::string url = UrlOfNote(database_->ReplicaId(), note.unid);
        if (json_)
            std::cout << nlohmann::ordered_json{{"noteid", note.id}, {"unid", HexFromUnid(note.unid)}, {"url", url}}
                      << '\n';
        else
            std::cout << note.id << '\t' << url << '\n';
    }

    Database* const database_;
    const std::string source_;
    const bool json_;
    bool inTransaction_ = false;
    std::vector<Note> written_;  // in the open transaction
    STATUS status_ = 0;
    bool refused_ = false;
};

int Put(const NoteOptions& options)
{
    const std::string path = DatabasePath(options.database);
    std::ifstream file;
    if (options.input != "-") {
        file.open(options.input);
        if (!file)
            return Fail("cannot read " + options.input);
    }
    std::unique_ptr<Database> database;
    if (const STATUS status = Database::OpenOrCreate(path, "Notes", &database); status != 0)
        return FailWith(status, path);
    NoteWriter writer(database.get(), options.input == "-" ? "standard input" : options.input, options.json);
    std::istream& input = options.input == "-" ? std::cin : file;
    ReadJsonValues(input, [&](const nlohmann::ordered_json& value, size_t line, const std::string& error) {
        const bool goesOn = writer.Take(value, line, error);
        if (input.rdbuf()->in_avail() <= 0)
            writer.Commit();  // the next read may have to wait
        return goesOn;
    });
    writer.Commit();
    if (writer.Status() != 0)
        return FailWith(writer.Status(), path);
    return writer.Refused() ? kExitFailed : kExitDone;
}

// ---- get, list, delete -----------------------------------------------------------------------

int WithDatabase(const NoteOptions& options, const std::function<int(Database&)>& work)
{
    const std::string path = DatabasePath(options.database);
    std::unique_ptr<Database> database;
    if (const STATUS status = Database::Open(path, &database); status != 0)
        return FailWith(status, path);
    return work(*database);
}

// A note id in decimal, or a UNID in 32 hexadecimal digits.
std::optional<uint32_t> FindNote(Database& database, const std::string& name)
{
    if (const std::optional<UNID> unid = UnidFromHex(name))
        return database.FindUnid(*unid);
    return NoteIdFromText(name);
}

int Get(const NoteOptions& options)
{
    return WithDatabase(options, [&options](Database& database) {
        const std::string& name = options.ids.front();
        const std::optional<uint32_t> id = FindNote(database, name);
        Note note;
        database.Unseal();  // what is printed can be put back whole
        const STATUS status = id ? database.Get(*id, &note) : kStatusNoSuchNote;
        if (status != 0)
            return Fail(database.Path() + ": note " + name + ": " + DescribeStatus(status));
        PrintNoteJson(database, note, options.json);
        return kExitDone;
    });
}

int List(const NoteOptions& options)
{
    return WithDatabase(options, [&options](Database& database) {
        int exit = kExitDone;
        const STATUS listed = database.List([&](const NoteSummary& summary) {
            Note note;
            if (const STATUS status = database.Get(summary.id, &note); status != 0) {
                exit = Fail(database.Path() + ": note " + std::to_string(summary.id) + ": " + DescribeStatus(status));
                return true;
            }
            const std::string form = FirstText(note, "Form");
            const std::string subject = FirstText(note, "Subject");
            if (options.json)
                std::cout << TextOfJson({{"noteid", summary.id},
                                         {"unid", HexFromUnid(summary.unid)},
                                         {"modified", IsoFromTime(summary.modified)},
                                         {"form", form},
                                         {"subject", subject}})
                          << '\n';
            else
                std::cout << summary.id << '\t' << IsoFromTime(summary.modified) << '\t' << PrintableLine(form) << '\t'
                          << PrintableLine(subject) << '\n';
            return true;
        });
        return listed == 0 ? exit : FailWith(listed, database.Path());
    });
}

int Delete(const NoteOptions& options)
{
    return WithDatabase(options, [&options](Database& database) {
        int exit = kExitDone;
        for (const std::string& name : options.ids) {
            const std::optional<uint32_t> id = FindNote(database, name);
            if (const STATUS status = id ? database.Delete(*id) : kStatusNoSuchNote; status != 0)
                exit = Fail(database.Path() + ": note " + name + ": " + DescribeStatus(status));
        }
        return exit;
    });
}

struct NoteAction {
    const char* name;
    const char* summary;
    int (*run)(const NoteOptions& options);
    bool takesInput;
    int leastIds;  // of notes named on the command line; 0: takes none
    int mostIds;
};
constexpr NoteAction kActions[] = {
    {"put", "create or replace notes from JSON, one object or one a line", Put, true, 0, 0},
    {"get", "print a note as the JSON that put takes", Get, false, 1, 1},
    {"list", "print a line for each note", List, false, 0, 0},
    {"delete", "delete notes", Delete, false, 1, 1000000},
};

}  // namespace

CommandFunction ConfigureNote(CLI::App& options)
{
    const auto values = std::make_shared<NoteOptions>();
    const auto chosen = std::make_shared<const NoteAction*>(nullptr);
    options.require_subcommand(1);
    for (const NoteAction& action : kActions) {
        CLI::App* const sub = options.add_subcommand(action.name, action.summary);
        sub->add_option("--db", values->database, "the database")->type_name("FILE.vlt")->required();
        sub->add_flag("--json", values->json, "print JSON, one object a line");
        if (action.takesInput)
            sub->add_option("INPUT", values->input, "a file of JSON; - or nothing: standard input");
        if (action.mostIds != 0)
            sub->add_option("ID", values->ids, "note ids, or UNIDs of 32 hexadecimal digits")
                ->required()
                ->expected(action.leastIds, action.mostIds);
        sub->callback([chosen, &action] { *chosen = &action; });
    }
    return [values, chosen] { return (*chosen)->run(*values); };
}

}  // namespace pavex
