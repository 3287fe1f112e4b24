"""Whether docs/JSON.md says what the program prints, and whether docs/examples reads a library: forms_test.py ZELTO ROOT"""
import http.server
import itertools
import json
import re
import subprocess
import sys
import threading
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.append(str(Path(__file__).resolve().parents[1] / "Support"))
from world import World, png

ZELTO, ROOT = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
# What needs a server of its own, or a damaged library: held against the option's help alone.
NOT_RUN = {"share", "snap", "recover (damaged)"}


def documented():
    """The keys of each command, and which of them may be left out."""
    commands, keys = {}, None
    for line in (ROOT / "docs/JSON.md").read_text().splitlines():
        if heading := re.match(r"## `zelto ([^`]*)`", line):
            command, keys = heading[1], commands.setdefault(heading[1], {})
        elif line.startswith("## "):
            keys = None
        elif keys is not None and (same := re.match(r"What `zelto ([^`]*)` prints", line)):
            commands[command] = keys = dict(commands[same[1]])
        elif keys is not None and (row := re.match(r"\| `([^`]+)` \|(.*)\|$", line)):
            keys[row[1]] = row[2].strip().startswith("Only ")
    return commands


def keys_of(value, maps, prefix=""):
    """All keys of it; those of an element of an array behind “[]”. What has the form of its parent adds none."""
    if isinstance(value, list):
        return set().union(*(keys_of(each, maps, prefix) for each in value))
    found = set()
    if isinstance(value, dict):
        for key, below in value.items():
            found.add(prefix + key)
            if key == "children":
                found |= keys_of(below, maps, prefix)
            elif key not in maps:
                found |= keys_of(below, maps, f"{prefix}{key}{'[]' if isinstance(below, list) else ''}.")
    return found


class OnePicture(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        body = png(20, 20, (10, 200, 30)) if self.path == "/one.png" else b"not a picture" if self.path == "/bad.png" else None
        self.send_response(200 if body else 404)
        self.send_header("Content-Length", str(len(body or b"")))
        self.end_headers()
        self.wfile.write(body or b"")

    def log_message(self, *_):
        pass


class Feed(OnePicture):
    """What announces a version, signed."""
    body = b""

    def do_GET(self):
        self.send_response(200 if self.path == "/updates/release/feed.json" else 404)
        self.send_header("Content-Length", str(len(self.body)))
        self.end_headers()
        self.wfile.write(self.body)


class Forms(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.world = World(ZELTO)
        for name in ("one.png", "two.png", "Mirrored/three.png", "Mirrored/Below/four.png", "out/", "data/Zelto/Templates/Card.png.zttemplate"):
            cls.world.make(name)
        (cls.world.home / "empty.png").touch()

    @classmethod
    def tearDownClass(cls):
        cls.world.__exit__()

    def run_json(self, *arguments, statuses=(0, 1)):
        done = self.world.run("zelto", *arguments, "--json")
        self.assertIn(done.returncode, statuses, done.stderr)
        return json.loads(done.stdout)

    def printed(self):
        """What each command prints, in a library in which something of each kind happens."""
        first = self.run_json("import", "one.png", "two.png", "empty.png")
        yield "import", first
        yield "livefolders", (self.world.run("zelto", "livefolders", "add", "Mirrored"), self.run_json("livefolders"))[1]
        yield "livefolders sync", self.run_json("livefolders", "sync")
        yield "sync", self.run_json("sync")
        items = self.run_json("items")
        self.world.run("zelto", "tag", items[0]["bundleID"], "--add", "draft")
        self.world.run("zelto", "import", "one.png", "--into", "PROJECTS/Sample project")
        yield "items", items
        yield "sidebar", self.run_json("sidebar")
        yield "search", self.run_json("search", "one")
        yield "search --explain", self.run_json("search", "--explain", "one")
        yield "tags", self.run_json("tags")
        yield "attributes", self.run_json("attributes", "one.png", "empty.png")
        yield "templates", self.run_json("templates")
        yield "defaults read", self.run_json("defaults", "read", "UseDarkUI")
        yield "verify", self.run_json("verify")
        yield "fingerprints", self.run_json("fingerprints")
        yield "recover", self.run_json("recover")
        yield "psd", self.run_json("psd", "one.png", "--size", "40x40", "--out", "layers.psd")
        self.world.make("Backups/")
        yield "backup", self.run_json("backup", "Backups")
        yield "statistics", self.run_json("statistics")
        for width in (90, 180): # one drawing in two sizes
            (self.world.home / f"drawing {width}.svg").write_text(
                f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{width * 2 // 3}" viewBox="0 0 90 60"><rect x="5" y="9" '
                'width="50" height="30" fill="#2a7"/><circle cx="66" cy="41" r="13" fill="#c35"/></svg>')
        drawn = self.run_json("import", "drawing 90.svg", "drawing 180.svg")["imported"]
        yield "similar", self.run_json("similar", drawn[0])
        yield "near-duplicates", self.run_json("near-duplicates")
        # A file that is missing, so that the export has something to say.
        Path(items[0]["itemPath"]).unlink()
        yield "export", self.run_json("export", *(item["bundleID"] for item in items), "--to", "out", "--format", "jpeg")
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), OnePicture)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        page = f"http://127.0.0.1:{server.server_port}"
        yield "download", self.run_json("download", *(f"{page}/{name}.png" for name in ("one", "bad", "gone")), "--page", page)
        server.shutdown()
        server.server_close()

    def services(self):
        """What is printed of what the program does beside a library."""
        state = self.world.home / ".local/state/Zelto"
        (state / "crash-reports").mkdir(parents=True, mode=0o700)
        (state / "crash-reports/crash-1700000000-7.new").write_text("Zelto ended unexpectedly\n")
        (state / "usage.json").write_text('{"2026-11-20": {"Export Items": 2}}')
        yield "reports list", self.run_json("reports", "list")
        usage = self.run_json("usage", "show")
        self.assertEqual(usage, {"2026-11-20": {"Export Items": 2}})
        yield "usage show", usage
        sign, key = ROOT / "Tools/sign_feed.py", self.world.home / "key.pem"
        made = [subprocess.run([sys.executable, sign, *words], check=True, capture_output=True, timeout=60).stdout
                for words in (("key", key), ("sign", key, "1000.1", "https://example.org/get"))]
        Feed.body = made[1]
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Feed)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.world.run("zelto", "defaults", "write", "UpdateFeedAddress", f"http://127.0.0.1:{server.server_port}/")
        self.world.run("zelto", "defaults", "write", "UpdateKey", made[0].decode().strip())
        check = self.run_json("updates", "check", "--channel", "release", statuses=(1,))
        self.assertEqual((check["newest"], check["isNewer"]), ("1000.1", True))
        yield "updates check", check
        server.shutdown()
        server.server_close()

    def test_json_is_as_described(self):
        described, seen = documented(), {}
        maps = {"reasonsBelow", "years"}
        for command, value in itertools.chain(self.printed(), self.services()):
            seen[command] = keys_of(value, maps) if command not in {"defaults read", "usage show"} else set()
            with self.subTest(command):
                self.assertLessEqual(seen[command], set(described.get(command, {})), "printed, and not described")
                always = {key for key, is_rare in described.get(command, {}).items() if not is_rare}
                self.assertLessEqual(always, seen[command], "described, and not printed")
        self.assertEqual(set(described) - set(seen) - NOT_RUN, set())

    def test_help_names_the_keys(self):
        for command, keys in documented().items():
            words = command.split(" (")[0].split(" --")[0].split()
            told = re.search(r"Print one object: ([\w, ]+)", " ".join(self.world.run("zelto", *words, "--help").stdout.split()))
            if told and " --" not in command:
                with self.subTest(command):
                    top = {key for key in keys if "." not in key}
                    self.assertLessEqual(top, set(re.findall(r"\w+", told[1])))

    def test_every_command_that_prints_json_is_described(self):
        reference = self.world.run("zelto", "markdown").stdout
        printing = {command for command, text in re.findall(r"\n## `zelto ([^`]*)`\n(.*?)(?=\n## |\Z)", reference, re.S)
                    if "| `--json` |" in text}
        self.assertEqual(printing - {"open-url"}, printing & set(documented()))

    def test_a_library_is_read_without_the_program(self):
        with World(ZELTO) as world:
            for name in ("Ünï.png", "wide.png", "Mirrored/three.png"):
                world.make(name)
            (world.home / "drawing.svg").write_text('<svg xmlns="http://www.w3.org/2000/svg" width="90" height="60"><rect '
                                                    'width="50" height="40" fill="#2a7"/></svg>')
            world.run("zelto", "import", "Ünï.png", "wide.png", "drawing.svg", "--set", "webPageURL=https://example.org/page")
            world.run("zelto", "livefolders", "add", "Mirrored")
            items = json.loads(world.run("zelto", "items", "--json").stdout)
            self.assertEqual(len(items), 4)
            first, gone = items[0]["bundleID"], items[1]["bundleID"]
            world.run("zelto", "tag", first, "--add", "draft", "--add", "ç tag")
            world.run("zelto", "rate", first, "4")
            world.run("zelto", "delete", gone)
            told = {item["bundleID"]: item for item in json.loads(world.run("zelto", "items", "--json").stdout)}
            self.assertEqual(len(told), 3)
            script = ROOT / "docs/examples/read_library.py"
            done = subprocess.run([sys.executable, script, world.library, "--json"], text=True, capture_output=True, timeout=60)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            read = {item["bundleID"]: item for item in json.loads(done.stdout)}
            self.assertEqual(set(read), set(told))
            for name, item in read.items():
                expected = {key: sorted(told[name][key]) if key == "tags" else told[name][key] for key in item}
                self.assertEqual(item, expected)
            self.assertTrue(any(item["thumbPath"] and Path(item["thumbPath"]).is_file() for item in read.values()))
            self.assertLess(len(script.read_text().splitlines()), 120)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
