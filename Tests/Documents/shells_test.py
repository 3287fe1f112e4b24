"""What shells offer for the beginning of a command line, and whether man can read the page: shells_test.py ZELTO"""
import os
import pty
import select
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.append(str(Path(__file__).resolve().parents[1] / "Support"))
from world import redirected

ZELTO = Path(sys.argv[1]).resolve()

# The line up to the cursor; what has to be offered; what must not be.
CASES = [
    ("zelto im", {"import"}, {"items"}),
    ("zelto sna", {"snap", "snapshot"}, {"markdown"}),
    ("zelto --library Lib.ztlibrary impo", {"import"}, set()),
    ("zelto import --du", {"--duplicates"}, {"--deep"}),
    ("zelto import --duplicates ", {"keep", "discard", "relink"}, {"skip"}),
    ("zelto import --unreadable s", {"skip", "stop"}, {"keep"}),
    ("zelto livefolders ", {"add", "remove", "use", "sync"}, {"import"}),
    ("zelto livefolders sync --rem", {"--remove-missing"}, set()),
    ("zelto snap ", {"area", "window", "full", "web"}, {"import"}),
    ("zelto snapshot out.png --theme ", {"dark", "light"}, set()),
    ("zelto export --format jp", {"jpeg", "jp2"}, {"png"}),
    ("zelto defaults read ShowLibraryItems", {"ShowLibraryItemsTitles", "ShowLibraryItemsExtensions"}, {"UseDarkUI"}),
    ("zelto completions ", {"bash", "zsh", "fish"}, set()),
]


class Shells(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.folder = Path(cls.scratch.name)
        for name in ("bin", "config", "data", "run", "place/My pictures"):
            (cls.folder / name).mkdir(parents=True)
        (cls.folder / "bin/zelto").symlink_to(ZELTO)
        (cls.folder / "place/photo one.png").touch()
        cls.environment = {
            **redirected(cls.folder, cls.folder / "run"), "PATH": f"{cls.folder}/bin:/usr/bin:/bin", "TERM": "dumb",
            **{k: v for k, v in os.environ.items() if k.endswith("SAN_OPTIONS")},
        }
        for shell in ("bash", "zsh", "fish"):
            (cls.folder / shell).write_text(cls.run_in_place([str(ZELTO), "completions", shell]))

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    @classmethod
    def run_in_place(cls, command):
        done = subprocess.run(command, cwd=cls.folder / "place", env=cls.environment, text=True, capture_output=True,
                              timeout=120, stdin=subprocess.DEVNULL)
        if done.returncode != 0:
            raise AssertionError(f"{command}: {done.stderr}")
        return done.stdout

    def need(self, program):
        if not shutil.which(program):
            (self.fail if os.environ.get("ZELTO_TESTS_MUST_NOT_SKIP") else self.skipTest)(f"{program} is not installed")

    def check(self, offers):
        for line, wanted, unwanted in CASES:
            with self.subTest(line):
                offered = offers(line)
                self.assertLessEqual(wanted, offered)
                self.assertFalse(unwanted & offered, offered)
                # Whoever completes must not make, lock or open a library.
                self.assertFalse((self.folder / "data/Zelto").exists())

    def in_bash(self, words):
        script = """source ../bash
compopt() { echo "compopt $*"; }
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
_zelto
printf '%s\\n' "${COMPREPLY[@]}"
"""
        return set(self.run_in_place(["bash", "-c", script, "bash", *words]).split("\n"))

    def test_bash(self):
        self.check(lambda line: self.in_bash(line.split(" ")))
        self.assertLessEqual({"discard"}, self.in_bash(["zelto", "import", "--duplicates", "=", "d"]))
        self.assertLessEqual({"keep"}, self.in_bash(["zelto", "import", "--duplicates", "="]))

    def test_bash_leaves_names_of_files_to_the_shell(self):
        for words, wish in ((["zelto", "import", "ph"], "compopt -o default"), (["zelto", "ph"], "compopt -o default"),
                            (["zelto", "export", "--to", ""], "compopt -o dirnames")):
            self.assertIn(wish, self.in_bash(words))
        self.assertEqual(self.in_bash(["zelto", "tag", "--add", "p"]), {""})

    def test_fish(self):
        self.need("fish")

        def offers(line):
            out = self.run_in_place(["fish", "--no-config", "-c", f"source ../fish; complete -C '{line}'"])
            return {row.split("\t")[0] for row in out.split("\n")}

        self.check(offers)
        self.assertIn("photo one.png", offers("zelto import ph"))
        self.assertEqual({row.rstrip("/") for row in offers("zelto export --to ")} - {""}, {"My pictures"})

    def test_zsh(self):
        self.need("zsh")
        with Terminal(["zsh", "-f", "-i"], self.folder / "place", self.environment) as zsh:
            zsh.say("PS1='' PS2='' RPS1=''; unsetopt zle_bracketed_paste prompt_sp; autoload -Uz compinit; "
                    "compinit -u -D; zstyle ':completion:*' list-prompt ''; LISTMAX=100000; "
                    # Listed below the line is hard to read: what is offered is written down instead.
                    "compadd() { local -a found; builtin compadd -O found \"$@\"; print -rl -- $found >>../offered; "
                    "builtin compadd \"$@\"; }; source ../zsh; bindkey '^I' complete-word; : >../ready")
            zsh.wait_for(self.folder / "ready")

            def offers(line):
                written, done = self.folder / "offered", self.folder / "done"
                for _ in range(5):  # a completion ends early where keys wait to be read
                    written.write_text("")
                    done.unlink(missing_ok=True)
                    zsh.send(line + "\t\x15: >../done\n")
                    zsh.wait_for(done)
                    if written.read_text().strip():
                        break
                return set(written.read_text().split("\n"))

            self.check(offers)
            self.assertIn("photo one.png", offers("zelto import ph"))
            self.assertNotIn("photo one.png", offers("zelto export --to "))

    def test_manual(self):
        page = self.folder / "zelto.1"
        page.write_text(self.run_in_place([str(ZELTO), "man"]))
        self.assertTrue(page.read_text().isascii())
        self.need("man")
        shown = subprocess.run(["man", "--warnings", "-l", str(page)], env={**self.environment, "MANWIDTH": "100"}, text=True,
                               capture_output=True, timeout=60)
        self.assertEqual((shown.returncode, shown.stderr), (0, ""))
        words = " ".join(shown.stdout.split())
        for text in ("zelto livefolders add PATH…", "--duplicates {keep,discard,relink}", "'#tag draft -#width<1000'",
                     "EXIT STATUS", "#rating=, #r= 0 … 5"):
            self.assertIn(text, words)
        self.assertIn("keep a library", subprocess.run(["lexgrog", str(page)], text=True, capture_output=True).stdout)


class Terminal:
    """A shell as a person has it, behind a pseudo-terminal."""

    def __init__(self, command, folder, environment):
        self.process, self.end = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            os.execvpe(command[0], command, environment)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.end)  # the shell ends with its terminal
        os.waitpid(self.process, 0)

    def send(self, text):
        os.write(self.end, text.encode())

    def say(self, line):
        self.send(line + "\n")

    def wait_for(self, path):
        heard, latest = b"", time.monotonic() + 60
        while not path.exists():
            if select.select([self.end], [], [], 0.02)[0]:
                heard += os.read(self.end, 65536)
            if time.monotonic() > latest:
                raise AssertionError(f"the shell came to nothing: {heard!r}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
