"""The pages for users name what the sources know: every ini variable and every key of a metafile, and no other.
pages.py BUILD"""
import plistlib
import re
import sys
import unittest

from installed import SOURCE, Tree

BUILD = sys.argv.pop(1)
FOLDERS = ("addin", "client", "content", "dialog", "indexers", "metastore", "settings")
CALL = r"\b(?:(?:Get|Set|Remove|Override)Variable|OS[GS]etEnvironment(?:Long|Int|String|Variable))\(\s*([^,()]+)"
# These read variables by names that are not written at the call, but as a constant or a row.
NAMED_ELSEWHERE = ("settings/settings.cpp", "settings/progress.cpp", "client/store/environment.cpp",
                   "client/check/note_fate.cpp", "client/check/progress_record.cpp", "client/check/repair.cpp")
CONSTANT = r'constexpr const char\* k\w+Key = "(\w+)";|^    \{"(\w+)", &b\w+, (?:true|false)\}'

# Of variables with a number and what stands behind it, the beginning.
NUMBERED = r'constexpr std::string_view kPrefix = "(\w*Source)";'


def sources():
    for folder in FOLDERS:
        for path in sorted((SOURCE / folder).rglob("*.cpp")):
            yield str(path.relative_to(SOURCE)), path.read_text()


def variables_of_the_sources():
    names, nameless = set(), []
    for path, text in sources():
        if path.startswith("settings/"):
            names |= {first or second for first, second in re.findall(CONSTANT, text, re.M)}
        names |= set(re.findall(NUMBERED, text))
        for argument in re.findall(CALL, text):
            if literal := re.match(r'"(\w+)"', argument):
                names.add(literal[1])
            elif path not in NAMED_ELSEWHERE:
                nameless.append(f"{path}: {argument}")
    return names, nameless


def page(name):
    return (SOURCE / name).read_text()


class Pages(unittest.TestCase):
    def setUp(self):
        self.variables, self.nameless = variables_of_the_sources()

    def test_find_every_variable_in_the_sources(self):
        self.assertEqual(self.nameless, [], "a variable whose name this test cannot see")
        self.assertLess({"GDSIndexEnabled", "GDSFilePath", "GDSFreqMinutes", "AdminGDSLock", "Language"}, self.variables)

    def test_name_every_ini_variable_and_no_other(self):
        named = set(re.findall(r"\bVa ([A-Z]\w*)", page("man/pavex.ini.5")))
        self.assertEqual({re.sub(r"\d+\w*$", "", name) if name not in self.variables else name for name in named},
                         self.variables)

    def test_name_every_ini_variable_among_the_settings(self):
        text = page("docs/user/settings.md")
        self.assertEqual({name for name in self.variables if f"`{name}" not in text}, set())

    def test_name_the_keys_of_metafiles(self):
        text = re.sub(r"\\\(dq|\\&", "", page("man/pavex-metafile.5"))
        words = set(re.findall(r"[a-z][\w.]+", text))
        with Tree(BUILD) as tree:
            tree.pavex("import", *(SOURCE / "samples" / name for name in
                                   ("mail", "contacts", "calendar", "bookmarks", "documents")))
            tree.pavex("import", "--as", "discussion", SOURCE / "samples/list")
            databases = ("mail", "names", "calendar", "documents")
            tree.pavex("settings", "--enable", "--yes", "--discussion", "on", "--drafts", "on",
                       *(f"--add={name}.vlt" for name in databases))
            tree.pavex("index", "--full-speed")
            files = list((tree.home / "caches").rglob("*.vPavex*"))
            keys = {key for path in files for key in plistlib.loads(path.read_bytes())}
            self.assertEqual({path.suffix[1:] for path in files}, set(re.findall(r"^\.Ss (vPavex\w+)", text, re.M)))
        self.assertGreater(len(keys), 50)
        short = {key.removeprefix("com_quorvex_morvane_pavex_") for key in keys}
        self.assertEqual({key for key in short if key not in words and "com_quorvex_morvane_pavex_" + key not in words},
                         set())


if __name__ == "__main__":
    unittest.main()
