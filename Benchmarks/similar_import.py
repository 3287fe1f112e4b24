"""./dev bench similar import: what it costs an import that each picture is looked at for its likes and its colors.

The wallpapers are imported, each into a library of its own run, and the seconds of all processors are taken: more than one works
at once, so that the time on the clock would hide a part. What hash and palette take of the same pictures is measured beside it, and
is what an import without them would not need.

Prints a table, and for the figure a line {"name", "ours", "peer", "ratio", "limit"}. Fails when the limit is not kept."""
import argparse
import json
import os
import resource
import subprocess
import sys
import tempfile

RUNS = 3
LIMIT = 1.03
WALLPAPERS = ["plasma-workspace-wallpapers", "ukui-wallpapers", "mate-backgrounds", "gnome-backgrounds",
              "lomiri-wallpapers-16.04", "lomiri-wallpapers-20.04"]

arguments = argparse.ArgumentParser(prog="./dev bench similar import")
arguments.add_argument("bin", help=argparse.SUPPRESS)
options = arguments.parse_args()


def wallpapers():
    listing = subprocess.run(["dpkg", "-L", *WALLPAPERS], check=True, stdout=subprocess.PIPE, text=True).stdout
    names = sorted(set(listing.splitlines()))
    return [name for name in names if name.lower().endswith((".jpg", ".jpeg", ".png", ".webp")) and os.path.isfile(name) and not os.path.islink(name)]


def seconds_of_children():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def import_seconds(paths):
    with tempfile.TemporaryDirectory(dir="build", prefix="bench.") as work:
        environment = os.environ | {"QT_QPA_PLATFORM": "offscreen", "XDG_RUNTIME_DIR": work} | {
            f"XDG_{name}_HOME": os.path.abspath(f"{work}/{name}") for name in ("DATA", "CONFIG", "CACHE")}
        before = seconds_of_children()
        subprocess.run([f"{options.bin}/zelto", "import", *paths, "--json"], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=environment)
        return seconds_of_children() - before


def look_seconds(paths):
    output = subprocess.run([f"{options.bin}/zelto_similar_bench"], input="".join(f"{path}\n" for path in paths), check=True,
                            stdout=subprocess.PIPE, text=True).stdout
    return sum(float(number) for line in output.splitlines() for number in line.split(" ")[1:3]) / 1000


paths = wallpapers()
whole = min(import_seconds(paths) for _ in range(RUNS))
looks = min(look_seconds(paths) for _ in range(RUNS))
ratio = whole / (whole - looks)
name = f"import of {len(paths)} wallpapers with looks, to without; processor s"
print(f"  {name:<72} {whole:>8.3f} {whole - looks:>8.3f} {ratio:>8.3f} (limit {LIMIT})")
print(json.dumps({"name": name, "ours": round(whole, 4), "peer": round(whole - looks, 4), "ratio": round(ratio, 4), "limit": LIMIT}))
if ratio > LIMIT:
    sys.exit(f"not kept: {name}")
