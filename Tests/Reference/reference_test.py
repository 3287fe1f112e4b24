"""Imports one sample of every kind and compares each thumbnail with a rendering of the same file by another program.

reference_test.py ZELTO ZELTO_SAMPLES FOLDER: prints the distance for each file, 0 (equal) to 1; fails when one is larger
than allowed, or when a kind is missing.
"""

import json
import os
import pathlib
import shutil
import sqlite3
import subprocess
import sys
import zipfile

zelto, samples, world = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
ALLOWED = 0.02
# Without a profile, what CMYK looks like is each program's own idea; a raw file's brightness is chosen anew.
ALLOWED_FOR = {"cmyk.tiff": 0.12, "cmyk.jpg": 0.12, "sensor.dng": 0.04}
KINDS = {"ai", "acorn", "bmp", "dng", "gif", "icns", "ico", "jp2", "jpg", "pdf", "png", "psd", "sketch", "svg", "tga", "tiff",
         "avif", "heic", "jxl", "webp"}


def run(*command):
    return subprocess.run([str(part) for part in command], check=True, capture_output=True)


def largest_frame(path):
    """The largest picture in an ICO file, as a name for ImageMagick."""
    sizes = run("identify", "-format", "%w\n", path).stdout.split()
    return f"{path}[{max(range(len(sizes)), key=lambda i: int(sizes[i]))}]"


def from_icns(path, out):
    """The last PNG inside is the largest."""
    data = path.read_bytes()
    at, best = 8, b""
    while at + 8 <= len(data):
        size = int.from_bytes(data[at + 4:at + 8], "big")
        if data[at + 8:at + 12] == b"\x89PNG" and size > len(best):
            best = data[at + 8:at + size]
        at += max(size, 8)
    out.write_bytes(best)


def from_acorn(path, out):
    with sqlite3.connect(f"file:{path}?mode=ro&immutable=1", uri=True) as store:
        out.write_bytes(store.execute("select value from image_attributes where name = 'composite'").fetchone()[0])


def draw(path, out):
    """A picture of the file by a program that knows nothing of this one."""
    kind = path.suffix[1:].lower()
    if kind == "svg":
        run("rsvg-convert", "-w", 512, "-h", 512, "--keep-aspect-ratio", "-o", out, path)
    elif kind in ("pdf", "ai"):
        run("pdftoppm", "-png", "-singlefile", "-scale-to", 512, path, out.with_suffix(""))
    elif kind == "icns":
        from_icns(path, out)
    elif kind == "dng":
        run("convert", world / "samples" / "Formats" / "plain.bmp", out)  # what its sensor saw
    elif kind == "acorn":
        from_acorn(path, out)
    elif kind == "sketch" and path.is_file():
        with zipfile.ZipFile(path) as document:
            out.write_bytes(document.read("previews/preview.png"))
    elif kind == "sketch":
        shutil.copy(path / "QuickLook" / "Preview.png", out)
    elif kind == "jxl":
        run("djxl", path, out)
    elif kind == "heic":
        run("heif-convert", path, out)
    elif kind == "avif":
        run("avifdec", path, out)
    else:
        source = largest_frame(path) if kind == "ico" else f"{path}[0]"
        run("convert", "-quiet", source, "-auto-orient", "+repage", "-colorspace", "sRGB", out)


def distance(ours, theirs):
    """The mean difference of the channels, over white, at one size."""
    width, height = (int(n) for n in run("identify", "-format", "%w %h", f"{ours}[0]").stdout.split())
    flat = []
    for number, picture in enumerate((ours, theirs)):
        flat.append(world / f"flat-{number}.png")
        run("convert", f"{picture}[0]", "-background", "white", "-flatten", "-depth", 8, "-colorspace", "sRGB", "-type",
            "TrueColor", "-filter", "Box", "-resize", f"{width}x{height}!", "-resize", "25%", flat[-1])
    answer = subprocess.run(["compare", "-metric", "MAE", flat[0], flat[1], "null:"], capture_output=True, text=True)
    return float(answer.stderr.split("(")[1].split(")")[0])


def main():
    shutil.rmtree(world, ignore_errors=True)
    world.mkdir(parents=True)
    for name in ("DATA_HOME", "CONFIG_HOME", "RUNTIME_DIR"):
        os.environ["XDG_" + name] = str(world / name)
    (world / "RUNTIME_DIR").mkdir(mode=0o700)
    library = world / "reference.ztlibrary"
    run(samples, world / "samples")
    run(zelto, "--library", library, "defaults", "write", "AlwaysMakeThumbsWhileImporting", "true")
    folders = [world / "samples" / name for name in ("Brand 2026", "Formats", "Orientations")]
    run(zelto, "--library", library, "import", *folders, "--into", "PROJECTS")
    items = json.loads(run(zelto, "--library", library, "items", "--json").stdout)
    failures, seen = [], set()
    for item in items:
        path = pathlib.Path(item["itemPath"])
        reference = world / "reference.png"
        reference.unlink(missing_ok=True)
        if not item["thumbPath"]:
            failures.append(f"{path.name} has no thumbnail")
            continue
        draw(path, reference)
        found, allowed = distance(item["thumbPath"], reference), ALLOWED_FOR.get(path.name, ALLOWED)
        print(f"{found:8.4f}  {path.name}")
        seen.add(path.suffix[1:].lower())
        if found > allowed:
            failures.append(f"{path.name} differs by {found:.4f} (at most {allowed})")
    failures += [f"no sample of {kind}" for kind in sorted(KINDS - seen)]
    print("\n".join(failures) if failures else f"{len(items)} files as other programs draw them")
    shutil.rmtree(world, ignore_errors=True)
    return 1 if failures else 0


sys.exit(main())
