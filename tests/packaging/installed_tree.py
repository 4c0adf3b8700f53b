"""An installed tree works from any place, with nothing of the build tree: installed_tree.py BUILD"""
import json
import subprocess
import sys
import unittest

from installed import SOURCE, Tree, is_sanitized

BUILD = sys.argv.pop(1)


class InstalledTree(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = cls.enterClassContext(Tree(BUILD))

    def test_does_the_sample(self):
        self.tree.index_samples("contacts", "mail")
        hits = [json.loads(line) for line in self.tree.pavex("search", "--json", "garden").splitlines()]
        self.assertEqual([hit["title"] for hit in hits], ["Garden tools"])
        self.assertIn("Garden tools", self.tree.pavex("open", hits[0]["url"]))

    def test_speaks_the_users_language(self):
        status = self.tree.pavex("settings", "--show", LC_ALL="", LANGUAGE="de")
        self.assertIn("Indizierung", status)

    def test_loads_its_libraries_from_its_own_folder(self):
        libraries = sorted((self.tree.prefix / "lib/pavex").glob("*.so"))
        self.assertIn("libtorvik.so", [path.name for path in libraries])
        for path in [self.tree.prefix / "bin/pavex", *libraries]:
            dynamic = subprocess.run(["readelf", "-d", path], check=True, capture_output=True, text=True).stdout
            paths = [line.split("[")[1].rstrip("]") for line in dynamic.splitlines() if "PATH)" in line]
            # Absolute ones would be the build tree's.
            self.assertEqual(paths, ["$ORIGIN/../lib/pavex" if path.name == "pavex" else "$ORIGIN"], path)

    def test_names_no_file_of_the_build_tree(self):
        # A sanitizer's reports name the sources, generated ones too.
        sanitized = is_sanitized(BUILD)
        for path in self.tree.prefix.rglob("*"):
            if path.is_file() and not (sanitized and path.read_bytes().startswith(b"\x7fELF")):
                self.assertNotIn(BUILD.encode(), path.read_bytes(), path)

    def test_has_every_page_and_every_text(self):
        share = self.tree.prefix / "share"
        pages = {f"man{path.suffix[1:]}/{path.name}" for path in (SOURCE / "man").iterdir()}
        self.assertEqual({str(path.relative_to(share / "man")) for path in (share / "man").rglob("*.?")}, pages)
        texts = {path.relative_to(SOURCE / "resources") for path in (SOURCE / "resources").rglob("*.strings")}
        self.assertEqual({path.relative_to(share / "pavex/torvik")
                          for path in (share / "pavex/torvik").rglob("*.strings")}, texts)

    def test_completes_in_every_shell(self):
        for path in ("bash-completion/completions/pavex", "fish/vendor_completions.d/pavex.fish",
                     "zsh/site-functions/_pavex"):
            self.assertIn("pavex", (self.tree.prefix / "share" / path).read_text(), path)


if __name__ == "__main__":
    unittest.main()
