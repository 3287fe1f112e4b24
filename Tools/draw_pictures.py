#!/usr/bin/env python3
"""Draws the pictures of README.md and docs/guide anew, by the program itself: draw_pictures.py BIN_FOLDER

The library is made of the samples that zelto_samples draws and, where they are installed, of the wallpapers of
plasma-workspace-wallpapers. ImageMagick makes the pictures small."""
import json
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.dont_write_bytecode = True
sys.path.append(str(ROOT / "Tests/Support"))
from world import World  # noqa: E402

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


def zelto(world, *arguments):
    done = world.run("zelto", *arguments, seconds=300)
    if done.returncode not in (0, 1):
        sys.exit(f"zelto {' '.join(arguments)}: {done.stderr}")
    return done.stdout


def items(world, place):
    return json.loads(zelto(world, "items", "--in", place, "--json"))


def one_of_each(wallpapers, folder):
    """Each wallpaper in the size that is next above a screen's half."""
    folder.mkdir()
    for images in sorted(wallpapers.glob("*/contents/images")):
        sizes = sorted((int(path.name.split("x")[0]), path) for path in images.glob("[0-9]*x[0-9]*.*"))
        wide = [path for width, path in sizes if width >= 1024]
        if wide:
            shutil.copy(wide[0], folder / f"{images.parts[-3]}{wide[0].suffix}")


def fill(world):
    subprocess.run([BIN / "zelto_samples", world.home / "samples"], check=True, stdout=subprocess.DEVNULL)
    for name in ("Photos", "Brand 2026"):
        zelto(world, "import", f"samples/{name}", "--into", "PROJECTS")
    pictures = world.home / "Wallpapers"
    one_of_each(WALLPAPERS, pictures) if WALLPAPERS.is_dir() else shutil.copytree(world.home / "samples/Photos", pictures)
    zelto(world, "livefolders", "add", str(pictures))
    photos = items(world, "PROJECTS/Photos")
    for number, item in enumerate(photos):
        tags = ["inspiration" if number % 2 else "landscape"] + (["harbour"] if number % 3 == 0 else [])
        zelto(world, "tag", item["bundleID"], *(word for tag in tags for word in ("--add", tag)))
        if number % 3:
            zelto(world, "rate", item["bundleID"], str(3 + number % 3))
    zelto(world, "smart", "Best pictures", "#rating=>3")


def draw(world):
    for name, place, theme, size in PICTURES:
        target, drawn = ROOT / name, world.home / "drawn.png"
        target.parent.mkdir(parents=True, exist_ok=True)
        zelto(world, "snapshot", str(drawn), "--size", size, "--select", place, "--theme", theme)
        subprocess.run(["convert", drawn, "-dither", "FloydSteinberg", "-colors", "256", "-strip", f"PNG8:{target}"], check=True)
        if target.stat().st_size > MOST_BYTES:
            sys.exit(f"{name} has {target.stat().st_size} bytes, which is more than {MOST_BYTES}")
        print(f"{name}: {target.stat().st_size} bytes")


if __name__ == "__main__":
    with World(BIN / "zelto") as world:
        fill(world)
        draw(world)
