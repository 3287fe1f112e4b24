"""Runs every command line that a document shows, in a world of its own for each: documents_test.py ZELTO ROOT

A block of shell in README.md or docs that has a line with `zelto` or `./dev zelto` is run as it stands. In the source of a
document, `<!-- files: a.png Folder/ -->` names what is there beforehand, and `<!-- not run: network -->` before a block
says why it cannot be run here; those are listed."""
import re
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.append(str(Path(__file__).resolve().parents[1] / "Support"))
from world import World

ZELTO, ROOT = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
REASONS = {"network", "display", "browser", "service"}
COMMAND = re.compile(r"^\s*(?:\$ )?(?:\w+=\S+ )*(?:\./dev )?zelto(?: |$)", re.M)
BLOCK = re.compile(r"(?:<!-- not run: (?P<reason>.*?) -->\n\n?)?^```(?P<language>\w*)\n(?P<text>.*?)^```$", re.M | re.S)
SHELLS = {"", "sh", "bash", "shell", "console"}


def blocks(source):
    """Each block of shell that names the program, and why it is not run."""
    for block in BLOCK.finditer(source):
        if block["language"] in SHELLS and COMMAND.search(block["text"]):
            yield re.sub(r"^\$ ", "", block["text"], flags=re.M), block["reason"]


def run(source):
    """What went wrong, and what was not run."""
    problems, left = [], []
    with World(ZELTO) as world:
        for names in re.findall(r"<!-- files: (.*?) -->", source, re.S):
            for name in names.split():
                world.make(name)
        door = world.home / "dev"
        door.write_text('#!/bin/sh\n[ "$1" = zelto ] || exit 2\nshift\nexec zelto "$@"\n')
        door.chmod(0o755)
        for script, reason in blocks(source):
            if reason is None:
                done = world.run(script=script)
                if done.returncode != 0:
                    problems.append(f"{script}exit status {done.returncode}: {done.stderr}")
            elif reason in REASONS:
                left.append((reason, script))
            else:
                problems.append(f"{script}“{reason}” is none of {', '.join(sorted(REASONS))}")
    return problems, left


def unknown(text, commands):
    """What a sentence calls a command or an option of one, and is none. `commands` are their pages."""
    wrong = []
    for named in re.findall(r"`zelto ([a-z][^`\n]*)`", text):
        words = re.match(r"[a-z-]+(?: [a-z-]+)*", named)[0].split()
        known = next((" ".join(words[:count]) for count in range(len(words), 0, -1) if " ".join(words[:count]) in commands), None)
        if known is None or any(option not in commands[known] for option in re.findall(r"--[a-z-]+", named)):
            wrong.append(named)
    return wrong


def documents():
    return [ROOT / "README.md", *sorted((ROOT / "docs").rglob("*.md"))]


class Documents(unittest.TestCase):
    def test_commands_do_what_is_shown(self):
        count = 0
        for document in documents():
            source = document.read_text()
            with self.subTest(document.relative_to(ROOT)):
                problems, left = run(source) if any(blocks(source)) else ([], [])
                for reason, script in left:
                    print(f"{document.relative_to(ROOT)}: not run ({reason}): {' ; '.join(script.split(chr(10))).rstrip(' ;')}")
                self.assertEqual(problems, [])
                count += len(list(blocks(source))) - len(left)
        self.assertGreater(count, 7)

    def test_a_wrong_command_is_noticed(self):
        for text, wrong in (("zelto items\n", False), ("./dev zelto itmes\n", True), ("$ zelto import missing.png\n", True),
                            ("ls\nLC_ALL=C zelto verify\nzelto export --to\n", True)):
            self.assertEqual(bool(run(f"```sh\n{text}```\n")[0]), wrong, text)
        self.assertEqual(run("<!-- files: a.png -->\n```\nzelto import a.png\n```\n"), ([], []))
        self.assertEqual(run("<!-- not run: display -->\n\n```sh\nzelto snap area\n```\n")[1], [("display", "zelto snap area\n")])
        self.assertTrue(run("<!-- not run: tired -->\n```sh\nzelto items\n```\n")[0])

    def test_sentences_name_commands_that_are_there(self):
        pages = re.split(r"^## `zelto ([^`]+)`$", (ROOT / "docs/COMMANDS.md").read_text(), flags=re.M)[1:]
        commands = dict(zip(pages[::2], pages[1::2]))
        self.assertEqual(unknown("`zelto snap web URL [--psd]`, `zelto livefolders add`, `zelto itmes`, `zelto items --jsno`", commands),
                         ["itmes", "items --jsno"])
        for document in [*documents(), ROOT / "CONTRIBUTING.md"]:
            self.assertEqual(unknown(document.read_text(), commands), [], document.relative_to(ROOT))

    def test_links_lead_somewhere(self):
        for document in documents():
            for link in re.findall(r"\]\(([^)#:\s]+)(?:#[^)]*)?\)", document.read_text()):
                with self.subTest(f"{document.relative_to(ROOT)}: {link}"):
                    self.assertTrue((document.parent / link).exists())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
