#!/usr/bin/env python3
"""How well pictures are known again: 300 wallpapers, photographs, cut-outs and drawn samples, each in altered forms.

Every picture is compared with every altered one of a form, 90 000 pairs, of which 300 are the same picture. A pair as near
as ZQPictureHash::alikeDistance is said to be the same. Recall is how many of the 300 are found, precision how many of those
found are right.

Pictures that packages hold in several sizes, shades or crops are in truth one picture: of those with one name (see `group`)
one is taken, the largest. Those found to be one picture under two names are in `SAME`.
"""
import argparse, concurrent.futures, hashlib, json, os, random, re, subprocess, sys, tempfile

WALLPAPERS = ["plasma-workspace-wallpapers", "ukui-wallpapers", "mate-backgrounds", "gnome-backgrounds",
              "lomiri-wallpapers-16.04", "lomiri-wallpapers-20.04"]
CUTOUTS = "tuxpaint-stamps-default"
# Kits of parts that differ in little, and letters: nobody would call two of them different pictures or the same.
NO_CUTOUTS = re.compile(r"/(symbols|clothes|houses|flags|hanukkah|body_parts|roadsigns|planets|cartoon)/")
# White drawings on nothing, which show nothing as a JPEG.
NO_WALLPAPERS = re.compile(r"/mate/abstract/(Arc-Colors-Transparent-Wallpaper|Flow|Gulp|Silk|Spring|Waves)\.png$")
# One drawing in the colours of several editions, or with another word on it.
SAME = [re.compile(pattern) for pattern in (r"Ubuntu-Mate-\w+-no-logo", r"MATE-Stripes", r"halloween/grave-", r"Photos/(?:Ocean Swell|Lavender Field)")]
COUNT = 300
SIDE = 640  # pixels of the longer side of what is altered; larger only costs the bench time
PEERS = 24  # pictures that ImageMagick compares with each other

# What ImageMagick does to a picture in each form, and the kind of file it becomes ("" for the picture's own).
FORMS = {
    "half size": (["-resize", "50%"], ""),
    "JPEG 40": (["-background", "white", "-flatten", "-quality", "40"], "jpg"),
    "border": (["-compose", "Copy", "-bordercolor", "#20304a", "-border", "5%", "-compose", "Over"], ""),
    "brightness +15 %": (["-modulate", "115"], ""),
    "brightness -15 %": (["-modulate", "85"], ""),
    "greyscale": (["-colorspace", "Gray"], ""),
    "watermark": (["-gravity", "southeast", "-fill", "#ffffffa0", "-stroke", "#00000060", "-pointsize", "{tenth}",
                   "-annotate", "+10+10", "© Studio"], ""),
    "format change": (["-background", "white", "-flatten", "-quality", "80"], "other"),
    "blur": (["-blur", "0x2"], ""),
    "sharpen": (["-unsharp", "0x2+1.5+0"], ""),
    "crop 5 %": (["-gravity", "northwest", "-crop", "95%x95%+0+0", "+repage"], ""),
    "3° turn": (["-background", "white", "-rotate", "3"], ""),
    "mirror": (["-flop"], ""),
}
STATED = {"crop 5 %", "3° turn", "mirror"}  # without a limit


def files_of(packages):
    listing = subprocess.run(["dpkg", "-L", *packages], check=True, stdout=subprocess.PIPE, text=True).stdout
    names = sorted(set(listing.splitlines()))
    return [n for n in names if n.lower().endswith((".jpg", ".jpeg", ".png", ".webp")) and os.path.isfile(n) and not os.path.islink(n)]


def group(path):
    """What files of one picture have in common: the folder of a wallpaper, or the name without size and shade."""
    for pattern in SAME:
        if match := pattern.search(path):
            return pattern.pattern
    if match := re.search(r"/wallpapers/([^/]+)/", path):
        return match[0]
    stem = os.path.splitext(os.path.basename(path))[0]
    return re.sub(r"(_\d+x\d+|-[dl]|\d+)$", "", stem)


def chosen(samples):
    """300 files, one a picture: all wallpapers and samples, and cut-outs in an order that no folder rules."""
    drawn = [os.path.join(folder, name) for part in ("Photos", "Brand 2026/Logos") for folder, _, names in os.walk(f"{samples}/{part}") for name in names]
    found = {}
    for path in [each for each in files_of(WALLPAPERS) if not NO_WALLPAPERS.search(each)] + sorted(drawn):
        key = group(path)
        if key not in found or os.path.getsize(path) > os.path.getsize(found[key]):
            found[key] = path
    cutouts = [path for path in files_of([CUTOUTS]) if not NO_CUTOUTS.search(path) and "_mirror" not in path]
    cutouts.sort(key=lambda path: hashlib.sha1(os.path.basename(path).encode()).digest())
    for path in cutouts:
        if len(found) < COUNT:
            found.setdefault(group(path), path)
    return list(found.values())[:COUNT]


def make_forms(path, folder):
    """The picture at SIDE, and its forms, as {form: file}."""
    kind = "png" if path.endswith(".png") else "jpg"
    number = hashlib.sha1(group(path).encode()).hexdigest()[:16]
    made = {"": f"{folder}/{number}.{kind}"}
    for index, (form, (_, ending)) in enumerate(FORMS.items()):
        ending = {"": kind, "other": "jpg" if kind == "png" else "webp"}.get(ending, ending)
        made[form] = f"{folder}/{number}-{index}.{ending}"
    whole = f"{folder}/{number}.whole"
    if os.path.exists(whole):
        return made
    subprocess.run(["vipsthumbnail", path, "-s", f"{SIDE}x{SIDE}>", "--eprofile", "srgb", "-o", os.path.abspath(made[""]) + ("[compression=1,strip]" if kind == "png" else "[Q=92,strip]")],
                   check=True, stderr=subprocess.PIPE)
    height = int(subprocess.run(["identify", "-format", "%h", made[""]], check=True, stdout=subprocess.PIPE, text=True).stdout)
    command = ["convert", made[""], "-quality", "15" if kind == "png" else "92"]
    for form, (changes, _) in FORMS.items():
        command += ["(", "+clone", *(change.format(tenth=max(height // 10, 8)) for change in changes), "-write", made[form], "+delete", ")"]
    subprocess.run([*command, "null:"], check=True, stderr=subprocess.PIPE)
    open(whole, "w").close()
    return made


def hashes_of(bench, paths):
    """The hash of each file as a number, None for one that shows nothing; and milliseconds of one hash and one palette."""
    output = subprocess.run([bench], input="".join(f"{path}\n" for path in paths), check=True, stdout=subprocess.PIPE, text=True).stdout
    found, hash_time, palette_time = [], [], []
    for line in output.splitlines():
        value, hashing, palette = line.split(" ")[:3]
        found.append(None if value == "-" else int(value, 16))
        hash_time.append(float(hashing))
        palette_time.append(float(palette))
    middle = len(found) // 2
    return found, sorted(hash_time)[middle], sorted(palette_time)[middle]


def distance(left, right):
    return 256 if left is None or right is None else (left ^ right).bit_count()


def rated(pairs, limit):
    """Recall and precision of (distance, whether it is the same picture) when everything within the limit is said to be."""
    right = sum(1 for value, same in pairs if same and value <= limit)
    said = sum(1 for value, _ in pairs if value <= limit)
    return right / sum(1 for _, same in pairs if same), right / said if said else 1.0


def best_rated(pairs, least=0.99):
    """The best recall at any limit that keeps the precision."""
    right, best, total = 0, 0.0, sum(1 for _, same in pairs if same)
    for said, (_, same) in enumerate(sorted(pairs, key=lambda pair: (pair[0], pair[1])), 1):
        right += same
        if right / said >= least:
            best = max(best, right / total)
    return best


missed = []


def show(name, ours, peer=None, limit=None):
    print(f"  {name:<66} {ours:>8.4f} {'' if peer is None else f'{peer:.4f}':>8} {'' if limit is None else f'(at least {limit})'}")
    print(json.dumps({"name": name, "ours": round(ours, 4), "peer": peer and round(peer, 4), "ratio": None, "limit": limit}), flush=True)
    if limit is not None and ours < limit:
        missed.append(name)


def magick_distance(pair):
    left, right = pair
    result = subprocess.run(["compare", "-metric", "phash", left, right, "null:"], stderr=subprocess.PIPE, text=True)
    return float(result.stderr.split(" ")[0]) if result.stderr else float("inf")


def peer_rates(made, numbers):
    """{form: best recall of ImageMagick}, each of some pictures against all of them."""
    rates = {}
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        for form in FORMS:
            pairs = [(i, j) for i in numbers for j in numbers]
            values = pool.map(magick_distance, [(made[i][""], made[j][form]) for i, j in pairs])
            rates[form] = best_rated([(value, i == j) for value, (i, j) in zip(values, pairs)])
    return rates


def main():
    arguments = argparse.ArgumentParser(prog="./dev bench similar quality")
    arguments.add_argument("bin", help=argparse.SUPPRESS)
    arguments.add_argument("--folder", help="keep the altered pictures there, for the next run")
    arguments.add_argument("--peers", type=int, default=PEERS, help="pictures that ImageMagick compares; 0 for none")
    arguments.add_argument("--all", action="store_true", help="also print the recall at other distances, and the nearest wrong pairs")
    options = arguments.parse_args()
    bench = f"{options.bin}/zelto_similar_bench"
    temporary = tempfile.TemporaryDirectory(dir="build", prefix="bench.")
    folder = options.folder or temporary.name
    os.makedirs(folder, exist_ok=True)
    os.environ["MAGICK_THREAD_LIMIT"] = os.environ["VIPS_CONCURRENCY"] = "1" # two pictures at once; their own threads only wait for each other
    subprocess.run([f"{options.bin}/zelto_samples", f"{temporary.name}/samples"], check=True, stdout=subprocess.DEVNULL)
    paths = chosen(f"{temporary.name}/samples")
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        made = list(pool.map(lambda path: make_forms(path, folder), paths))
    evaluate(bench, paths, made, options)
    if missed:
        sys.exit("not kept: " + "; ".join(missed))


def evaluate(bench, paths, made, options):
    forms = ["", *FORMS]
    flat, hash_time, palette_time = hashes_of(bench, [each[form] for each in made for form in forms])
    hashes = [dict(zip(forms, flat[i * len(forms):(i + 1) * len(forms)])) for i in range(len(made))]
    alike = int(subprocess.run([bench, "--alike"], check=True, stdout=subprocess.PIPE, text=True).stdout)
    print(f"  {len(made)} pictures; the same is what is {alike} apart at most; ImageMagick: {options.peers} pictures against each other, at its best limit")
    print(f"  {'figure':<66} {'ours':>8} {'peer':>8}")
    numbers = random.Random(1).sample(range(len(made)), min(options.peers, len(made)))
    peers = peer_rates(made, numbers) if numbers else {}
    for form in FORMS:
        pairs = [(distance(left[""], right[form]), i == j) for i, left in enumerate(hashes) for j, right in enumerate(hashes)]
        recall, precision = rated(pairs, alike)
        show(f"{form}: recall", recall, peers.get(form), None if form in STATED else 0.95)
        show(f"{form}: precision", precision, None, None if form in STATED else 0.99)
        if numbers:
            few = [(distance(hashes[i][""], hashes[j][form]), i == j) for i in numbers for j in numbers]
            show(f"{form}: recall of the pictures that ImageMagick compares", rated(few, alike)[0], peers[form])
        if options.all:
            print("   ", " ".join(f"{limit}:{rated(pairs, limit)[0]:.3f}/{rated(pairs, limit)[1]:.3f}" for limit in range(24, 97, 8)))
    originals = sorted((distance(hashes[i][""], hashes[j][""]), i, j) for i in range(len(made)) for j in range(i))
    within = sum(1 for value, _, _ in originals if value <= alike)
    print(f"  of {len(originals)} pairs of different pictures {within} are within that distance, the nearest {originals[0][0]} apart")
    print(f"  one hash {hash_time:.3f} ms, one palette {palette_time:.3f} ms (medians, 512 pixels at most)")
    for name, value in (("wrong pairs of originals", within), ("one hash, ms", hash_time), ("one palette, ms", palette_time)):
        print(json.dumps({"name": name, "ours": value, "peer": None, "ratio": None, "limit": None}))
    if options.all:
        for value, i, j in originals[:25]:
            print("   ", value, paths[i], paths[j])


main()
