// tests/client/import/sample_comparison/contact_comparison_test.cpp: the sample contacts as notes, against what
// a reader written in Python makes of the same files.
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <set>

#include <nlohmann/json.hpp>

#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

using nlohmann::json;

struct PipeCloser {
    void operator()(FILE* pipe) const { ::pclose(pipe); }
};

std::vector<std::string> SampleFiles()
{
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(TORVIK_SOURCE_DIR "/samples/contacts")) {
        if (entry.path().extension() == ".vcf")
            files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// What Python makes of the cards, by the full name.
std::map<std::string, json> ReadByPython(const std::vector<std::string>& files)
{
    std::string command =
        "python3 '" TORVIK_SOURCE_DIR "/tests/client/import/sample_comparison/contacts_from_python.py'";
    for (const std::string& file : files)
        command += " '" + file + "'";
    const std::unique_ptr<FILE, PipeCloser> pipe(::popen(command.c_str(), "re"));
    std::string output;
    std::array<char, 4096> piece{};
    for (size_t count = 1; pipe && count > 0;) {
        count = std::fread(piece.data(), 1, piece.size(), pipe.get());
        output.append(piece.data(), count);
    }
    std::map<std::string, json> cards;
    for (size_t start = 0; start < output.size();) {
        const size_t end = output.find('\n', start);
        json card = json::parse(output.substr(start, end - start));
        const std::string name = card["items"]["FullName"].get<std::string>();
        EXPECT_TRUE(cards.emplace(name, std::move(card)).second) << name << " stands in the sample twice";
        start = end + 1;
    }
    return cards;
}

void ExpectSame(const json& python, NoteText note, const std::string& name)
{
    SCOPED_TRACE(name);
    const std::string body = note["Body"];
    note.erase("Body");
    EXPECT_EQ(note, python["items"].get<NoteText>());
    EXPECT_EQ(body.empty(), python["found"].empty()) << body;
    for (const json& text : python["found"])
        EXPECT_NE(body.find(text.get<std::string>()), body.npos) << text << " is not in\n" << body;
}

class ContactComparison : public ImportTest {};

TEST_F(ContactComparison, AgreesWithPythonOnEveryCard)
{
    if (std::system("python3 -c 'import json' 2>/dev/null") != 0)  // NOLINT(concurrency-mt-unsafe)
        GTEST_SKIP() << "there is no Python to compare with";
    const std::vector<std::string> files = SampleFiles();
    const std::map<std::string, json> python = ReadByPython(files);
    ASSERT_EQ(python.size(), 40U);
    options_.into = options_.dataDirectory + "/names.vlt";
    EXPECT_EQ(Counts(Run(files)), "added 40 updated 0 unchanged 0 removed 0 rejected 0");

    std::set<std::string> seen;
    for (NoteText& note : Notes()) {
        const std::string name = note["FullName"];
        ASSERT_TRUE(python.contains(name)) << name;
        ExpectSame(python.at(name), note, name);
        seen.insert(name);
    }
    EXPECT_EQ(seen.size(), python.size());
}

}  // namespace
}  // namespace pavex
