"""The user's service is one that systemd takes, starts a command that there is, and lets it do its work: service.py BUILD
"""
import configparser
import json
import mmap
import os
import shutil
import signal
import socket
import subprocess
import sys
import time
import unittest

from confined import Confined, why_not
from installed import SOURCE, Tree, is_sanitized, skip

BUILD = sys.argv.pop(1)


# All that the service is held to.
SETTINGS = {
    "KillMode": "mixed",
    "Restart": "on-failure",
    "RestartSec": "60",
    "Nice": "10",
    "IOSchedulingClass": "idle",
    "UMask": "0077",
    "NoNewPrivileges": "yes",
    "LockPersonality": "yes",
    "MemoryDenyWriteExecute": "yes",
    "RestrictAddressFamilies": "AF_UNIX",
    "RestrictNamespaces": "yes",
    "RestrictRealtime": "yes",
    "RestrictSUIDSGID": "yes",
    "SystemCallArchitectures": "native",
    "SystemCallFilter": "@system-service",
    "SystemCallErrorNumber": "EPERM",
}


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

    def test_stays_out_of_the_way_and_is_held_to_what_it_needs(self):
        # No other: what gives a service a view of its own on folders ends it where users can make no namespaces.
        self.assertEqual({name: value for name, value in self.service().items() if name != "ExecStart"}, SETTINGS)

    @unittest.skipIf(why_not(), why_not())
    def test_cannot_do_what_it_does_not_need(self):
        victim = self.tree.folder / "victim"
        victim.touch()
        started = self.tree.folder / "started"
        forbidden = {
            "socket": lambda: socket.socket(socket.AF_INET),
            "chmod": lambda: victim.chmod(0o4755),
            "openat": lambda: os.open(self.tree.folder / "made", os.O_CREAT | os.O_WRONLY, 0o2755),
            "mmap": lambda: mmap.mmap(-1, mmap.PAGESIZE, prot=mmap.PROT_READ | mmap.PROT_WRITE | mmap.PROT_EXEC),
            "sched_setscheduler": lambda: os.sched_setscheduler(0, os.SCHED_FIFO, os.sched_param(1)),
            "chroot": lambda: os.chroot(self.tree.folder),
        }

        def work():
            for attempt in forbidden.values():
                self.assertRaises(OSError, attempt)
            subprocess.run(["unshare", "--user", "touch", started], stderr=subprocess.DEVNULL)
        refused = Confined(self.service()).run(work)
        self.assertEqual([call.split(": ")[1].split("(")[0] for call in refused], [*forbidden, "unshare"])
        self.assertFalse(started.exists())

    def eventually(self, condition):
        for _ in range(6000):
            if condition():
                return
            time.sleep(0.01)
        self.fail("never came true")

    def stay(self, mail, deliver):
        """The client runs until it has read in what there is, and what is delivered then."""
        notes = self.tree.home / "data/mail.vlt"

        def subjects():
            return self.tree.pavex("note", "list", "--db", notes) if notes.exists() else ""
        client = subprocess.Popen(["pavex", "run"], env=self.tree.environment, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, text=True)
        try:
            self.eventually(lambda: "quince" in subjects())
            deliver("medlar")
            self.eventually(lambda: "medlar" in subjects())
        finally:
            client.send_signal(signal.SIGTERM)
            self.assertEqual((client.communicate()[0], client.returncode), ("", 0))

    @unittest.skipIf(why_not(), why_not())
    @unittest.skipIf(is_sanitized(BUILD), "the sanitizers make calls of their own")
    def test_lets_the_client_do_all_its_work(self):
        mail = self.tree.folder / "Mail"
        for folder in ("cur", "new", "tmp"):
            (mail / folder).mkdir(parents=True)

        def deliver(subject):
            (mail / "tmp" / subject).write_text(f"From: a@example.org\nSubject: {subject}\n\nlentils\n")
            (mail / "tmp" / subject).rename(mail / "new" / subject)

        def work():
            os.nice(int(self.service()["Nice"]))
            os.umask(int(self.service()["UMask"], 8))
            deliver("quince")
            self.tree.pavex("watch", mail)
            self.stay(mail, deliver)
            for kind in ("bookmarks", "calendar", "contacts", "documents", "mail"):
                self.tree.pavex("import", SOURCE / "samples" / kind)
            databases = [path for path in sorted((self.tree.home / "data").glob("*.vlt"))
                         if path.name != "bookmark.vlt"]  # the history is indexed unasked
            self.tree.pavex("settings", "--enable", "--yes", *(f"--add={path.name}" for path in databases))
            self.tree.pavex("index", "--full-speed")
            hits = [json.loads(line) for line in self.tree.pavex("search", "--json", "lentils").splitlines()]
            self.assertEqual({hit["title"] for hit in hits}, {"quince", "medlar"})
            self.assertIn("lentils", self.tree.pavex("open", hits[0]["url"]))
            self.tree.pavex("check", "--repair")
        self.assertEqual(Confined(self.service()).run(work), [])


if __name__ == "__main__":
    if shutil.which("systemd-analyze") is None:
        skip("not installed: systemd-analyze")
    unittest.main()
