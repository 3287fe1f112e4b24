#!/usr/bin/env python3
"""Checks that the classes of a folder build on each other in one direction, and the folders in it likewise.

check_circles.py FOLDER…

A source counts as its header's class: what either of them includes, the class builds on. A folder builds on those that
anything below it includes from. With a circle the classes or folders in it are named and the status is 1, as it is for a
folder without sources.
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


def folders_build_on(folder):
    """The folders in the folder, each with those beside it that something below it includes from."""
    here = [part.name for part in sorted(folder.iterdir()) if part.is_dir()]
    graph = {}
    for name in here:
        sources = [*(folder / name).rglob("*.h"), *(folder / name).rglob("*.cpp")]
        if sources:
            included = {Path(path) for source in sources for path in INCLUDE.findall(source.read_text(encoding="utf-8"))}
            graph[name] = {other for other in here if other != name
                           and any(str(folder.resolve()).endswith("/" + str(above.parent)) and above.name == other
                                   for path in included for above in path.parents if above.name)}
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
        graphs = builds_on(folder), folders_build_on(folder)
        if not any(graphs):
            print(f"{folder}: no sources")
            status = 1
        for graph in graphs:
            for name, used in sorted(without_ends(graph).items()):
                print(f"{folder}: {name} is in a circle with {', '.join(used)}")
                status = 1
    return status if arguments else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
