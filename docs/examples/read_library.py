#!/usr/bin/env python3
"""Lists the items of a library without the program, as docs/FORMAT.md describes it: read_library.py LIBRARY [--json]

Only the standard library of Python is needed, and nothing is written. The program may be running."""
import json
import sqlite3
import struct
import sys
from pathlib import Path

KNOWN_VERSIONS = range(5, 11)

ITEMS = """SELECT id, bundleID, title, extension, originalExtension, managed, thumbName, itemURLData, rating, notes,
                  SHA1, webURL, webPageURL FROM ZQLibraryBaseItem WHERE active ORDER BY id"""
TAGS = """SELECT tagged.ZQLibraryBaseItem_tags, tag.title
          FROM zq_join_ZQLibraryBaseItem_tags__ZQSidebarTag_taggedItems AS tagged
          JOIN ZQSidebarBaseItem AS tag ON tag.id = tagged.ZQSidebarTag_taggedItems WHERE tag.active"""


def opened(library):
    store = library / "storedata"
    if not store.is_file():
        sys.exit(f"{library} is no library: it has no file “storedata”")
    # A closed store on a disk that cannot be written to has no log, and none can be made.
    closed = not (library / "storedata-wal").exists()
    database = sqlite3.connect(f"{store.absolute().as_uri()}?mode=ro{'&immutable=1' if closed else ''}", uri=True)
    database.row_factory = sqlite3.Row
    return database


def check_version(database):
    version = database.execute("SELECT value FROM zq_metadata WHERE key = 'versionIdentifiers'").fetchone()[0]
    if version not in {f"Version{number}" for number in KNOWN_VERSIONS}:
        print(f"the store is of {version}, which is newer than this script; what it shows may be wrong", file=sys.stderr)


def path_of_reference(data):
    """The path that a file had when it was last seen."""
    mark, form = struct.unpack_from(">4sB", data)
    if mark != b"ZQPL" or form not in (1, 2, 3):
        return None
    identities = 2 * struct.calcsize(">QQq")  # of the file and of its folder: file system, inode, birth
    begin = struct.calcsize(">4sB") + identities + 1  # and whether it is a folder
    (length,) = struct.unpack_from(">I", data, begin)
    return data[begin + 4 : begin + 4 + length].decode("utf-8", "surrogateescape")


def original_of(item, directory):
    if item["managed"]:
        return str(directory / f"{item['title']}.{item['originalExtension']}")
    return path_of_reference(item["itemURLData"]) if item["itemURLData"] else None


def items_of(library):
    database = opened(library)
    check_version(database)
    tags = {}
    for item, title in database.execute(TAGS):
        tags.setdefault(item, []).append(title)
    columns = {row[1] for row in database.execute("PRAGMA table_info(ZQLibraryBaseItem)")}
    missing = [name for name in ("thumbName", "rating") if name not in columns]
    query = ITEMS
    for name in missing:  # older stores
        query = query.replace(name, f"NULL AS {name}", 1)
    for item in database.execute(query):
        directory = library / "Library" / f"{item['bundleID']}.ztlibraryitem"
        yield {
            "bundleID": item["bundleID"],
            "title": item["title"],
            "extension": item["extension"],
            "tags": sorted(tags.get(item["id"], [])),
            "rating": item["rating"] or 0,
            "notes": item["notes"],
            "SHA1": item["SHA1"],
            "webURL": item["webURL"],
            "webPageURL": item["webPageURL"],
            "itemPath": original_of(item, directory),
            # Without one, the file itself is shown.
            "thumbPath": str(directory / item["thumbName"]) if item["thumbName"] else None,
        }


def main(arguments):
    if not arguments or arguments[0].startswith("-"):
        sys.exit(__doc__.splitlines()[0])
    items = list(items_of(Path(arguments[0])))
    if "--json" in arguments:
        json.dump(items, sys.stdout, indent=2, ensure_ascii=False)
        print()
        return
    for item in items:
        print(f"{item['title']}.{item['extension']}  {'★' * item['rating']}  {', '.join(item['tags'])}")
        for key in ("webPageURL", "itemPath", "thumbPath"):
            if item[key]:
                print(f"    {item[key]}")


if __name__ == "__main__":
    main(sys.argv[1:])
