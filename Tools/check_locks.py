#!/usr/bin/env python3
"""Has clang check the use of locks: what is guarded by a mutex is touched only by code that holds it.

Each source is compiled as the build would (the flags come from the build's compile_commands.json, less its warnings),
but only as far as the check needs: nothing is written. A header stands for the sources that include it."""
import argparse
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
DROPPED_WITH_VALUE = {"-o", "-MF", "-MT", "-MQ"}
DROPPED = re.compile(r"-c$|-M[DMP]*$|-W[^lap]|-W(all|error)\b|-g\d?$|-O")
UNSEEN = re.compile(r"\b(std::(recursive_|timed_|shared_|recursive_timed_|shared_timed_)?mutex|std::condition_variable(_any)?|Q(Recursive)?Mutex|QReadWriteLock|QWaitCondition)\b")  # clang sees no fault in the use of these
GUARDED = re.compile(r"\bZQ_(GUARDED_BY|REQUIRES|ACQUIRE|RELEASE)|\bZQ(Lock|Unlock|Write)Guard\b")
INCLUDED = re.compile(r'^#include "([^"]+)"', re.MULTILINE)


def database(build):
    path = Path(build, "compile_commands.json")
    if not path.is_file():
        sys.exit(f"There is no {path}. Configure first: cmake --preset {Path(build).name}")
    entries = {}
    for entry in json.loads(path.read_text()):
        source = Path(entry["directory"], entry["file"]).resolve()
        if source.is_file() and not source.is_relative_to(Path(build).resolve()):
            entries.setdefault(source, entry)
    return entries


def flags_of(entry):
    arguments = entry.get("arguments") or shlex.split(entry["command"])
    kept, skips = [], False
    source = Path(entry["directory"], entry["file"]).resolve()
    start = next(i for i, argument in enumerate(arguments) if argument.startswith("-"))
    for argument in arguments[start:]:
        is_source = not argument.startswith("-") and Path(entry["directory"], argument).resolve() == source
        if not (skips or is_source or argument in DROPPED_WITH_VALUE or DROPPED.match(argument)):
            kept.append(argument)
        skips = argument in DROPPED_WITH_VALUE
    return without_precompiled(kept)


def without_precompiled(arguments):
    """Less what another compiler precompiled: each source includes all it needs."""
    kept = []
    for argument in arguments:
        if kept and kept[-1] == "-include" and Path(argument).name == "cmake_pch.hxx":
            kept.pop()
        else:
            kept.append(argument)
    return kept


def wanted_sources(names, entries, root):
    """Those of the database that were named, or that a named header reaches through others, by its path or plain name."""
    if not names:
        return sorted(entries)
    named = {Path(name).resolve() for name in names}
    headers = {path for path in named if path.suffix == ".h"}
    spellings = {str(path.relative_to(root)) for path in headers if path.is_relative_to(root)}
    beside = {(path.parent, path.name) for path in headers}
    wanted = {path for path in named if path in entries}
    everything = [*entries, *root.rglob("*.h")] if headers else []
    includes = {path: INCLUDED.findall(path.read_text(errors="replace")) for path in everything if "build" not in path.parts}
    while True:
        reached = {path for path, included in includes.items()
                   if any(name in spellings or (path.parent, name) in beside for name in included)}
        wanted |= reached & entries.keys()
        new = {path for path in reached if path.suffix == ".h"} - headers
        if not new:
            break
        headers |= new
        spellings |= {str(path.relative_to(root)) for path in new if path.is_relative_to(root)}
        beside |= {(path.parent, path.name) for path in new}
    for path in sorted(named - wanted - headers):
        print(f"not part of the build, and not checked: {path}", file=sys.stderr)
    return sorted(wanted)


def near_locks(entries, root):
    """Those of the database that name a lock, or include what does: only they can touch what one guards."""
    def names_lock(path):
        return path.name != "ZQThreadSafety.h" and GUARDED.search(path.read_text(errors="replace"))

    def included_by(path):
        for name in INCLUDED.findall(path.read_text(errors="replace")):
            yield from (found for found in (root / name, path.parent / name) if found.is_file())

    return sorted(path for path in entries if names_lock(path) or any(map(names_lock, included_by(path))))


def check(source, entry, generated):
    command = ["clang++", *flags_of(entry), "-fsyntax-only", "-Wno-everything", "-Wthread-safety", "-Werror=thread-safety"]
    for name in INCLUDED.findall(source.read_text(errors="replace")):
        if name.endswith(".moc"):  # made by the build; no lock is in it
            Path(generated, name).touch()
    done = subprocess.run([*command, f"-I{generated}", str(source)], cwd=entry["directory"], text=True, capture_output=True)
    return done.returncode, done.stdout + done.stderr


def with_unseen_locks(names, root):
    """Of the named files, or else of the program's, those with mutexes that the check is blind to."""
    paths = map(Path, names) if names else (path for folder in ("Classes", "Kit", "Models") for path in Path(root, folder).rglob("*"))
    return sorted(path for path in paths if path.suffix in (".h", ".cpp") and path.is_file() and path.name != "ZQThreadSafety.h"
                  and "Tests" not in path.parts and UNSEEN.search(path.read_text(errors="replace")))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", nargs="*", metavar="FILE", help="sources and headers; without any, all of the build")
    parser.add_argument("--near", action="store_true", help="without files: only sources that name a lock, or include what does")
    parser.add_argument("--build", default="build/debug", metavar="FOLDER", help="the configured build (build/debug)")
    parser.add_argument("--root", default=ROOT, type=Path, metavar="FOLDER", help="where the paths of includes begin")
    options = parser.parse_args()
    entries = database(options.build)
    root = options.root.resolve()
    sources = near_locks(entries, root) if options.near else wanted_sources(options.files, entries, root)
    failed = []
    with tempfile.TemporaryDirectory() as generated, ThreadPoolExecutor(os.cpu_count()) as pool:
        try:
            answers = pool.map(lambda source: check(source, entries[source], generated), sources)
            for source, (status, said) in zip(sources, answers):
                if status != 0:
                    failed.append(source)
                    print(said, end="")
        except FileNotFoundError as error:
            sys.exit(f"{error.filename} is missing. Install it: apt-get install clang")
    for path in with_unseen_locks(options.files, options.root):
        failed.append(path)
        print(f"{path}: use ZQMutex and ZQCondition, whose use is checked (Kit/Foundation/ZQThreadSafety.h)")
    if failed:
        print(f"locks: {len(failed)} of {len(sources)} sources are at fault: " + ", ".join(path.name for path in failed))
        return 1
    print(f"locks: {len(sources)} sources are clean")
    return 0


if __name__ == "__main__":
    sys.exit(main())
