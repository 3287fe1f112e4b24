"""Layered documents that `zelto psd` writes, read back by programs that know nothing of this one.

readers_test.py ZELTO FOLDER [READERS]: psd-tools, and ag-psd where `./dev readers` put it into READERS, have to find the
layers that went in: pixels, names, offsets and opacity.
"""

import hashlib
import json
import os
import pathlib
import random
import shutil
import subprocess
import sys

import numpy
import PIL.Image
import psd_tools

zelto, world = sys.argv[1].split(), pathlib.Path(sys.argv[2])
readers = pathlib.Path(sys.argv[3]) if len(sys.argv) > 3 else None
CANVASES = [(1, 1), (3, 1), (1, 200), (30000, 2), (2, 30000), (257, 129), (64, 64)]
NAMES = {"": "layer-{}", "Fond, @ 2": "Fond, @ 2", "Größe und Maß einer Form": "Gro?e und Ma? e"}


def picture(chance, width, height):
    """Flat, striped and noisy parts, so that rows are packed in every way."""
    dice = numpy.random.default_rng(chance.randrange(1 << 32))
    pixels = numpy.zeros((height, width, 4), numpy.uint8)
    pixels[:] = dice.integers(0, 256, 4)
    pixels[: height // 2, width // 3:] = dice.integers(0, 256, (height // 2, width - width // 3, 4))
    pixels[:, : width // 4, :3] = dice.integers(0, 3, (height, width // 4, 1)) * 100
    pixels[height // 2:, : width // 5, 3] = 0
    if chance.random() < 0.4:
        pixels[..., 3] = 255
    return pixels


def on_canvas(pixels, offset, size):
    """What of it a document holds: straight, white where nothing is seen of it, and nothing around it."""
    straight = numpy.where(pixels[..., 3:] == 0, numpy.array([255, 255, 255, 0], numpy.uint8), pixels)
    canvas = numpy.zeros((size[1], size[0], 4), numpy.uint8)
    (x, y), (height, width) = offset, pixels.shape[:2]
    left, top = max(x, 0), max(y, 0)
    right, bottom = min(x + width, size[0]), min(y + height, size[1])
    if left < right and top < bottom:
        canvas[top:bottom, left:right] = straight[top - y:bottom - y, left - x:right - x]
    return canvas


def digest(pixels):
    return hashlib.sha256(numpy.ascontiguousarray(pixels, numpy.uint8).tobytes()).hexdigest()


def write(chance, size, document):
    """Some layers; what is expected of them, the bottom one first."""
    arguments, expected = [], []
    under = numpy.full((size[1], size[0], 4), 255.0)
    for number in range(chance.randint(1, 4)):
        width, height = (chance.choice([1, side, chance.randint(1, side), min(side + 7, 30000)]) for side in size)
        pixels = picture(chance, width, height)
        path = world / f"layer-{number}.png"
        PIL.Image.fromarray(pixels).save(path)
        offset = [chance.randint(-min(side, 9), side + 2) for side in (size)]
        opacity, (name, stored) = chance.choice([0, 0.25, 0.5, 1]), chance.choice(list(NAMES.items()))
        arguments.append(f"{path}@{offset[0]},{offset[1]},{opacity},{name}")
        canvas = on_canvas(pixels, offset, size)
        expected.append({"name": stored.format(number), "opacity": -int(-opacity * 255 // 1), "rect": [0, 0, *size],
                         "pixels": digest(canvas)})
        cover = canvas[..., 3:] / 255 * opacity
        under = canvas * cover + under * (1 - cover)
    subprocess.run([*zelto, "psd", "--size", f"{size[0]}x{size[1]}", "--out", document, "--force", *arguments], check=True,
                   stdout=subprocess.DEVNULL)
    return expected, under


def by_psd_tools(document):
    psd = psd_tools.PSDImage.open(document)
    layers = [{"name": layer.name.rstrip(), "opacity": layer.opacity, "rect": list(layer.bbox),
               "pixels": digest(numpy.rint(layer.numpy() * 255))} for layer in psd]
    return list(psd.size), layers, numpy.rint(psd.numpy("color") * 255)


def by_ag_psd(document):
    script = pathlib.Path(__file__).parent / "readers" / "read.js"
    found = json.loads(subprocess.run(["node", script, document], check=True, capture_output=True, text=True,
                                      env={**os.environ, "ZELTO_READERS": str(readers)}).stdout)
    for layer in found["layers"]:
        layer["name"] = layer["name"].rstrip()
    return found["size"], found["layers"]


def main():
    shutil.rmtree(world, ignore_errors=True)
    world.mkdir(parents=True)
    seed = int(os.environ.get("ZELTO_SEED", random.randrange(1 << 32)))
    print(f"ZELTO_SEED={seed}")
    chance = random.Random(seed)
    has_second = readers is not None and (readers / "node_modules" / "ag-psd").is_dir() and shutil.which("node")
    for size in CANVASES * 3:
        document = world / "document.psd"
        expected, merged = write(chance, size, document)
        found_size, layers, color = by_psd_tools(document)
        assert found_size == list(size), found_size
        assert layers == expected, f"psd-tools, {size}:\n{layers}\n{expected}"
        assert numpy.abs(color - merged[..., :3]).max() < len(expected) + 0.5, f"psd-tools, merged, {size}"
        if has_second:
            assert by_ag_psd(document) == (list(size), expected), f"ag-psd, {size}:\n{by_ag_psd(document)}\n{expected}"
    print("psd-tools" + (" and ag-psd agree" if has_second else " agrees; ag-psd is not there: ./dev readers"))
    shutil.rmtree(world)


main()
