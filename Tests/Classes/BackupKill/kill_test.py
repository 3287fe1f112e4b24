"""Kills the program at random moments while it makes a backup, changes the library in between, and looks after each
kill whether every backup that has its whole name opens, is sound and is what the library was; at the end one more
backup leaves nothing of those that were cut off.

kill_test.py ZELTO ROUNDS [SEED]; exit status 1 also where fewer than a third of the kills interrupted anything.
"""
import glob, json, os, random, shutil, signal, subprocess, sys, tempfile, time

sys.dont_write_bytecode = True
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../Support"))
from pictures import png

FILES = 300
zelto, rounds, seed = sys.argv[1], int(sys.argv[2]), int(sys.argv[3]) if len(sys.argv) > 3 else 1
world = tempfile.mkdtemp(prefix="backup-kill-", dir=os.getcwd())
environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", TMPDIR=f"{world}/tmp", HOME=world, XDG_DATA_HOME=f"{world}/data",
                   XDG_CONFIG_HOME=f"{world}/config", XDG_RUNTIME_DIR=f"{world}/run")
for name in ("tmp", "data", "config", "in", "backups"):
    os.mkdir(f"{world}/{name}")
os.mkdir(f"{world}/run", 0o700)
library = f"{world}/Test.ztlibrary"
made = 0


def write():
    global made
    made += 1
    path = f"{world}/in/{made}.png"
    with open(path, "wb") as out:
        out.write(png([bytes([made % 256, made // 256, 90]) * 16] * 16))
    return path


def command(*arguments, of=library):
    return [zelto, "--library", of, *arguments]


def run(*arguments, of=library):
    done = subprocess.run(command(*arguments, of=of), env=environment, capture_output=True, text=True)
    assert done.returncode == 0, (arguments, done.returncode, done.stdout[-2000:], done.stderr[-2000:])
    return done.stdout


def identifiers(of=library):
    return sorted(item["bundleID"] for item in json.loads(run("items", "--json", of=of)))


def whole():
    return sorted(path for path in glob.glob(f"{world}/backups/Test/*.ztlibrary"))


def checkBackup(path, expected):
    # A copy, as one restores: a look must not change what the next backup is compared with.
    copy = f"{world}/copy.ztlibrary"
    shutil.copytree(path, copy)
    run("verify", "--deep", of=copy)
    assert identifiers(copy) == expected, path
    shutil.rmtree(copy)


try:
    run("import", *[write() for _ in range(FILES)])
    generator = random.Random(seed)
    contents = {}  # of each whole backup
    interrupted = 0
    took = 3.0
    for number in range(rounds):
        now = identifiers()
        start = time.monotonic()
        process = subprocess.Popen(command("backup", f"{world}/backups", "--keep", "3"), env=environment,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            process.wait(took * generator.uniform(0.2, 0.95))
            took = min(took, time.monotonic() - start)
        except subprocess.TimeoutExpired:
            process.send_signal(signal.SIGKILL)
            interrupted += process.wait() == -signal.SIGKILL
        for path in whole():
            contents.setdefault(path, now)
        newest = whole()[-1:]
        for path in newest:
            checkBackup(path, contents[path])
        run("import", write())
        some = generator.sample(now, 3)
        run("tag", "--add", f"tag {number}", some[0])
        run("delete", *some[1:])
        run("purge")
    before = whole()
    last = json.loads(run("backup", f"{world}/backups", "--json"))["path"]
    assert sorted(before + [last]) == whole(), "without --keep none goes"
    for path in before:
        checkBackup(path, contents[path])
    checkBackup(last, identifiers())
    left = [name for name in os.listdir(f"{world}/backups/Test") if "unfinished" in name]
    assert not left, left
    run("verify", "--deep")
    print(f"{rounds} rounds, {interrupted} killed in the middle: {len(before) + 1} backups, all whole")
    if interrupted * 3 < rounds:
        print("too few of the kills interrupted anything, so this says little")
        sys.exit(1)
finally:
    shutil.rmtree(world, ignore_errors=True)
