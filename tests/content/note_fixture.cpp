// tests/content/note_fixture.cpp: see the header.
#include "tests/content/note_fixture.h"

#include <cstdlib>
#include <filesystem>

#include "client/store/charset.h"
#include "client/store/host.h"
#include "client/store/richtext.h"
#include "platform/owner.h"
#include "settings/settings.h"

namespace fs = std::filesystem;

NoteFixture::NoteFixture()
{
    for (const char* folder : {"data", "caches", "log", "tmp", "bundle", "bundle/en.lproj"})
        fs::create_directory(home_.Path() / folder);
    if (const char* const before = std::getenv("TMPDIR"); before != nullptr)
        tmpdirBefore_ = before;
    setenv("TMPDIR", (home_ / "tmp").c_str(), 1);
    setenv("LANG", "C.UTF-8", 1);
    WriteWholeFile(home_ / "bundle/en.lproj/libtorvik.strings",
                   std::string("\"165\" = \"") + kHolidayName + "\";\n\"169\" = \"" + kPhoneCallsName + "\";\n");
    std::string error;
    const bool started = pavex::StartHost({.ini = home_ / "pavex.ini",
                                           .policy = home_ / "policy.ini",
                                           .data = home_ / "data",
                                           .caches = home_ / "caches",
                                           .log = home_ / "log/pavex.log"},
                                          &error);
    EXPECT_TRUE(started) << error;
    pavex::SetAddInBundle(home_ / "bundle");
    szDataFields[0] = '\0';
    handlesBefore_ = pavex::OpenHandles();
    const std::string path = home_ / "data/notes.vlt";
    database_ = std::make_unique<TestDatabase>(path, "Notes for tests");
    EXPECT_EQ(VLTDbOpen(path.c_str(), &db_), kStatusOk);
}

NoteFixture::~NoteFixture()
{
    for (const NOTEHANDLE note : notes_)
        static_cast<void>(VLTNoteClose(note));
    EXPECT_EQ(VLTDbClose(db_), kStatusOk);
    EXPECT_EQ(pavex::OpenHandles(), handlesBefore_) << "a handle was left open";
    // The folder of this test goes with it; the next test's is made in the one before.
    if (tmpdirBefore_)
        setenv("TMPDIR", tmpdirBefore_->c_str(), 1);
    else
        unsetenv("TMPDIR");
}

NOTEHANDLE NoteFixture::Open(pavex::Note note)
{
    const NOTEID id = database_->Add(std::move(note));
    NOTEHANDLE handle = 0;
    EXPECT_EQ(VLTNoteOpen(db_, id, 0, &handle), kStatusOk);
    notes_.push_back(handle);
    return handle;
}

NOTEHANDLE NoteFixture::Open(std::vector<pavex::Item> items)
{
    pavex::Note note;
    note.items = std::move(items);
    return Open(std::move(note));
}

std::optional<std::string> NoteFixture::Property(const char* key) const
{
    const CFOwner<CFStringRef> name(CString(key).toCFStringRef());
    const void* value = CFDictionaryGetValue(event_.Properties(), name.Get());
    if (value == nullptr)
        return std::nullopt;
    return CString(static_cast<CFStringRef>(value)).toString();
}

std::vector<std::string> NoteFixture::TemporaryFiles() const
{
    std::vector<std::string> files;
    for (const auto& entry : fs::directory_iterator(home_.Path() / "tmp"))
        files.push_back(entry.path().filename());
    return files;
}

std::string Scs(std::string_view utf8)
{
    return pavex::ScsFromUtf8(utf8);
}

std::string Utf8(std::string_view scs)
{
    return pavex::Utf8FromScs(scs);
}

pavex::Item RichText(std::string_view name, const std::vector<std::string>& paragraphs)
{
    pavex::RichTextBuilder builder;
    for (const std::string& paragraph : paragraphs)
        builder.AddParagraph(paragraph);
    return pavex::RichTextItem(name, builder.Records());
}
