#!/usr/bin/env python3
"""Makes the line of the bookmarklet of its source and what it shares with the extension.

bookmarklet.py          writes Resources/browser/bookmarklet/bookmarklet.txt
bookmarklet.py --check  fails when that file is not what would be written
"""
import pathlib
import re
import sys
import urllib.parse

BROWSER = pathlib.Path(__file__).resolve().parent.parent / "Resources" / "browser"
LINE = BROWSER / "bookmarklet" / "bookmarklet.txt"


def shortened(source):
    """Without comments of a line, indentation and empty lines: what is left means the same, as all statements end in
    a semicolon or a brace and no text goes over several lines."""
    lines = (re.sub(r"(^|\s)// .*$", "", line).strip() for line in source.splitlines())
    return "\n".join(line for line in lines if line)


def made():
    collect = (BROWSER / "extension" / "collect.js").read_text()
    command = re.sub(r"^export ", "", (BROWSER / "extension" / "command.js").read_text(), flags=re.MULTILINE)
    own = (BROWSER / "bookmarklet" / "bookmarklet.js").read_text()
    start = collect.index("(() =>")
    body = "(() => {\n" + command + "\nconst page = " + collect[start:] + "\n" + own + "\n})();"
    return "javascript:" + urllib.parse.quote(shortened(body), safe="(){}[]=>;:,.!?*&|+-_'/@$") + "\n"


def main(arguments):
    line = made()
    if arguments == ["--check"]:
        if not LINE.exists() or LINE.read_text() != line:
            print(f"{LINE} is not what Tools/bookmarklet.py makes; run it")
            return 1
        return 0
    if arguments:
        print(__doc__)
        return 2
    LINE.write_text(line)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
