"""Kills the program at random moments while it brings a live folder in step, changes the disk in between, and compares
at the end: every picture has one item, no file of the folder is lost or changed, and the library is sound.

kill_test.py ZELTO ROUNDS [SEED]; exit status 1 also where fewer than a third of the kills interrupted anything.
"""
import hashlib, json, os, random, shutil, signal, subprocess, sys, tempfile, time

sys.dont_write_bytecode = True
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../Support"))
from pictures import png

FILES = 240
zelto, rounds, seed = sys.argv[1], int(sys.argv[2]), int(sys.argv[3]) if len(sys.argv) > 3 else 1
world = tempfile.mkdtemp(prefix="live-kill-", dir=os.getcwd())
environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", TMPDIR=f"{world}/tmp", HOME=world, XDG_DATA_HOME=f"{world}/data",
                   XDG_CONFIG_HOME=f"{world}/config", XDG_RUNTIME_DIR=f"{world}/run")
for name in ("tmp", "data", "config"):
    os.mkdir(f"{world}/{name}")
os.mkdir(f"{world}/run", 0o700)
root = f"{world}/in"
expected = {}  # path: digest
made = 0


def write(path):
    global made
    made += 1
    data = png([bytes([made % 256, made // 256, 90]) * 16] * 16)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as out:
        out.write(data)
    expected[path] = hashlib.sha1(data).hexdigest()


def command(*arguments):
    return [zelto, "--library", f"{world}/Test.ztlibrary", *arguments]


def run(*arguments):
    done = subprocess.run(command(*arguments), env=environment, capture_output=True, text=True)
    assert done.returncode == 0, (arguments, done.returncode, done.stdout[-2000:], done.stderr[-2000:])
    return done.stdout


def change(generator):
    for path in generator.sample(sorted(expected), 12):
        what = generator.randrange(4)
        if what == 0:
            os.remove(path)
            del expected[path]
        elif what == 1:
            moved = f"{root}/{generator.randrange(8)}/moved {made} {generator.random()}.png"
            os.makedirs(os.path.dirname(moved), exist_ok=True)
            os.rename(path, moved)
            expected[moved] = expected.pop(path)
        elif what == 2:
            write(path)
        else:
            write(f"{root}/new {generator.randrange(3)}/{made}.png")


try:
    for i in range(FILES):
        write(f"{root}/{i % 8}/{i}.png")
    generator = random.Random(seed)
    interrupted = 0
    took = 3.0
    for number in range(rounds):
        arguments = ("livefolders", "add", root) if number < 2 else ("sync",)
        start = time.monotonic()
        process = subprocess.Popen(command(*arguments), env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            process.wait(took * generator.uniform(0.05, 0.9))
            took = min(took, time.monotonic() - start)
        except subprocess.TimeoutExpired:
            process.send_signal(signal.SIGKILL)
            interrupted += process.wait() == -signal.SIGKILL
        change(generator)
    run("livefolders", "add", root)
    run("sync")
    items = [item for item in json.loads(run("items", "--json")) if not item["managed"]]
    paths = sorted(item["itemPath"] for item in items)
    if paths != sorted(expected):
        print(f"seed {seed}: missing {sorted(set(expected) - set(paths))[:3]}, too many {sorted(set(paths) - set(expected))[:3]}, "
              f"{len(paths)} items of {len(expected)} files")
        sys.exit(1)
    for path, digest in expected.items():
        with open(path, "rb") as file:
            assert hashlib.sha1(file.read()).hexdigest() == digest, f"{path} has changed"
    on_disk = sorted(os.path.join(folder, name) for folder, _, names in os.walk(root) for name in names)
    assert on_disk == sorted(expected), "the folder holds something else than was put there"
    run("verify", "--deep")
    before = json.loads(run("livefolders", "--json"))
    assert [(folder["items"], folder["state"]) for folder in before] == [(len(expected), "live")], before
    print(f"{rounds} rounds, {interrupted} killed in the middle: store and disk agree")
    if interrupted * 3 < rounds:
        print("too few of the kills interrupted anything, so this says little")
        sys.exit(1)
finally:
    shutil.rmtree(world, ignore_errors=True)
