"""The copied tree that holds all faults of a run, and its one build."""
import json
import os
import re
import shlex
import shutil
import subprocess
from pathlib import Path

TOOL = Path(__file__).resolve().parent


def run(command, **options):
    return subprocess.run([str(part) for part in command], text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)


def files_of(source):
    inside = subprocess.run(["git", "-C", source, "rev-parse", "--show-toplevel"], text=True, capture_output=True)
    if inside.returncode == 0 and Path(inside.stdout.strip()) == source:
        names = subprocess.run(["git", "-C", source, "ls-files", "-z", "-co", "--exclude-standard"], text=True, capture_output=True, check=True)
        return sorted(name for name in names.stdout.split("\0") if name and (source / name).is_file())
    return sorted(str(path.relative_to(source)) for path in source.rglob("*") if path.is_file())


def overlaps_in_part(one, two):
    return one.start < two.end and two.start < one.end and not (one.start >= two.start and one.end <= two.end) \
        and not (two.start >= one.start and two.end <= one.end)


def with_faults(text, faults):
    """The text with each (number, place) switched in; an outer fault's own form holds the text without inner ones."""
    ordered = sorted(faults, key=lambda fault: (fault[1].start, -fault[1].end))

    def written(low, high, inside):
        result, at = b"", low
        while inside:
            number, place = inside[0]
            within = 1
            while within < len(inside) and inside[within][1].start < place.end:
                within += 1
            switched = str(number).encode()
            result += text[at:place.start] + place.before.replace(b"zqMutant(#)", b"zqMutant(" + switched + b")")
            result += written(place.start, place.end, inside[1:within])
            result += place.after.replace(b"zqMutant(#)", b"zqMutant(" + switched + b")")
            at, inside = place.end, inside[within:]
        return result + text[at:high]

    return b'#include "%s"\n#line 1\n' % str(TOOL / "ZQMutant.h").encode() + written(0, len(text), ordered)


class FaultyTree:
    def __init__(self, source, work, tests):
        self.source, self.tree, self.build = source, work / "tree", work / "build"
        self.tests = tests
        self.tree.mkdir(parents=True, exist_ok=True)

    def copy(self):
        names = files_of(self.source)
        for name in names:
            self.write(name, (self.source / name).read_bytes(), self.source / name)
        known = set(names)
        for path in list(self.tree.rglob("*")):
            if path.is_file() and str(path.relative_to(self.tree)) not in known:
                path.unlink()

    def write(self, name, content, like=None):
        """Keeps the time of what is as it should be: only what changed is built again."""
        path = self.tree / name
        if path.is_file() and path.read_bytes() == content:
            return
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        if like:
            shutil.copymode(like, path)

    def configure(self):
        command = ["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS=-w",
                   "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", f"-DCMAKE_PROJECT_INCLUDE={TOOL / 'rooms.cmake'}",
                   f"-DMUTATE_TOOL={TOOL}", f"-DMUTATE_TESTS={';'.join(self.tests)}"]
        if shutil.which("ccache"):
            command.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        done = run(command)
        if done.returncode:
            raise SystemExit(f"The copied tree cannot be configured:\n{done.stdout}")
        self.arguments = {}
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            words = shlex.split(entry["command"])
            kept = [word for word in words if word.startswith(("-I", "-D", "-std"))]
            kept += [part for at, word in enumerate(words) if word == "-isystem" for part in (word, words[at + 1])]
            self.arguments[os.path.relpath(entry["file"], self.tree)] = kept

    def put(self, faults, texts):
        """Writes every file anew: with its faults, or as it was."""
        for name, text in texts.items():
            mine = [(number, place) for number, place in faults.items() if place.file == name]
            self.write(name, with_faults(text, mine) if mine else text)

    def make(self, faults, texts, targets):
        """Builds; faults that do not compile are dropped and returned."""
        dropped = {}
        while True:
            self.put(faults, texts)
            done = run(["cmake", "--build", self.build, "--target", *targets, "--", "-k0"])
            if done.returncode == 0:
                return dropped
            bad = self.blamed(done.stdout, faults, texts)
            if not bad:
                raise SystemExit(f"The copied tree does not build, whatever its faults:\n{done.stdout[-6000:]}")
            for number in bad:
                dropped[number] = faults.pop(number)

    def make_programs(self, targets):
        """Further programs on what is built already."""
        done = run(["cmake", "--build", self.build, "--target", *targets])
        if done.returncode:
            raise SystemExit(f"The copied tree does not build:\n{done.stdout[-6000:]}")

    def blamed(self, output, faults, texts):
        bad = set()
        for path, line in set(re.findall(r"^(\S+?):(\d+):\d+: (?:fatal )?error:", output, re.M)):
            name = os.path.relpath(os.path.join(self.build, path), self.tree)
            mine = {number: place for number, place in faults.items() if place.file == name}
            here = {n for n, p in mine.items() if p.line <= int(line) <= p.end_line(texts[name])}
            bad |= here or set(mine)
        return bad

    def listed(self):
        done = run(["ctest", "--test-dir", self.build, "--show-only=json-v1"])
        return json.loads(done.stdout[done.stdout.index("{"):])["tests"]

    def known_tests(self):
        return {test["name"] for test in self.listed()}

    def programs(self):
        """{test: (command, environment)} as the test driver would start them; only those that are built."""
        found = {}
        for test in self.listed():
            if test["name"] in self.tests and "command" in test:
                variables = next((p["value"] for p in test.get("properties", []) if p["name"] == "ENVIRONMENT"), [])
                found[test["name"]] = test["command"], dict(v.split("=", 1) for v in variables)
        return found
