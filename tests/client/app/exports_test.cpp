// tests/client/app/exports_test.cpp: what the built add-in shows to whoever loads it.
#include <set>
#include <sstream>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

TEST(Exports, OfTheAddInAreItsEntryAndTheHashAlone)
{
    const TemporaryDirectory folder;
    const ProgramResult listed =
        Process({"/usr/bin/nm", "-D", "--defined-only", TORVIK_BINARY_DIR "/lib/libtorvik.so"}, folder / "nm").Wait();
    ASSERT_EQ(listed.exit, 0) << listed.err;
    std::set<std::string> names;
    std::istringstream lines(listed.out);
    for (std::string address, kind, name; lines >> address >> kind >> name;) {
        if (!name.starts_with("__"))  // a sanitizer's own
            names.insert(name);
    }
    EXPECT_EQ(names, (std::set<std::string>{"CstrhashImproved", "MainEntryPoint"}));
}

}  // namespace
}  // namespace pavex
