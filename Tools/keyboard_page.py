#!/usr/bin/env python3
"""Writes the table of docs/guide/keyboard.md anew from the window's commands; with --check says whether it is current."""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/guide/keyboard.md"
BEGIN, END = "<!-- keys -->\n", "<!-- end of keys -->\n"
COMMAND = re.compile(r'CommandID::(\w+),\s*(?:\.title = )?zqLocalized\("([^"]+)"\),\s*(?:\.keys = )?\{([^{}]*Key_[^{}]*)\}')
NAMES = {"CTRL": "Ctrl", "SHIFT": "Shift", "ALT": "Alt", "META": "Super", "Key_Comma": ",", "Key_Plus": "+",
         "Key_Equal": "=", "Key_Minus": "-", "Key_Delete": "Delete", "Key_Tab": "Tab"}


def keys(expression):
    combinations = []
    for combination in expression.split(","):
        parts = re.findall(r"Qt::(\w+)", combination)
        combinations.append("+".join(NAMES.get(part, part.removeprefix("Key_")) for part in parts))
    return ", ".join(f"`{each}`" for each in combinations if each)


def table():
    rows = {}
    for source in sorted((ROOT / "Classes/Interface").rglob("*.cpp")):
        for _, title, expression in COMMAND.findall(source.read_text()):
            rows[title.rstrip("…")] = keys(expression)
    return "| Command | Keys |\n|---|---|\n" + "".join(f"| {title} | {rows[title]} |\n" for title in sorted(rows))


def main():
    page = PAGE.read_text()
    head, rest = page.split(BEGIN)
    current = head + BEGIN + "\n" + table() + "\n" + END + rest.split(END)[1]
    if "--check" not in sys.argv:
        PAGE.write_text(current)
    elif current != page:
        sys.exit(f"{PAGE.relative_to(ROOT)} is not what the window says: run ./dev docs")


if __name__ == "__main__":
    main()
