"""Runs the tool over a small project whose lines say what is to become of each fault: mutate_test.py TOOL WORK"""
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

EXAMPLE = Path(__file__).resolve().parent / "Example"
SHELF = "Kit/Shelf/Shelf.cpp"
KINDS = {"a condition turned": "condition", "a bound moved": "bound", "a call dropped": "call", "an error ignored": "error",
         "two statements swapped": "swap"}
tool, work = Path(sys.argv[1]), Path(sys.argv[2])


def told():
    """{(line, kind): the sorted verdicts}, as the comments of the example tell"""
    out = {}
    for number, line in enumerate((EXAMPLE / SHELF).read_text().splitlines(), 1):
        comment = line.partition("// ")[2]
        for kind, verdict in re.findall(r"(\w+): ([a-z ]+)", comment):
            if verdict != "equivalent":
                out.setdefault((number, kind), []).append(verdict)
    return {key: sorted(verdicts) for key, verdicts in out.items()}


def found(output):
    out = {}
    for number, kind in re.findall(rf"^noticed \(\w+\): {SHELF}:(\d+): (.*)$", output, re.M):
        out.setdefault((int(number), KINDS[kind]), []).append("noticed")
    for number, kind, verdict in re.findall(rf"^{SHELF}:(\d+): (.*?): survived(, never executed)?$", output, re.M):
        out.setdefault((int(number), KINDS[kind]), []).append("never executed" if verdict else "survived")
    return {key: sorted(verdicts) for key, verdicts in out.items()}


class Mutate(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(work, ignore_errors=True)
        cls.source = work / "source"
        shutil.copytree(EXAMPLE, cls.source)
        (cls.source / "CMakeLists.txt.in").rename(cls.source / "CMakeLists.txt")

    def mutate(self, *arguments):
        command = [sys.executable, tool, "--source", self.source, "--work", work / "work", "--seed", "1", "--verbose", *arguments]
        return subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def files(self):
        return {path.relative_to(self.source): path.read_bytes() for path in self.source.rglob("*") if path.is_file()}

    def test_every_fault_is_put_in_and_judged(self):
        before = self.files()
        done = self.mutate("Kit/Shelf", "1000")
        self.assertEqual(found(done.stdout), told(), done.stdout)
        self.assertEqual(done.returncode, 1, done.stdout)  # fewer than wanted are noticed
        self.assertIn("-    m_books.clear();", done.stdout)
        self.assertEqual(self.files(), before)

    def test_what_was_left_is_judged_again(self):
        first = self.mutate("Kit/Shelf", "1000")
        left = {place: [v for v in verdicts if v != "noticed"] for place, verdicts in found(first.stdout).items() if set(verdicts) != {"noticed"}}
        equivalents = self.source / "Tests/equivalent-mutants"
        old = equivalents.read_text()
        equivalents.write_text(old + f"{SHELF} | call | note(book);              // call: survived | nobody reads it\n")
        try:
            again = self.mutate("--again")
        finally:
            equivalents.write_text(old)
        named = (next(n for n, line in enumerate((EXAMPLE / SHELF).read_text().splitlines(), 1) if "note(book);" in line), "call")
        self.assertIn(named, left)
        self.assertEqual(found(again.stdout), {place: verdicts for place, verdicts in left.items() if place != named}, again.stdout)
        totals = [int(re.search(r"noticed \d+ of (\d+)", run.stdout)[1]) for run in (first, again)]
        self.assertEqual(totals[0] - 1, totals[1])

    def test_only_changed_lines_get_faults(self):
        def git(*arguments):
            subprocess.run(["git", "-c", "user.name=n", "-c", "user.email=e", *arguments], cwd=self.source, check=True, capture_output=True)

        git("init")
        git("add", ".")
        git("commit", "-m", "Begin")
        path = self.source / SHELF
        old = path.read_text()
        path.write_text(old.replace("    return lowest;", "    return lowest > 90 ? 90 : lowest;"))
        try:
            done = self.mutate("Kit/Shelf", "1000", "--since", "HEAD")
        finally:
            path.write_text(old)
            shutil.rmtree(self.source / ".git")
        self.assertEqual({line for line, _ in found(done.stdout)}, {51}, done.stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
