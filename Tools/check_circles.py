#!/usr/bin/env python3
"""Checks that the classes of a folder build on each other in one direction.

check_circles.py FOLDER…

A source counts as its header's class: what either of them includes, the class builds on. With a circle the classes in
it are named and the status is 1, as it is for a folder without sources.
"""
import re
import sys
from pathlib import Path

INCLUDE = re.compile(r'^#include "([^"]+)"', re.M)


def builds_on(folder):
    """The classes of the folder, each with those of the same folder that it includes."""
    sources = sorted(folder.glob("*.h")) + sorted(folder.glob("*.cpp"))
    graph = {source.stem: set() for source in sources}
    for source in sources:
        for name in INCLUDE.findall(source.read_text(encoding="utf-8")):
            included = Path(name)
            is_here = str(folder.resolve()).endswith("/" + str(included.parent))
            if is_here and included.stem in graph and included.stem != source.stem:
                graph[source.stem].add(included.stem)
    return graph


def without_ends(graph):
    """What is left of the graph once everything went that builds on nothing left, or on which nothing left builds."""
    left = dict(graph)
    while True:
        used = {name for names in left.values() for name in names}
        ends = [name for name in left if not left[name] & left.keys() or name not in used]
        if not ends:
            return {name: sorted(left[name] & left.keys()) for name in left}
        for name in ends:
            del left[name]


def main(arguments):
    status = 0
    for folder in map(Path, arguments):
        graph = builds_on(folder)
        if not graph:
            print(f"{folder}: no sources")
            status = 1
        for name, used in sorted(without_ends(graph).items()):
            print(f"{folder}: {name} is in a circle with {', '.join(used)}")
            status = 1
    return status if arguments else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
