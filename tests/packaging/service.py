"""The user's service is one that systemd takes, and starts a command that there is: service.py BUILD"""
import configparser
import shutil
import subprocess
import sys
import unittest

from installed import Tree, skip

BUILD = sys.argv.pop(1)


class Service(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = cls.enterClassContext(Tree(BUILD))
        cls.unit = cls.tree.prefix / "lib/systemd/user/pavex.service"

    def service(self):
        parser = configparser.ConfigParser(interpolation=None)
        parser.optionxform = str
        parser.read(self.unit, encoding="utf-8")
        return parser["Service"]

    def test_is_valid(self):
        # systemd looks for programs in the system's folders alone.
        program = self.tree.folder / "pavex"
        shutil.copy2(shutil.which("true"), program)
        checked = self.tree.folder / "pavex-check.service"
        checked.write_text(self.unit.read_text().replace("ExecStart=pavex ", f"ExecStart={program} "))
        done = subprocess.run(["systemd-analyze", "verify", "--user", "--man=no", checked], capture_output=True, text=True,
                              env=self.tree.environment | {"XDG_RUNTIME_DIR": str(self.tree.folder)})
        self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))

    def test_starts_a_command_that_there_is(self):
        program, command = self.service()["ExecStart"].split()
        self.assertEqual(program, "pavex")
        self.assertIn(f"\n  {command} ", self.tree.pavex("--help"))

    def test_names_pages_that_there_are(self):
        documentation = [line for line in self.unit.read_text().splitlines() if line.startswith("Documentation=")]
        for page in documentation[0].removeprefix("Documentation=").split():
            name, section = page.removeprefix("man:").rstrip(")").split("(")
            self.assertTrue((self.tree.prefix / f"share/man/man{section}/{name}.{section}").exists(), page)

    def test_stays_out_of_the_way(self):
        self.assertEqual((self.service()["Nice"], self.service()["IOSchedulingClass"]), ("10", "idle"))


if __name__ == "__main__":
    if shutil.which("systemd-analyze") is None:
        skip("not installed: systemd-analyze")
    unittest.main()
