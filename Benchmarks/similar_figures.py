#!/usr/bin/env python3
"""./dev bench similar figures [--items COUNT]: what it costs to find pictures that look like one, or show a colour, and groups
of near-duplicates, among COUNT (a million) that are made up, one of ten an altered form of another.

Prints a table, and for each figure a line {"name", "ours", "peer", "ratio", "limit"}. Fails when a limit is not kept. The limits
are those of a million; what grows with the number has them by it."""
import argparse
import json
import subprocess
import sys

arguments = argparse.ArgumentParser(prog="./dev bench similar figures")
arguments.add_argument("bin", help=argparse.SUPPRESS)
arguments.add_argument("--items", type=int, default=1000000)
options = arguments.parse_args()
if options.items < 1000:
    sys.exit("--items takes 1000 and more")
missed = []


def show(name, value, limit=None, least=None):
    held = f"(limit {limit:g})" if limit is not None else f"(at least {least:g})" if least is not None else ""
    print(f"  {name:<72} {value:>10.2f} {held}")
    print(json.dumps({"name": name, "ours": round(value, 4), "peer": None, "ratio": None, "limit": limit if least is None else least}), flush=True)
    if (limit is not None and value > limit) or (least is not None and value < least):
        missed.append(name)


output = subprocess.run([f"{options.bin}/zelto_similar_figures_bench", str(options.items)], check=True, stdout=subprocess.PIPE, text=True).stdout
found = {name: float(value) for name, value in (line.split() for line in output.splitlines())}
at = f"{options.items} pictures: "
size = max(1, options.items / 1000000)
show(at + "the nearest 1000 of all, in their order, ms", found["order-ms"], limit=20 * size)
show(at + "those similar to one, ms", found["similar-ms"], limit=20 * size)
show(at + "those with a blue, ms", found["color-ms"], limit=30 * size)
show(at + "groups of near-duplicates, s", found["groups-ms"] / 1000, limit=60 * size * size)
show(at + "the same, s of one processor", found["groups-processor-ms"] / 1000)
show(at + "memory for that, MB", found["groups-megabytes"], limit=300 * size)
show(at + "groups", found["groups"])
show(at + "altered forms that are in a group, of 1", found["grouped-of-planted"], least=0.99)
show(at + "memory of the index, bytes a picture", found["bytes-a-picture"], limit=64)
if missed:
    sys.exit("not kept: " + "; ".join(missed))
