"""What the packaging tests share: the program installed into a tree of the test's own, and run from there."""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = 77  # exit status that the test runner takes for a skipped test


def skip(reason):
    print("skipped:", reason)
    sys.exit(SKIPPED)


def is_sanitized(build):
    cache = (pathlib.Path(build) / "CMakeCache.txt").read_text()
    return not re.search(r"^TORVIK_SANITIZE:STRING=$", cache, re.M)


class Tree:
    """An installed tree below a folder that goes with it.  It was moved after it was installed."""

    def __init__(self, build):
        self._folder = tempfile.TemporaryDirectory(prefix="pavex-installed-")
        self.folder = pathlib.Path(self._folder.name)
        first = self.folder / "first"
        subprocess.run(["cmake", "--install", build, "--strip", "--prefix", first], check=True, stdout=subprocess.DEVNULL)
        self.prefix = self.folder / "a new place"
        first.rename(self.prefix)
        self.home = self.folder / "home"
        self.environment = {
            "PATH": f"{self.prefix}/bin:{os.environ['PATH']}",
            "HOME": str(self.folder),
            "XDG_CONFIG_HOME": str(self.folder / "config"),
            "XDG_DATA_HOME": str(self.prefix / "share"),
            "XDG_CACHE_HOME": str(self.folder / "cache"),
            "XDG_STATE_HOME": str(self.folder / "state"),
            "PAVEX_HOME": str(self.home),
            "LC_ALL": "C.UTF-8",
        }
        for name in ("ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._folder.cleanup()

    def run(self, *command, **variables):
        """Standard output of a command that has to succeed; variables are added to its environment."""
        done = subprocess.run([str(word) for word in command], env=self.environment | variables, text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if done.returncode != 0:
            raise AssertionError(f"{command}: exit {done.returncode}\n{done.stdout}{done.stderr}")
        return done.stdout

    def pavex(self, *arguments, **variables):
        return self.run("pavex", *arguments, **variables)

    def index_samples(self, *sources):
        """Imports these samples, which are mail or contacts, and indexes them."""
        for source in sources:
            self.pavex("import", SOURCE / "samples" / source)
        databases = sorted((self.home / "data").glob("*.vlt"))
        self.pavex("settings", "--enable", "--yes", *(f"--add={path.name}" for path in databases))
        self.pavex("index", "--full-speed")
