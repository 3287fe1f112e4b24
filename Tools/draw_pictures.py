#!/usr/bin/env python3
"""Draws the pictures of README.md and docs/guide anew, by the program itself: draw_pictures.py BIN_FOLDER

The library is made of the samples that zelto_samples draws and, where they are installed, of the wallpapers of
plasma-workspace-wallpapers. ImageMagick makes the pictures small."""
import json
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BIN = Path(sys.argv[1]).resolve()
WALLPAPERS = Path("/usr/share/wallpapers")
MOST_BYTES = 400_000

# Where to; what is selected; theme; size.
PICTURES = [
    ("docs/zelto.png", "PROJECTS/Photos", "dark", "1440x900"),
    ("docs/zelto-light.png", "PROJECTS/Photos", "light", "1440x900"),
    ("docs/guide/pictures/library.png", "LIBRARY/Library", "light", "1200x760"),
    ("docs/guide/pictures/project.png", "PROJECTS/Brand 2026/Logos", "light", "1200x760"),
    ("docs/guide/pictures/tags.png", "TAGS/harbour", "light", "1200x760"),
    ("docs/guide/pictures/smart-folder.png", "PROJECTS/Best pictures", "light", "1200x760"),
    ("docs/guide/pictures/live-folder.png", "LIVE FOLDERS/Wallpapers", "dark", "1200x760"),
]


class World:
    def __init__(self, folder):
        self.folder = folder
        self.environment = {**os.environ, "HOME": str(folder), "XDG_DATA_HOME": str(folder / "data"),
                            "XDG_CONFIG_HOME": str(folder / "config"), "XDG_RUNTIME_DIR": str(folder / "run"),
                            "TMPDIR": str(folder / "tmp"), "QT_QPA_PLATFORM": "offscreen"}
        for name in ("run", "tmp"):
            (folder / name).mkdir(mode=0o700)

    def zelto(self, *arguments):
        done = subprocess.run([BIN / "zelto", *arguments], env=self.environment, cwd=self.folder, text=True,
                              capture_output=True, timeout=300)
        if done.returncode not in (0, 1):
            sys.exit(f"zelto {' '.join(arguments)}: {done.stderr}")
        return done.stdout

    def items(self, place):
        return json.loads(self.zelto("items", "--in", place, "--json"))


def one_of_each(wallpapers, folder):
    """Each wallpaper in the size that is next above a screen's half."""
    folder.mkdir()
    for images in sorted(wallpapers.glob("*/contents/images")):
        sizes = sorted((int(path.name.split("x")[0]), path) for path in images.glob("[0-9]*x[0-9]*.*"))
        wide = [path for width, path in sizes if width >= 1024]
        if wide:
            shutil.copy(wide[0], folder / f"{images.parts[-3]}{wide[0].suffix}")


def fill(world):
    subprocess.run([BIN / "zelto_samples", world.folder / "samples"], check=True, stdout=subprocess.DEVNULL)
    for name in ("Photos", "Brand 2026"):
        world.zelto("import", f"samples/{name}", "--into", "PROJECTS")
    pictures = world.folder / "Wallpapers"
    one_of_each(WALLPAPERS, pictures) if WALLPAPERS.is_dir() else shutil.copytree(world.folder / "samples/Photos", pictures)
    world.zelto("livefolders", "add", str(pictures))
    photos = world.items("PROJECTS/Photos")
    for number, item in enumerate(photos):
        tags = ["inspiration" if number % 2 else "landscape"] + (["harbour"] if number % 3 == 0 else [])
        world.zelto("tag", item["bundleID"], *(word for tag in tags for word in ("--add", tag)))
        if number % 3:
            world.zelto("rate", item["bundleID"], str(3 + number % 3))
    world.zelto("smart", "Best pictures", "#rating=>3")


def draw(world):
    for name, place, theme, size in PICTURES:
        target, drawn = ROOT / name, world.folder / "drawn.png"
        target.parent.mkdir(parents=True, exist_ok=True)
        world.zelto("snapshot", str(drawn), "--size", size, "--select", place, "--theme", theme)
        subprocess.run(["convert", drawn, "-dither", "FloydSteinberg", "-colors", "256", "-strip", f"PNG8:{target}"], check=True)
        if target.stat().st_size > MOST_BYTES:
            sys.exit(f"{name} has {target.stat().st_size} bytes, which is more than {MOST_BYTES}")
        print(f"{name}: {target.stat().st_size} bytes")


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as scratch:
        scratch = World(Path(scratch))
        fill(scratch)
        draw(scratch)
