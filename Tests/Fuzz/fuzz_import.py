#!/usr/bin/env python3
"""Damages the sample assets, imports them all in one batch, and checks that nothing but the damaged files suffers.

fuzz_import.py BIN COUNT [SEED]

BIN holds zelto, zelto-render and zelto_samples. The import must end well, account for every file, leave a library that
`verify` finds sound and a thumbnail beside each item that has one, and leave no worker and no scratch folder behind. A
failing world stays where the last line says; the seed makes it again.
"""
import json
import os
import pathlib
import random
import shutil
import struct
import subprocess
import sys
import time

LARGEST = 4 << 20
SIZES = [0, 1, 0x7F, 0xFF, 0x7FFF, 0xFFFF, 0x7FFFFFFF, 0xFFFFFFFF]


def truncated(data, chance, _):
    return data[: chance.randrange(len(data))]


def flipped(data, chance, _):
    out = bytearray(data)
    for _ in range(chance.choice([1, 4, 32])):
        # The structure of most formats stands at the front.
        place = chance.randrange(min(len(out), 256) if chance.random() < 0.6 else len(out))
        out[place] ^= 1 << chance.randrange(8)
    return bytes(out)


def spliced(data, chance, other):
    cut = chance.choice([16, 64, 512, chance.randrange(1, len(data))])
    return other[:cut] + data[cut:]


def sized(data, chance, _):
    out = bytearray(data)
    width = chance.choice([2, 4])
    form = chance.choice("<>") + {2: "H", 4: "I"}[width]
    for _ in range(chance.choice([1, 2, 4])):
        if len(out) <= width:
            break
        place = chance.randrange(min(len(out) - width, 128))
        struct.pack_into(form, out, place, chance.choice(SIZES) & ((1 << (8 * width)) - 1))
    return bytes(out)


def repeated(data, chance, _):
    start = chance.randrange(len(data))
    end = min(len(data), start + chance.choice([4, 64, 4096]))
    return data[:end] + data[start:end] * chance.choice([1, 8, 64]) + data[end:]


def emptied(data, chance, _):
    start = chance.randrange(len(data))
    length = min(len(data) - start, chance.choice([4, 64, 4096]))
    return data[:start] + bytes(length) + data[start + length :]


MUTATIONS = [truncated, flipped, spliced, sized, repeated, emptied]


def sample_files(folder):
    out = []
    for parent, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(parent, name)
            if 0 < os.path.getsize(path) <= LARGEST and not os.path.islink(path):
                out.append(path)
    return sorted(out)


def write_input(samples, folder, count, chance):
    contents = {}
    for path in samples:
        with open(path, "rb") as file:
            contents[path] = file.read()
    out = []
    for number in range(count):
        path = chance.choice(samples)
        data = contents[path]
        for _ in range(chance.choice([1, 1, 2])):
            if data:
                data = chance.choice(MUTATIONS)(data, chance, contents[chance.choice(samples)])
        named_after = path if chance.random() < 0.9 else chance.choice(samples)
        target = os.path.join(folder, f"{number:06}{os.path.splitext(named_after)[1]}")
        with open(target, "wb") as file:
            file.write(data)
        out.append(target)
    return out


def is_empty_folder(path):
    """The program keeps the folder for its temporary files until it quits, or the next one does."""
    return os.path.isdir(path) and not os.listdir(path)


def workers_of(temporary):
    out = []
    for process in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{process}/cmdline", "rb") as file:
                if os.fsencode(temporary) in file.read():
                    out.append(process)
        except OSError:
            pass
    return out


def run_zelto(zelto, environment, limit, *arguments):
    return subprocess.run(
        [zelto, *arguments], env=environment, stdin=subprocess.DEVNULL, capture_output=True, timeout=limit, check=False
    )


def is_archive(path):
    """Becomes as many items as it holds, which may be none."""
    return path.lower().endswith((".zip", ".rar"))


def check_import(zelto, environment, paths, count):
    """What is wrong, one line each."""
    result = run_zelto(zelto, environment, 300 + 4 * count, "import", "--json", "--duplicates", "keep", *paths)
    if result.returncode != 0:
        return [f"import: status {result.returncode}", result.stderr.decode(errors="replace")[-3000:]]
    report = json.loads(result.stdout)
    problems = []
    dropped = {entry["path"] for entry in report["dropped"]}
    if any(not entry["reason"] for entry in report["dropped"]):
        problems.append("a dropped file has no reason")
    asked = set(paths)
    strange = [path for path in sorted(dropped) if not any(str(part) in asked for part in (path, *pathlib.PurePath(path).parents))]
    if strange:  # what an archive held is named below it
        problems.append(f"dropped, but never asked for: {strange[:5]}")
    items = json.loads(run_zelto(zelto, environment, 300, "items", "--json").stdout)
    titles = {item["title"] for item in items}
    lost = [path for path in paths if path not in dropped and pathlib.Path(path).stem not in titles and not is_archive(path)]
    if lost:
        problems.append(f"neither imported nor dropped: {lost[:5]}")
    verified = run_zelto(zelto, environment, 300, "verify", "--deep", "--json")
    if verified.returncode != 0:
        problems.append("verify: " + verified.stdout.decode(errors="replace")[-2000:])
    elif json.loads(verified.stdout)["items"] != len(report["imported"]):
        problems.append(f"{len(report['imported'])} imported, but verify counts {json.loads(verified.stdout)['items']}")
    by_worker = sum("could not be drawn" in entry["reason"] for entry in report["dropped"])
    print(f"{len(paths)} files: {len(report['imported'])} imported, {len(dropped)} dropped, {by_worker} of them for a worker's end")
    for entry in report["dropped"]:
        if "could not be drawn" in entry["reason"]:
            print("  " + entry["path"] + ": " + entry["reason"])
    return problems


def main():
    binaries, count = os.path.abspath(sys.argv[1]), int(sys.argv[2])
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else int(time.time())
    chance = random.Random(seed)
    # Not in a temporary area: files from there are moved into the library instead of copied.
    world = os.path.join(os.path.dirname(binaries), f"fuzz-{os.getpid()}")
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    for name in ("samples", "input", "tmp", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"):
        os.makedirs(os.path.join(world, name), mode=0o700)
        if name.startswith("XDG"):
            environment[name] = os.path.join(world, name)
    temporary = environment["TMPDIR"] = os.path.join(world, "tmp")
    subprocess.run(
        [os.path.join(binaries, "zelto_samples"), os.path.join(world, "samples")], check=True, stdout=subprocess.DEVNULL
    )
    paths = write_input(sample_files(os.path.join(world, "samples")), os.path.join(world, "input"), count, chance)
    problems = check_import(os.path.join(binaries, "zelto"), environment, paths, count)
    if left := workers_of(temporary):
        problems.append(f"workers outlive the program: {' '.join(left)}")
    if left := [name for name in os.listdir(temporary) if not is_empty_folder(os.path.join(temporary, name))]:
        problems.append(f"left in the temporary folder: {' '.join(left)}")
    if problems:
        print("\n".join(problems), f"seed {seed}, world {world}", sep="\n")
        return 1
    shutil.rmtree(world)
    print(f"sound (seed {seed})")
    return 0


if __name__ == "__main__":
    sys.exit(main())
