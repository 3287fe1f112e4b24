#!/usr/bin/env python3
"""Puts faults into the code, one at a time, and shows which ones no test notices.

A copy of the sources below build/mutate gets all faults of the run at once, each behind a switch, and is built once. Then the
test programs of the fault's folder run with one fault switched on: those tests that come by its place, quick ones first; all of
them where only what stands around the tests comes by it; if none notices, the programs of the next folders up
(Tests/Mutation/folders says which). A test program that fails, crashes or hangs has noticed. Faults of one file that do not compile are dropped. The working tree is not touched,
and a test program can write only into a scratch folder of its own.

Kinds of faults:
  condition   a condition of an if, a ?:, or an operand of && or || is turned
  bound       < becomes <= (and so on), or a number that is compared, added or counted from is one more
  call        a call whose result is not used is dropped
  error       an early return for an error does not happen, or a function that hands on a success always says yes
  swap        two calls that follow each other change places

Left out: logging (the q… macros, zqTrace), text for people (zqLocalized, zqFormat, tr), reserve and squeeze, names and tips of
widgets, calls on painters, palettes and layouts, setters and assignments in a row, swapping two calls neither of which changes
what the other looks at (unless the names of both say that they reach the disk, a thread or a process), what a macro holds,
constexpr, static_assert, case labels, tables and declarations, headers, generated entity bases. What changes nothing, whatever the tests: Tests/equivalent-mutants; it is not counted.

Ends with 1 when fewer than 85 % were noticed."""
import argparse
import fcntl
import pickle
import random
import re
import signal
import subprocess
import sys
from concurrent.futures import ProcessPoolExecutor, ThreadPoolExecutor
from pathlib import Path

from fault_runs import Rooms, judge
from faulty_tree import FaultyTree, files_of, overlaps_in_part
from places import KINDS, find_places

WANTED = 85


def read_folders(path):
    """[(folder, own test programs, those of the next folders up)], the most particular folder first"""
    rows = []
    for line in path.read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            folder, own, further = (part.strip() for part in line.split("|"))
            rows.append((folder, own.split(), further.split()))
    return sorted(rows, key=lambda row: -len(row[0]))


def read_equivalents(path):
    """{(file, kind, text of the line)}"""
    if not path.is_file():
        return set()
    out = set()
    for line in path.read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            parts = re.fullmatch(r"(\S+) \| (\w+) \| (.+) \| (.+)", line)  # a line of code may have such bars, too
            if not parts or parts[2] not in KINDS:
                raise SystemExit(f"{path.name}: a line is FILE | KIND | TEXT OF THE LINE | WHY, not {line}")
            out.add((parts[1], parts[2], parts[3].strip()))
    return out


def changed_lines(source, revision):
    """{file: lines that differ from the revision}"""
    done = subprocess.run(["git", "-C", source, "diff", "-U0", "--no-color", "--no-ext-diff", revision, "--", "*.cpp"], text=True, capture_output=True)
    if done.returncode:
        raise SystemExit(done.stderr)
    lines, name = {}, None
    for line in done.stdout.splitlines():
        if line.startswith("+++ "):
            name = line[6:]
        elif match := re.match(r"@@ -\S+ \+(\d+)(?:,(\d+))?", line):
            first, count = int(match[1]), int(match[2] or 1)
            lines.setdefault(name, set()).update(range(first, first + count))
    return lines


def chosen_files(names, texts, count, picks):
    """Files by weight of their lines, so that each line is as likely; not more than are of use."""
    if count >= len(names):
        return names
    return sorted(set(picks.choices(names, [texts[name].count(b"\n") for name in names], k=count)))


def choose(places, count, picks):
    """As many of each kind as there are; places that overlap in part cannot be in one build."""
    by_kind = {kind: [place for place in places if place.kind == kind] for kind in KINDS}
    for found in by_kind.values():
        picks.shuffle(found)
    chosen, per_file = [], {}
    while len(chosen) < count and any(by_kind.values()):
        for found in by_kind.values():
            if found and len(chosen) < count:
                place = found.pop()
                mine = per_file.setdefault(place.file, [])
                if not any(overlaps_in_part(place, other) for other in mine):
                    mine.append(place)
                    chosen.append(place)
    return {number: place for number, place in enumerate(sorted(chosen, key=lambda p: (p.file, p.start)), 1)}


def as_diff(place, text):
    """The lines that the place touches, without and with the fault"""
    first, last = text.rfind(b"\n", 0, place.start) + 1, (text.find(b"\n", place.end) + 1 or len(text) + 1) - 1
    forms = ("-", text[first:last]), ("+", text[first:place.start] + place.faulty + text[place.end:last])
    return "\n".join(f"    {sign}{line}".rstrip() for sign, lines in forms for line in lines.decode().split("\n"))


class Run:
    def __init__(self, options):
        self.options = options
        self.source = Path(options.source).resolve()
        self.folders = read_folders(self.source / "Tests/Mutation/folders")
        self.equivalents = read_equivalents(self.source / "Tests/equivalent-mutants")
        self.picks = random.Random(options.seed)
        self.baselines = {}
        self.kept = Path(options.work).resolve() / "faults"

    def tests_for(self, name):
        return next(((own, further) for folder, own, further in self.folders if name.startswith(folder + "/")), ([], []))

    def leave_out_unknown(self, known):
        named = {test for _, own, further in self.folders for test in own + further}
        if named - known:
            print(f"there is no test {', '.join(sorted(named - known))}: see Tests/Mutation/folders", flush=True)
        self.folders = [(folder, [t for t in own if t in known], [t for t in further if t in known]) for folder, own, further in self.folders]

    def sources(self):
        wanted = self.options.folder.rstrip("/")
        names = [name for name in files_of(self.source) if name.endswith(".cpp") and "/_" not in name and self.tests_for(name)[0]]
        return [name for name in names if not wanted or name == wanted or name.startswith(wanted + "/")]

    def find(self, tree):
        names = [name for name in self.sources() if name in tree.arguments]
        changed = changed_lines(self.source, self.options.since) if self.options.since else None
        if changed is not None:
            names = [name for name in names if name in changed]
        if not names:
            raise SystemExit("There is no source file to put faults into.")
        self.texts = {name: (self.source / name).read_bytes() for name in names}
        looked_at = chosen_files(names, self.texts, self.options.count, self.picks) if changed is None else names
        with ProcessPoolExecutor(self.options.jobs) as pool:
            found = list(pool.map(find_places, [str(tree.tree / n) for n in looked_at], looked_at, [tree.arguments[n] for n in looked_at]))
        for _, failure in found:
            if failure:
                print(f"cannot be read: {failure}", file=sys.stderr)
        places = [place for some, _ in found for place in some if changed is None or place.line in changed[place.file]]
        kept = [place for place in places if not self.is_equivalent(place)]
        print(f"{len(places)} places in {len(looked_at)} files, {len(places) - len(kept)} of them equivalent; seed {self.options.seed}", flush=True)
        return choose(kept, self.options.count, self.picks)

    def remember(self, total, survivors):
        self.kept.write_bytes(pickle.dumps((self.options.seed, total, survivors, {place.file: self.texts[place.file] for place in survivors.values()})))

    def find_again(self):
        """What the last run left, without what is named as equivalent by now; and how many faults there were."""
        if not self.kept.is_file():
            raise SystemExit("There is no run before this one to go on with.")
        self.options.seed, total, faults, self.texts = pickle.loads(self.kept.read_bytes())
        changed = sorted(name for name, text in self.texts.items() if not (self.source / name).is_file() or (self.source / name).read_bytes() != text)
        if changed:
            raise SystemExit(f"These have changed since, so that their faults are no longer the same: {' '.join(changed)}")
        kept = {number: place for number, place in faults.items() if not self.is_equivalent(place)}
        total -= len(faults) - len(kept)
        print(f"{len(kept)} of {total} faults were not noticed; seed {self.options.seed}", flush=True)
        return kept, total

    def is_equivalent(self, place):
        line = self.texts[place.file].splitlines()[place.line - 1].decode().strip()
        return (place.file, place.kind, line) in self.equivalents

    def baseline(self, rooms, programs, names):
        missing = [name for name in names if name in programs and name not in self.baselines]
        with ThreadPoolExecutor(self.options.jobs) as pool:
            for name, found in zip(missing, pool.map(lambda n: rooms.baseline(programs[n]), missing)):
                self.baselines[name] = found
                if found.failing:
                    print(f"{name} fails without a fault, left out: {' '.join(found.failing)}", flush=True)
                if found.trouble:
                    print(f"{name} {found.trouble}", flush=True)

    def judged(self, rooms, programs, number, names):
        """How the fault is noticed by the named programs: by tests that come by it or, where none does and the program comes by
        it all the same, by all."""
        for name in names:
            baseline = self.baselines.get(name)
            if baseline and number in baseline.somewhere:
                tests = baseline.tests_reaching(number) or sorted(baseline.seconds, key=baseline.seconds.get)
                if word := judge(rooms, programs[name], baseline, number, tests):
                    return word
        return None

    def round(self, rooms, programs, faults, names_of):
        """Leaves in `faults` those that nothing noticed."""
        def one(item):
            return item[0], self.judged(rooms, programs, item[0], names_of(item[1].file))

        with ThreadPoolExecutor(self.options.jobs) as pool:
            try:
                for number, word in pool.map(one, list(faults.items())):
                    if word:
                        self.tell(word, faults.pop(number))
            except BaseException:
                rooms.stop()
                raise

    def tell(self, word, place):
        if self.options.verbose:
            print(f"noticed ({word}): {place.file}:{place.line}: {KINDS[place.kind]}\n{as_diff(place, self.texts[place.file])}", flush=True)

    def test(self, tree, faults):
        files = {place.file for place in faults.values()}
        own = sorted({test for name in files for test in self.tests_for(name)[0]})
        further = sorted({test for name in files for test in self.tests_for(name)[1]})
        rooms = Rooms(tree.build)
        try:
            programs = tree.programs()
            self.baseline(rooms, programs, own)
            self.round(rooms, programs, faults, lambda name: self.tests_for(name)[0])
            if faults and further:
                tree.make_programs(further)
                programs = tree.programs()
                self.baseline(rooms, programs, further)
                self.round(rooms, programs, faults, lambda name: self.tests_for(name)[1])
        finally:
            rooms.close()

    def run(self):
        everything = sorted({test for _, own, further in self.folders for test in own + further})
        work = Path(self.options.work).resolve()
        work.mkdir(parents=True, exist_ok=True)
        with open(work / "lock", "w") as lock:
            try:
                fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
            except BlockingIOError:
                raise SystemExit(f"Another run is using {work}. Wait until it has ended.")
            return self.run_in(FaultyTree(self.source, work, everything))

    def run_in(self, tree):
        tree.copy()
        tree.configure()
        self.leave_out_unknown(tree.known_tests())
        faults, total = self.find_again() if self.options.again else (self.find(tree), 0)
        own = sorted({test for place in faults.values() for test in self.tests_for(place.file)[0]})
        print(f"building {len(faults)} faults for {' '.join(own)}", flush=True)
        dropped = tree.make(faults, self.texts, own)
        if dropped:
            print(f"{len(dropped)} do not compile and are dropped", flush=True)
        total = total or len(faults)
        try:
            self.test(tree, faults)
        finally:
            self.remember(total, faults)
        return self.report(total, faults)

    def report(self, total, survivors):
        for number, place in survivors.items():
            reached = any(number in baseline.somewhere for baseline in self.baselines.values())
            word = "survived" if reached else "survived, never executed"
            print(f"\n{place.file}:{place.line}: {KINDS[place.kind]}: {word}\n{as_diff(place, self.texts[place.file])}")
        rate = 100 * (total - len(survivors)) / total if total else 100
        print(f"\nnoticed {total - len(survivors)} of {total} faults: {rate:.0f} % (at least {WANTED} % are wanted); seed {self.options.seed}")
        return 0 if rate >= WANTED else 1


def main():
    parser = argparse.ArgumentParser(prog="./dev mutate", description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", nargs="?", default="", help="a folder or a source file (default: all)")
    parser.add_argument("count", nargs="?", type=int, default=20, help="how many faults (default: 20)")
    parser.add_argument("--since", metavar="REV", help="only in lines that differ from this revision")
    parser.add_argument("--again", action="store_true", help="judge only what the last run left, by the tests as they are now")
    parser.add_argument("--seed", type=int, default=random.randrange(1_000_000), help="of the choice; printed by each run")
    parser.add_argument("--jobs", type=int, default=2, help="test programs at a time (default: 2)")
    parser.add_argument("--verbose", action="store_true", help="show the faults that were noticed too")
    parser.add_argument("--source", default=Path(__file__).resolve().parents[2], help=argparse.SUPPRESS)
    parser.add_argument("--work", default="build/mutate", help=argparse.SUPPRESS)
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # tidies up as after Ctrl-C
    if options.folder.isdigit():  # ./dev mutate 200
        options.folder, options.count = "", int(options.folder)
    return Run(options).run()


if __name__ == "__main__":
    sys.exit(main())
