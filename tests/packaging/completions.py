"""Each shell completes every command, option and value that the program's help names: completions.py BUILD SHELL"""
import os
import pathlib
import pty
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

from installed import skip

BUILD = pathlib.Path(sys.argv.pop(1))
SHELL = sys.argv.pop(1)
PROGRAM = BUILD / "bin/pavex"


class Help:
    """What a command's help names."""

    def __init__(self, path):
        text = subprocess.run([PROGRAM, *path, "--help"], check=True, capture_output=True, text=True).stdout
        self.path = path
        self.commands = self._names(text, "Subcommands", r"  (\w+)")
        self.options = {}  # name to what the help says after it
        for line in self._section(text, "Options"):
            if match := re.match(r"  (-\S+)(.*)", line):
                for name in match[1].split(","):
                    self.options[name] = match[2]
        self.positionals = self._names(text, "Positionals", r"  (\w+)")

    @staticmethod
    def _section(text, title):
        found = re.search(rf"^{title}:\n((?:  .*\n)+)", text, re.M)
        return found[1].splitlines() if found else []

    @classmethod
    def _names(cls, text, title, pattern):
        return [match[1] for line in cls._section(text, title) if (match := re.match(pattern, line))]

    def choices(self, option):
        found = re.search(r"\{(.*?)\}", self.options[option])
        return found[1].split(",") if found else []

    def takes(self, *types):
        return [name for name, rest in self.options.items() if re.match(rf" ({'|'.join(types)})( |$)", rest)]


def every_help(path=()):
    own = Help(list(path))
    yield own
    for command in own.commands:
        yield from every_help((*path, command))


class Bash:
    """Calls the function that is registered for the program, as bash does."""
    SCRIPT = """
        source "$1"
        compopt() { :; }
        [[ $(complete -p pavex) == "complete -F _pavex pavex" ]] || exit 1
        while read -r line; do
            read -ra COMP_WORDS <<< "${line//=/ = }"
            [[ $line == *[\\ =] ]] && COMP_WORDS+=("")
            COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
            COMPREPLY=()
            _pavex
            printf '%s\\n' "${COMPREPLY[@]}" "--end--"
        done"""

    def __init__(self, folder, environment):
        self.process = subprocess.Popen(["bash", "--norc", "-c", self.SCRIPT.replace("read -r line", "IFS= read -r line"),
                                         "bash", BUILD / "share/completions/pavex.bash"],
                                        cwd=folder, env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def complete(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        words = set()
        while (word := self.process.stdout.readline()) != "--end--\n":
            if not word:
                raise AssertionError("bash ended")
            words.add(word.strip())
        return words - {""}

    def close(self):
        self.process.stdin.close()
        self.process.stdout.close()
        self.process.wait()


class Fish:
    def __init__(self, folder, environment):
        self.folder = folder
        self.environment = environment

    def complete(self, line):
        script = 'source $argv[1]; complete -C "$argv[2]"'
        done = subprocess.run(["fish", "--no-config", "-c", script, BUILD / "share/completions/pavex.fish", line],
                              cwd=self.folder, env=self.environment, check=True, capture_output=True, text=True)
        assert done.stderr == "", done.stderr
        return {word.split("\t")[0].removeprefix(line.split(" ")[-1].split("=")[0] + "=")
                for word in done.stdout.splitlines()}

    def close(self):
        pass


class Zsh:
    """An interactive zsh on a terminal of its own, in which a key writes the matches to a file."""
    SETUP = """
        PS1= RPS1= ZLE_RPROMPT_INDENT=0
        fpath=({functions} $fpath)
        autoload -Uz compinit && compinit -u -D
        setopt no_beep no_auto_list no_auto_menu
        LISTMAX=10000
        compadd() {{
            if [[ ${{@[1,(i)(-|--)]}} != *-[OAD]* ]]; then
                local -a matches
                builtin compadd -A matches "$@"
                captured+=("${{(@Q)matches}}")
            fi
            builtin compadd "$@"
        }}
        capture() {{
            captured=()
            _main_complete
            print -rl -- $captured >| $answer.part
            mv $answer.part $answer
        }}
        typeset -ga captured
        zle -C capture complete-word capture
        bindkey '^T' capture
        answer={answer}; print ready >| $answer
    """

    def __init__(self, folder, environment):
        self.answer = pathlib.Path(environment["HOME"]) / "answer"
        setup = pathlib.Path(environment["HOME"]) / "setup.zsh"
        setup.write_text(self.SETUP.format(functions=BUILD / "share/completions", answer=self.answer))
        self.pid, self.terminal = pty.fork()
        if self.pid == 0:
            os.chdir(folder)
            os.execvpe("zsh", ["zsh", "-f", "-i"], environment)
        self.send(f"source {setup}\n")
        self.wait()

    def send(self, text):
        os.write(self.terminal, text.encode())

    def wait(self):
        for _ in range(6000):
            if self.answer.exists():
                words = set(self.answer.read_text().splitlines())
                self.answer.unlink()
                return words
            time.sleep(0.01)
        raise AssertionError("zsh gave no answer")

    def complete(self, line):
        self.send("\x15" + line + "\x14")
        return {word.rstrip("=") for word in self.wait()} - {""}

    def close(self):
        self.send("\x15exit\n")
        os.waitpid(self.pid, 0)
        os.close(self.terminal)


class Completions(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="pavex-completions-")))
        (cls.folder / "here/below").mkdir(parents=True)
        for name in ("one.vlt", "text.txt"):
            (cls.folder / "here" / name).touch()
        for home, name in (("home", "mail.vlt"), ("other", "names.vlt")):
            (cls.folder / home / "data").mkdir(parents=True)
            (cls.folder / home / "data" / name).touch()
        environment = {"PATH": os.environ["PATH"], "HOME": str(cls.folder), "TERM": "dumb", "LC_ALL": "C.UTF-8",
                       "PAVEX_HOME": str(cls.folder / "home")}
        cls.shell = {"bash": Bash, "fish": Fish, "zsh": Zsh}[SHELL](cls.folder / "here", environment)
        cls.addClassCleanup(cls.shell.close)
        cls.helps = list(every_help())

    def complete(self, help_, rest):
        return self.shell.complete(" ".join(["pavex", *help_.path, rest]))

    def test_complete_every_command(self):
        for each in self.helps:
            if each.commands:
                self.assertEqual({word for word in self.complete(each, "") if word[0] != "-"}, set(each.commands))
        self.assertEqual(self.shell.complete("pavex se"), {"search", "settings"})

    def test_complete_every_option_of_every_command_and_no_other(self):
        for each in self.helps:
            self.assertIn("--help", each.options)
            offered = self.complete(each, "-") | self.complete(each, "--")
            self.assertEqual(offered - {"-h"}, set(each.options) - {"-h"}, each.path)

    def test_complete_every_choice_of_an_option(self):
        chosen = 0
        for each in self.helps:
            for option in each.options:
                if choices := each.choices(option):
                    self.assertEqual(self.complete(each, f"{option} "), set(choices), (each.path, option))
                    self.assertEqual(self.complete(each, f"{option}={choices[0][:1]}"),
                                     {choice for choice in choices if choice[0] == choices[0][0]}, (each.path, option))
                    chosen += 1
        self.assertGreater(chosen, 5)

    def test_complete_databases_from_here_and_from_the_data_directory(self):
        for each in self.helps:
            for option in each.takes("FILE", r"FILE\.vlt"):
                offered = self.complete(each, f"{option} ")
                self.assertLessEqual({"one.vlt", "mail.vlt"}, offered, (each.path, option))
        offered = self.shell.complete(f"pavex --home {self.folder}/other note list --db ")
        self.assertIn("names.vlt", offered)
        self.assertNotIn("mail.vlt", offered)

    def test_complete_files_to_import_and_folders_for_a_home(self):
        offered = {word.rstrip("/") for word in self.shell.complete("pavex import ")}
        self.assertLessEqual({"one.vlt", "text.txt", "below"}, offered)
        offered = {word.rstrip("/") for word in self.shell.complete("pavex --home ")}
        self.assertIn("below", offered)
        self.assertNotIn("text.txt", offered)

    def test_know_the_command_behind_a_home_and_other_values(self):
        self.assertEqual(self.shell.complete("pavex --home note search --kind ma"), {"mail"})
        self.assertEqual(self.shell.complete("pavex --home=x search --kind ma"), {"mail"})
        self.assertEqual(self.shell.complete("pavex search --from index --kind jou"), {"journal"})


if __name__ == "__main__":
    if shutil.which(SHELL) is None:
        skip(f"{SHELL} is not installed")
    unittest.main()
