#!/usr/bin/env python3
"""Fails when files of one folder include each other in a circle: check_includes.py SOURCE FOLDER…

A header and the source file of the same name are one: what both together need must be there before them."""
import re
import sys
from pathlib import Path

INCLUDE = re.compile(r'^#include "([^"]+)\.h"', re.MULTILINE)


def includes_of(source, folder):
    """{name: the names of the same folder that it includes}"""
    found = {}
    for file in sorted((source / folder).glob("*.[ch]*")):
        mine = found.setdefault(file.stem, set())
        for path in map(Path, INCLUDE.findall(file.read_text())):
            if path.parent == Path(folder) and path.name != file.stem:
                mine.add(path.name)
    return found


def first_circle(includes):
    done = set()

    def visit(name, way):
        if name in way:
            return way[way.index(name):] + [name]
        if name in done:
            return None
        circle = next(filter(None, (visit(other, way + [name]) for other in sorted(includes.get(name, ())))), None)
        done.add(name)
        return circle

    return next(filter(None, (visit(name, []) for name in sorted(includes))), None)


def main(source, folders):
    failed = False
    for folder in folders:
        includes = includes_of(Path(source), folder)
        if not includes:
            print(f"{folder} holds no source files")
            failed = True
        elif circle := first_circle(includes):
            print(f"{folder}: {' includes '.join(circle)}")
            failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2:]))
