"""A scratch place in which the program keeps all it writes, and files for it."""
import os
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parent))
import pictures


def png(width, height, color):
    """A picture of one colour with a diagonal, so that no two sizes are alike."""
    return pictures.png([b"".join(bytes(color) if x != y else b"\xff\xff\xff" for x in range(width)) for y in range(height)])


def lasting_folder():
    """What is imported from a temporary area is moved into the library, so files must not be made in one."""
    here = Path.cwd()
    return Path.home() if here.parts[1:2] in (("tmp",), ("var",)) else here


def redirected(home, sockets):
    """The part of an environment that keeps what a program writes below `home`, and its sockets, whose names must be short, in `sockets`."""
    return {"HOME": str(home), "XDG_DATA_HOME": f"{home}/data", "XDG_CONFIG_HOME": f"{home}/config",
            "XDG_CACHE_HOME": f"{home}/cache", "XDG_RUNTIME_DIR": str(sockets), "LC_ALL": "C.UTF-8"}


class World:
    def __init__(self, zelto):
        self.scratch = tempfile.TemporaryDirectory(prefix="documents-", dir=lasting_folder())
        self.sockets = tempfile.TemporaryDirectory()
        self.home = Path(self.scratch.name)
        for name in ("bin", "tmp"):
            (self.home / name).mkdir(mode=0o700)
        (self.home / "bin/zelto").symlink_to(Path(zelto).resolve())
        self.files_made = 0
        self.environment = {
            **redirected(self.home, self.sockets.name), "PATH": f"{self.home}/bin:{os.environ['PATH']}",
            "TMPDIR": str(self.home / "tmp"), "QT_QPA_PLATFORM": "offscreen",
            **{name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")},
        }

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.scratch.cleanup()
        self.sockets.cleanup()

    def make(self, name):
        """A file, or a folder where `name` ends with a slash."""
        path = self.home / name
        if name.endswith("/"):
            path.mkdir(parents=True, exist_ok=True)
            return
        path.parent.mkdir(parents=True, exist_ok=True)
        self.files_made += 1
        number = self.files_made
        path.write_bytes(png(40 + number, 30 + number, (number * 37 % 256, number * 91 % 256, 120))
                         if path.suffix == ".png" else f"file {number}\n".encode())

    def run(self, *command, script=None, seconds=120):
        command = ["bash", "-euo", "pipefail", "-c", script] if script else command
        return subprocess.run(command, cwd=self.home, env=self.environment, text=True, capture_output=True, timeout=seconds,
                              stdin=subprocess.DEVNULL)

    @property
    def library(self):
        return self.home / "data/Zelto/Zelto.ztlibrary"
