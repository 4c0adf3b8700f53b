"""The desktop entries are right, and lead a click on a note's URL to the note: desktop_entries.py BUILD"""
import configparser
import json
import shutil
import subprocess
import sys
import time
import unittest

from installed import Tree, skip

BUILD = sys.argv.pop(1)
NEEDED = ["desktop-file-validate", "update-desktop-database", "gio"]
HANDLER = "pavex-open.desktop"


def entry(path):
    parser = configparser.ConfigParser(interpolation=None)
    parser.optionxform = str
    parser.read(path, encoding="utf-8")
    return parser


class DesktopEntries(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = cls.enterClassContext(Tree(BUILD))
        cls.entries = sorted((cls.tree.prefix / "share/applications").glob("*.desktop"))
        if not cls.entries:
            skip("built without the window")
        cls.tree.run("update-desktop-database", cls.tree.prefix / "share/applications")

    def eventually(self, condition):
        for _ in range(600):
            if condition():
                return True
            time.sleep(0.1)
        return False

    def history(self):
        return [json.loads(line)["url"] for line in self.tree.pavex("history", "--json").splitlines()]

    def test_are_valid(self):
        done = subprocess.run(["desktop-file-validate", *self.entries], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout), (0, ""))

    def test_run_commands_that_there_are(self):
        listed = self.tree.pavex("--help")
        for path in self.entries:
            for section in entry(path).values():
                if "Exec" in section:
                    words = section["Exec"].split()
                    self.assertEqual(words[0], "pavex", path)
                    self.assertIn(f"\n  {words[1]} ", listed, path)

    def test_show_the_icon_that_is_installed(self):
        icons = {path.stem for path in (self.tree.prefix / "share/icons/hicolor/scalable/apps").glob("*.svg")}
        for path in self.entries:
            self.assertIn(entry(path)["Desktop Entry"]["Icon"], icons)

    def test_handle_the_scheme_in_either_case(self):
        for scheme in ("pavex", "Pavex"):
            self.assertIn(HANDLER, self.tree.run("gio", "mime", f"x-scheme-handler/{scheme}"))

    def test_a_click_opens_the_note(self):
        self.tree.index_samples("mail")
        urls = [json.loads(line)["url"] for line in self.tree.pavex("search", "--json", "the").splitlines()][:2]
        self.assertEqual(len(urls), 2)
        # As it stands in a result, and as browsers write it.
        clicked = [urls[0], urls[1].replace("Pavex:", "pavex:")]
        for url in clicked:
            self.tree.run("gio", "open", url)
        self.assertTrue(self.eventually(lambda: set(self.history()) == set(urls)), self.history())


if __name__ == "__main__":
    missing = [tool for tool in NEEDED if shutil.which(tool) is None]
    if missing:
        skip(f"not installed: {' '.join(missing)}")
    unittest.main()
