"""check_circles.py on small folders: what it lets pass, and what it finds."""
import subprocess
import sys
import tempfile
from pathlib import Path

CASES = {
    "a chain": ({"A.h": "", "B.h": "A", "B.cpp": "B", "C.cpp": "A B"}, None),
    "a class and its own source": ({"A.h": "", "A.cpp": "A"}, None),
    "two headers": ({"A.h": "B", "B.h": "A"}, "A is in a circle with B"),
    "through the sources alone": ({"A.h": "", "A.cpp": "B", "B.h": "", "B.cpp": "C", "C.h": "A"},
                                  "C is in a circle with A"),
    "with a chain before and behind it": ({"Z.h": "A", "A.h": "B X", "B.h": "A", "X.h": ""},
                                          "B is in a circle with A"),
    "nothing to look at": ({}, "no sources"),
}


def run(folder):
    return subprocess.run([sys.executable, sys.argv[1], str(folder)], capture_output=True, text=True, check=False)


def failure(files, expected):
    with tempfile.TemporaryDirectory() as root:
        folder = Path(root) / "Classes" / "Some"
        folder.mkdir(parents=True)
        for name, included in files.items():
            lines = [f'#include "Classes/Some/{other}.h"' for other in included.split()]
            lines.append('#include "Classes/Other/A.h"')
            (folder / name).write_text("\n".join(lines) + "\n", encoding="utf-8")
        result = run(folder)
    is_right = result.returncode == 0 if expected is None else result.returncode == 1 and expected in result.stdout
    names = {line.split(": ")[1].split()[0] for line in result.stdout.splitlines()}
    return None if is_right and not names & {"X", "Z"} else result.stdout or "nothing found"


def folder_failure(files, expected):
    """Sources of several folders: {name: what they include}."""
    with tempfile.TemporaryDirectory() as root:
        for name, included in files.items():
            source = Path(root) / "Classes" / name
            source.parent.mkdir(parents=True, exist_ok=True)
            source.write_text("".join(f'#include "Classes/{other}"\n' for other in included.split()), encoding="utf-8")
        result = run(Path(root) / "Classes")
    is_right = result.returncode == 0 if expected is None else result.returncode == 1 and expected in result.stdout
    return None if is_right else result.stdout or "nothing found"


FOLDER_CASES = {
    "one direction": ({"One/A.h": "", "Two/B.h": "One/A.h", "Two/Part/C.cpp": "One/A.h Two/B.h"}, None),
    "two folders": ({"One/A.h": "", "One/B.cpp": "Two/C.h", "Two/C.h": "One/A.h"}, "One is in a circle with Two"),
    "from a folder below": ({"One/A.h": "", "One/B.cpp": "Two/C.h", "Two/C.h": "", "Two/Part/D.cpp": "One/A.h"},
                            "Two is in a circle with One"),
}

failed = [f"{name}: {text}" for name, (files, expected) in FOLDER_CASES.items() if (text := folder_failure(files, expected))]
failed += [f"{name}: {text}" for name, (files, expected) in CASES.items() if (text := failure(files, expected))]
print("\n".join(failed))
sys.exit(bool(failed))
