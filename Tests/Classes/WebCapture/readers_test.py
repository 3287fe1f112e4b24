"""A page that `zelto snap web --psd` takes, read back by a program that knows nothing of this one.

readers_test.py ZELTO FOLDER: psd-tools has to find the page's elements as layers: names, offsets, pixels, and their order.
"""

import os
import pathlib
import shutil
import subprocess
import sys

import numpy
import psd_tools

zelto, world = sys.argv[1].split(), pathlib.Path(sys.argv[2])
WIDTH, HEIGHT = 400, 700  # higher than the browser's window
# The bottom one first: name, left, top, width, height, colour.
LAYERS = [
    ("Background", 0, 0, WIDTH, HEIGHT, (240, 241, 242)),
    ("below", 10, 20, 90, 80, (200, 20, 30)),
    ("picture", 50, 60, 60, 50, (20, 180, 40)),
    ("card", 70, 90, 100, 40, (30, 40, 220)),
    ("far", 300, 640, 100, 60, (90, 10, 120)),
]


def page():
    boxes = "".join(f"<div id='{name}' style='position:absolute;left:{x}px;top:{y}px;width:{width}px;height:{height}px;"
                    f"background:rgb{color}'></div>" for name, x, y, width, height, color in LAYERS[1:])
    return (f"<!doctype html><title>Layers</title><body style='margin:0;height:{HEIGHT}px;background:rgb{LAYERS[0][5]}'>"
            f"{boxes}")


def take(path):
    environment = {**os.environ, "HOME": str(world / "home"), "TMPDIR": str(world / "tmp"),
                   "XDG_CONFIG_HOME": str(world / "config"), "XDG_DATA_HOME": str(world / "data")}
    for name in ("home", "tmp", "config", "data"):
        (world / name).mkdir()
    library = world / "Pages.ztlibrary"
    subprocess.run([*zelto, "--library", library, "snap", "web", path.as_uri(), "--psd", "--width", str(WIDTH)], check=True,
                   stdout=subprocess.DEVNULL, env=environment, timeout=300)
    documents = list(library.glob("**/Layers*.psd"))
    assert len(documents) == 1, documents
    return documents[0]


def main():
    if not any(shutil.which(name) for name in ("chromium", "chromium-browser", "google-chrome")):
        print("NOT TESTED: layers of pages, for want of chromium", file=sys.stderr)
        return 1 if os.environ.get("ZELTO_TESTS_MUST_NOT_SKIP") else 0
    shutil.rmtree(world, ignore_errors=True)
    world.mkdir(parents=True)
    path = world / "page.html"
    path.write_text(page(), encoding="utf-8")
    psd = psd_tools.PSDImage.open(take(path))
    assert psd.size == (WIDTH, HEIGHT), psd.size
    merged = numpy.rint(psd.numpy("color") * 255)
    assert [layer.name.rstrip() for layer in psd] == [expected[0] for expected in LAYERS], list(psd)
    canvas = numpy.zeros((HEIGHT, WIDTH, 3))
    for layer, (name, x, y, width, height, color) in zip(psd, LAYERS):
        pixels = numpy.zeros((HEIGHT, WIDTH, 4))
        left, top, right, bottom = layer.bbox
        pixels[top:bottom, left:right] = numpy.rint(layer.numpy() * 255)
        seen = numpy.argwhere(pixels[..., 3] > 0)
        box = (*seen.min(axis=0)[::-1], *seen.max(axis=0)[::-1] + 1)
        assert tuple(map(int, box)) == (x, y, x + width, y + height), f"{name}: {box}"
        assert (pixels[y:y + height, x:x + width] == (*color, 255)).all(), name
        canvas[y:y + height, x:x + width] = color
    assert numpy.abs(merged - canvas).max() <= 1
    shutil.rmtree(world)
    print("psd-tools agrees")
    return 0


sys.exit(main())
