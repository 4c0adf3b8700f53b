#!/usr/bin/env python3
"""Installs the Debian packages of a folder into a clean tree, runs the sample there, removes them, and wants nothing
left: packages.py FOLDER.  Goes by sudo where it has to: a tree is entered by root alone.

The tree holds what every Debian system has and what the packages ask for, each file copied from this machine's own
packages.  So nothing is fetched, and a library that the packages do not ask for is not there."""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
STATUS = pathlib.Path("/var/lib/dpkg/status")
INFO = pathlib.Path("/var/lib/dpkg/info")
# What the programs make for themselves outside of the users' folders.
NOT_COMPARED = ("home", "proc", "dev", "tmp", "var/lib/dpkg", "var/log", "var/cache", "run")
RECOMMENDED = ["recollcmd"]
# Everything that a user does first.  Fails at the first command that does.
SESSION = r"""
set -e
cd ~
pavex import samples/mail samples/contacts samples/calendar >/dev/null 2>notices
pavex settings --enable --yes --add mail.vlt --add names.vlt --add calendar.vlt >/dev/null 2>&1
pavex index --full-speed >/dev/null
pavex search --json garden >found
grep -q '"title":"Garden tools"' found
pavex open 1 | grep -q 'Garden tools'
pavex status >/dev/null
# Nobody else reads any of it.
test -f .local/share/pavex/mail.vlt
test -z "$(find .cache .config .local -type f -perm /077)"
"""
WINDOW = r"""
set -e
export QT_QPA_PLATFORM=offscreen
pavex desktop &
for wait in $(seq 600); do
    grep -q libpavexqt.so /proc/$!/maps 2>/dev/null && break
    sleep 0.1
done
grep -q libpavexqt.so /proc/$!/maps
kill $!
wait $!
"""


def read_status(text):
    """Paragraphs of a package database, by name; of several architectures the first."""
    packages = {}
    for paragraph in text.strip().split("\n\n"):
        fields = dict(re.findall(r"^([\w-]+): *(.*(?:\n .*)*)", paragraph, re.M))
        if "installed" in fields.get("Status", "").split():
            packages.setdefault(fields["Package"], (fields, paragraph))
    return packages


def names_in(field):
    """Each dependency as the list of its alternatives."""
    return [[re.match(r"\s*([^\s:(\[]+)", each)[1] for each in group.split("|")]
            for group in field.split(",") if group.strip()]


def closure(installed, wanted):
    """The names of installed packages that these and every essential one need."""
    providers = {}
    for name, (fields, _) in installed.items():
        for group in [[[name]], names_in(fields.get("Provides", ""))]:
            for provided in group:
                providers.setdefault(provided[0], name)
    needed = set()
    pending = [[name] for name, (fields, _) in installed.items() if fields.get("Essential") == "yes"]
    pending += [["base-passwd"], *wanted]
    while pending:
        alternatives = pending.pop()
        found = [providers[name] for name in alternatives if name in providers]
        if not found:
            raise AssertionError(f"not installed on this machine: {' | '.join(alternatives)}")
        if found[0] not in needed:
            needed.add(found[0])
            fields = installed[found[0]][0]
            pending += names_in(fields.get("Depends", "")) + names_in(fields.get("Pre-Depends", ""))
    return needed


class CleanTree:
    def __init__(self, needed, installed):
        self._folder = tempfile.TemporaryDirectory(prefix="pavex-clean-", dir="/var/tmp", ignore_cleanup_errors=True)
        self.root = pathlib.Path(self._folder.name)
        self.root.chmod(0o755)
        for name in ("bin", "sbin", "lib", "lib64", "lib32", "libx32"):
            if pathlib.Path("/", name).is_symlink():
                (self.root / name).symlink_to(os.readlink(pathlib.Path("/", name)))
                (self.root / "usr" / name).mkdir(parents=True, exist_ok=True)
        database = self.root / "var/lib/dpkg"
        for folder in (database / "info", database / "updates", self.root / "etc", self.root / "home/ann"):
            folder.mkdir(parents=True)
        files = []
        for name in needed:
            fields = installed[name][0]
            same = fields.get("Multi-Arch") == "same"
            record = INFO / (f"{name}:{fields['Architecture']}.list" if same else f"{name}.list")
            shutil.copy(record, database / "info")
            files += record.read_text().splitlines()
        # Folders of this machine that were left out when it was made are no part of the question.
        listed = "\0".join(path.lstrip("/") for path in files if path != "/." and os.path.lexists(path))
        pack = subprocess.Popen(["tar", "-C", "/", "--no-recursion", "--null", "-T", "-", "-cf", "-"],
                                stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        unpack = subprocess.Popen(["tar", "-C", self.root, "--keep-directory-symlink", "-xpf", "-"], stdin=pack.stdout)
        pack.stdin.write(listed.encode())
        pack.stdin.close()
        pack.stdout.close()
        if pack.wait() != 0 or unpack.wait() != 0:
            raise AssertionError("the tree could not be filled")
        (database / "status").write_text("\n\n".join(installed[name][1] for name in sorted(needed)) + "\n\n")
        for name in ("passwd", "group"):
            shutil.copy(f"/usr/share/base-passwd/{name}.master", self.root / "etc" / name)
        with (self.root / "etc/passwd").open("a") as passwd:
            passwd.write("ann:x:1000:1000:Ann Lee:/home/ann:/bin/sh\n")
        shutil.copytree(SOURCE / "samples", self.root / "home/ann/samples")
        subprocess.run(["chown", "-R", "1000:1000", self.root / "home/ann"], check=True)
        self.run("ldconfig", user="0:0")

    def run(self, *command, user="1000:1000"):
        """Runs a command in the tree; what it mounts goes with it."""
        enter = 'mount --rbind /proc "$0/proc" && mount --rbind /dev "$0/dev" && exec chroot "$@"'
        return subprocess.run(["unshare", "--mount", "--propagation", "private", "sh", "-c", enter, self.root,
                               f"--userspec={user}", self.root, "env", "-i", "HOME=/home/ann", "LC_ALL=C.UTF-8",
                               "PATH=/usr/bin:/usr/sbin:/bin:/sbin", *command],
                              text=True, capture_output=True, check=False)

    def dpkg(self, *arguments):
        done = subprocess.run(["dpkg", f"--root={self.root}", *arguments], text=True, capture_output=True)
        assert done.returncode == 0, done.stderr
        return done.stdout

    def files(self):
        return {str(path) for found in self.root.rglob("*")
                if not str(path := found.relative_to(self.root)).startswith(NOT_COMPARED)}

    def close(self):
        self._folder.cleanup()


class Packages(unittest.TestCase):
    def test_install_do_the_sample_and_leave_nothing(self):
        program, window = (next(FOLDER.glob(f"{name}_*.deb")) for name in ("pavex", "pavex-window"))
        asked = [group for package in (program, window)
                 for group in names_in(subprocess.check_output(["dpkg-deb", "-f", package, "Depends"], text=True))
                 if group != ["pavex"]]
        installed = read_status(STATUS.read_text())
        tree = CleanTree(closure(installed, [*asked, *([name] for name in RECOMMENDED)]), installed)
        self.addCleanup(tree.close)
        self.assertFalse((tree.root / "usr/bin/g++").exists(), "the tree holds more than was asked for")
        before = tree.files()

        tree.dpkg("--install", program)
        self.expect_done(tree.run("pavex", "--version"), f"pavex {self.version(program)}\n")
        self.expect_done(tree.run("sh", "-c", SESSION), "")
        without = tree.run("pavex", "settings")
        self.assertEqual((without.returncode, without.stdout), (1, ""))

        for page in (tree.root / "usr/share/man").rglob("pavex*.gz"):
            shown = subprocess.run(["mandoc", "-T", "utf8", "-W", "error", page], capture_output=True, text=True)
            self.assertEqual((shown.returncode, shown.stderr), (0, ""), page)
            self.assertIn("NAME", re.sub(".\b", "", shown.stdout), page)

        tree.dpkg("--install", window)
        self.expect_done(tree.run("sh", "-c", WINDOW), "")
        self.assertEqual(tree.dpkg("--verify", "pavex", "pavex-window"), "")

        tree.dpkg("--purge", "pavex-window", "pavex")
        self.assertEqual(tree.files() - before, set())
        self.assertEqual(before - tree.files(), set())
        self.assertTrue((tree.root / "home/ann/.local/share/pavex/mail.vlt").exists(), "a user's notes were removed")

    @staticmethod
    def version(package):
        return subprocess.check_output(["dpkg-deb", "-f", package, "Version"], text=True).strip()

    def expect_done(self, done, output):
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, output, ""))

    def test_come_out_the_same_again(self):
        with tempfile.TemporaryDirectory() as again:
            subprocess.run([SOURCE / "scripts/package", again], check=True, stdout=subprocess.DEVNULL)
            for package in FOLDER.glob("*.deb"):
                self.assertEqual((pathlib.Path(again) / package.name).read_bytes(), package.read_bytes(), package.name)


if __name__ == "__main__":
    if os.geteuid() != 0:
        os.execvp("sudo", ["sudo", "--", sys.executable, "-B", *sys.argv])
    FOLDER = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()
