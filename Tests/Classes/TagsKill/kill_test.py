"""Kills the program while it tags many items, has another program tag some of the files, starts it again, and compares
store and files: they agree, and the other program's tags are in both.

kill_test.py ZELTO ROUNDS [SEED]; exit status 77 where the file system keeps no attributes, 1 where nothing may be
skipped (ZELTO_TESTS_MUST_NOT_SKIP) or where fewer than a third of the kills came while there was something to
interrupt.
"""
import json, os, plistlib, random, shutil, signal, subprocess, sys, tempfile, time, unicodedata

sys.dont_write_bytecode = True
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../Support"))
from pictures import png

ITEMS = 150
zelto, rounds, seed = sys.argv[1], int(sys.argv[2]), int(sys.argv[3]) if len(sys.argv) > 3 else 1
world = tempfile.mkdtemp(prefix="tags-kill-", dir=os.getcwd())
environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", TMPDIR=f"{world}/tmp", HOME=world, XDG_DATA_HOME=f"{world}/data",
                   XDG_CONFIG_HOME=f"{world}/config", XDG_RUNTIME_DIR=f"{world}/run")
for name in ("tmp", "data", "config", "in"):
    os.mkdir(f"{world}/{name}")
os.mkdir(f"{world}/run", 0o700)


def picture(path, value):
    with open(path, "wb") as out:
        out.write(png([bytes([value % 256, value // 256, 90]) * 16] * 16))


def command(*arguments):
    return [zelto, "--library", f"{world}/Test.ztlibrary", *arguments]


def run(*arguments):
    return subprocess.run(command(*arguments), env=environment, check=True, capture_output=True, text=True).stdout


def same(tags):
    return sorted(unicodedata.normalize("NFC", tag) for tag in tags)


TAGS = "user.com.apple.metadata:kMDItemOMUserTags"


def tag_from_outside(path, tag):
    os.setxattr(path, TAGS, plistlib.dumps(file_tags(path) + [tag], fmt=plistlib.FMT_BINARY))


def file_tags(path):
    try:
        return plistlib.loads(os.getxattr(path, TAGS))
    except OSError:
        return []


try:
    try:
        os.setxattr(world, "user.probe", b"1")
    except OSError as error:
        print(f"NOT TESTED: this file system keeps no attributes: {error}")
        sys.exit(1 if "ZELTO_TESTS_MUST_NOT_SKIP" in os.environ else 77)
    for i in range(ITEMS):
        picture(f"{world}/in/{i}.png", i)
    run("import", f"{world}/in", "--into", "PROJECTS")
    items = json.loads(run("items", "--json"))
    assert len(items) == ITEMS, len(items)
    names = [item["bundleID"] for item in items]
    foreign = []  # (bundleID, tag) that another program gave
    start = time.monotonic()
    run("tag", *names, "--add", "first")
    took = time.monotonic() - start
    generator = random.Random(seed)
    interrupted = 0
    pending = f"{world}/Test.ztlibrary/pending-tags"
    for number in range(rounds):
        process = subprocess.Popen(command("tag", *names, "--add", f"round {number}", "--remove", f"round {number - 1}" if number % 2 else "first"),
                                   env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        while process.poll() is None and os.path.getsize(pending) == 0:  # until it is about to write
            time.sleep(0.001)
        time.sleep(took * generator.uniform(0, 0.15))
        process.send_signal(signal.SIGKILL)
        interrupted += process.wait() == -signal.SIGKILL and os.path.getsize(pending) > 0
        for item in generator.sample(items, 10):
            tag_from_outside(item["itemPath"], f"theirs {number}")
            foreign.append((item["bundleID"], f"theirs {number}"))
        run("tag", *names, "--add", f"after {number}")  # so that every file is written to
        for name in ("first", f"round {number}"):  # what the next round removes exists
            run("tag", names[0], "--add", name)
        after = json.loads(run("items", "--json"))
        different = [(item["itemPath"], item["tags"], file_tags(item["itemPath"])) for item in after
                     if same(item["tags"]) != same(file_tags(item["itemPath"]))]
        if different:
            print(f"round {number} (seed {seed}): {len(different)} files differ from the store, the first: {different[0]}")
            sys.exit(1)
        tags = {item["bundleID"]: item["tags"] for item in after}
        lost = [(name, tag) for name, tag in foreign if tag not in tags[name]]
        if lost:
            print(f"round {number} (seed {seed}): {len(lost)} tags of another program are lost, the first: {lost[0]}")
            sys.exit(1)
        assert os.path.getsize(pending) == 0, "the journal is not emptied"
    print(f"{rounds} rounds, {interrupted} of them killed with writes pending: store and files agree")
    if interrupted * 3 < rounds:
        print("too few of the kills interrupted anything, so this says little")
        sys.exit(1)
finally:
    shutil.rmtree(world, ignore_errors=True)
