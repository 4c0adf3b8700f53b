// tests/support/test_database.cpp: a real database with the notes a test needs.
#include "tests/support/test_database.h"

#include <stdexcept>
#include <utility>

#include "client/store/engine.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace {

void Require(STATUS status, const char* what)
{
    if (status != 0)
        throw std::runtime_error(std::string(what) + ": the database " + pavex::DescribeStatus(status));
}

}  // namespace

TestDatabase::TestDatabase(const std::string& path, const std::string& titleUtf8)
{
    Require(pavex::Database::OpenOrCreate(path, titleUtf8, &database_), path.c_str());
    database_->Unseal();
}

uint32_t TestDatabase::Add(pavex::Note note)
{
    Require(database_->Put(&note), "add note");
    return note.id;
}

uint32_t TestDatabase::AddNote(std::vector<pavex::Item> items, uint16_t noteClass)
{
    pavex::Note note;
    note.noteClass = noteClass;
    note.items = std::move(items);
    return Add(std::move(note));
}

uint32_t TestDatabase::AddSealed(std::vector<pavex::Item> items)
{
    pavex::Note note;
    note.sealed = true;
    note.items = std::move(items);
    return Add(std::move(note));
}

uint32_t TestDatabase::AddMail(const TestMail& mail)
{
    pavex::Note note;
    note.modified = mail.modified;
    note.Set(pavex::TextItem("Form", mail.form));
    if (!mail.from.empty())
        note.Set(pavex::TextItem("From", mail.from));
    if (!mail.to.empty())
        note.Set(pavex::TextListItem("SendTo", mail.to));
    if (!mail.cc.empty())
        note.Set(pavex::TextListItem("CopyTo", mail.cc));
    if (!mail.subject.empty())
        note.Set(pavex::TextItem("Subject", mail.subject));
    if (mail.posted.Innards[1] != 0)
        note.Set(pavex::TimeItem("PostedDate", mail.posted));
    if (!mail.body.empty()) {
        pavex::RichTextBuilder body;
        for (const std::string& paragraph : mail.body)
            body.AddParagraph(paragraph);
        note.Set(pavex::RichTextItem("Body", body.Records()));
    }
    return Add(std::move(note));
}

uint32_t TestDatabase::AddForm(const std::string& titleUtf8, const std::string& windowTitleFormula)
{
    std::vector<pavex::Item> items = {pavex::TextItem("$Title", titleUtf8)};
    if (!windowTitleFormula.empty())
        items.push_back(pavex::FormulaItem("$WindowTitle", windowTitleFormula));
    return AddNote(std::move(items), pavex::kClassForm);
}

void TestDatabase::Update(uint32_t id, std::vector<pavex::Item> items)
{
    pavex::Note note = Get(id);
    for (pavex::Item& item : items)
        note.Set(std::move(item));
    note.modified = TIMEDATE{};
    Require(database_->Put(&note), "update note");
}

void TestDatabase::Delete(uint32_t id)
{
    Require(database_->Delete(id), "delete note");
}

void TestDatabase::SetUnread(const std::string& userUtf8, uint32_t id, bool unread)
{
    Require(database_->SetUnread(userUtf8, id, unread), "set unread");
}

pavex::Note TestDatabase::Get(uint32_t id)
{
    pavex::Note note;
    Require(database_->Get(id, &note), "read note");
    return note;
}

std::vector<uint32_t> TestDatabase::Ids()
{
    std::vector<uint32_t> ids;
    Require(database_->List([&](const pavex::NoteSummary& note) {
        ids.push_back(note.id);
        return true;
    }),
            "list notes");
    return ids;
}

std::string TestDatabase::Url(uint32_t id)
{
    pavex::NoteRow row;  // of a deleted note too
    Require(database_->ReadRow(id, false, &row), "read identity");
    return "Pavex:///" + pavex::HexFromId(database_->ReplicaId()) + "//" + pavex::HexFromUnid(row.unid);
}

TIMEDATE TestDatabase::LastChange()
{
    pavex::DatabaseInfo info;
    Require(database_->engine().ReadInfo(&info), "read stamps");
    return pavex::TimeFromHundredths(info.lastStamp);
}
