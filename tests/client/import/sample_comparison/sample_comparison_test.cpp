// tests/client/import/sample_comparison/sample_comparison_test.cpp: the sample mailbox as notes, against what
// Python's email package reads from the same messages.
#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <set>

#include <nlohmann/json.hpp>

#include "client/store/timedate.h"
#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

using nlohmann::json;

struct PipeCloser {
    void operator()(FILE* pipe) const { ::pclose(pipe); }
};

// What Python reads, by Message-ID.
std::map<std::string, json> ReadByPython(const std::string& source)
{
    const std::string script = TORVIK_SOURCE_DIR "/tests/client/import/sample_comparison/expected_from_python.py";
    const std::unique_ptr<FILE, PipeCloser> pipe(::popen(("python3 '" + script + "' '" + source + "'").c_str(), "re"));
    std::string output;
    std::array<char, 4096> piece{};
    for (size_t count = 1; pipe && count > 0;) {
        count = std::fread(piece.data(), 1, piece.size(), pipe.get());
        output.append(piece.data(), count);
    }
    std::map<std::string, json> messages;
    for (size_t start = 0; start < output.size();) {
        const size_t end = output.find('\n', start);
        json message = json::parse(output.substr(start, end - start));
        const std::string id = message["message_id"].get<std::string>();
        EXPECT_TRUE(messages.emplace(id, std::move(message)).second) << id << " stands in the sample twice";
        start = end + 1;
    }
    return messages;
}

std::string Joined(const json& values)
{
    std::string text;
    for (const json& value : values)
        text += (text.empty() ? "" : "|") + value.get<std::string>();
    return text;
}

// Text without white space, which line joining moves about; in flowed text quote marks are part of that.
std::string Bare(const std::string& text, bool flowed)
{
    std::string bare;
    std::copy_if(text.begin(), text.end(), std::back_inserter(bare),
                 [&](char c) { return static_cast<unsigned char>(c) > ' ' && !(flowed && c == '>'); });
    return bare;
}

void ExpectSame(const json& python, NoteText note, const std::string& id)
{
    SCOPED_TRACE(id);
    EXPECT_EQ(note["From"], Joined(python["from"]));
    EXPECT_EQ(note["Principal"], python["sender"] == python["from"] ? "" : Joined(python["sender"]));
    EXPECT_EQ(note["SendTo"], Joined(python["to"]));
    EXPECT_EQ(note["CopyTo"], Joined(python["cc"]));
    EXPECT_EQ(note["BlindCopyTo"], Joined(python["bcc"]));
    EXPECT_EQ(note["ReplyTo"], Joined(python["reply_to"]));
    EXPECT_EQ(note["Subject"], python["subject"].get<std::string>());
    EXPECT_EQ(note["$FILE"], Joined(python["attachments"]));
    const std::string posted =
        python["draft"].get<bool>() ? "" : IsoFromTime(TimeFromUnix(python["date"].get<int64_t>()));
    EXPECT_EQ(note["PostedDate"], posted);
    const bool flowed = python["flowed"].get<bool>();
    std::string text;
    for (const json& part : python["text"])
        text += part.get<std::string>();
    if (python["html"].get<bool>()) {
        EXPECT_NE(note["Body"], "");
    } else if (python["text"].empty()) {
        EXPECT_EQ(note["Body"], "");
    } else {  // attached messages follow the text
        EXPECT_TRUE(Bare(note["Body"], flowed).starts_with(Bare(text, flowed))) << note["Body"] << "\nfor\n" << text;
    }
}

class SampleComparison : public ImportTest {};

TEST_F(SampleComparison, AgreesWithPythonOnEveryMessage)
{
    if (std::system("python3 -c 'import email' 2>/dev/null") != 0)  // NOLINT(concurrency-mt-unsafe)
        GTEST_SKIP() << "there is no Python to compare with";
    const std::string source = TORVIK_SOURCE_DIR "/samples/mail";
    const std::map<std::string, json> python = ReadByPython(source);
    const ImportReport report = Run({source});
    EXPECT_EQ(Counts(report), "added " + std::to_string(python.size()) + " updated 0 unchanged 0 removed 0 rejected 0");
    ASSERT_GE(python.size(), 60U);

    std::set<std::string> seen;
    std::set<std::string> unread;
    for (NoteText& note : Notes()) {
        const std::string id = note["$MessageID"];
        ASSERT_TRUE(python.contains(id)) << id;
        ExpectSame(python.at(id), note, id);
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), python.size());
    for (const auto& [id, message] : python) {
        if (message["unread"] == true)
            unread.insert(message["subject"].get<std::string>());
    }
    const std::vector<std::string> marked = UnreadSubjects();
    EXPECT_EQ(std::set<std::string>(marked.begin(), marked.end()), unread);
}

}  // namespace
}  // namespace pavex
