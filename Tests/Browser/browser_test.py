#!/usr/bin/env python3
"""From a page in a browser to items of a library: the extension, the bookmarklet, and what they hand over.

browser_test.py [ZELTO]    without the program only as far as the browser goes"""
import base64
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.parse

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from chromium import Chromium, program  # noqa: E402
from page import EXPECTED, Site, png  # noqa: E402

RESOURCES = pathlib.Path(__file__).resolve().parents[2] / "Resources" / "browser"
TITLE = "Posters “of” the year — ½"
ZELTO = None


def read(address, command="import"):
    prefix = f"zelto:{command}:"
    assert address.startswith(prefix), address
    return json.loads(urllib.parse.unquote(address.removeprefix(prefix), errors="strict"))


class BrowserTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.site = Site()
        cls.site.__enter__()
        cls.addClassCleanup(cls.site.__exit__)
        cls.scratch = tempfile.TemporaryDirectory(prefix="zelto-browser-test-")
        cls.addClassCleanup(cls.scratch.cleanup)
        cls.extension = os.path.join(cls.scratch.name, "extension")
        shutil.copytree(RESOURCES / "extension", cls.extension)
        path = os.path.join(cls.extension, "manifest.json")
        with open(path) as file:
            manifest = json.load(file)
        # Nobody presses the button of the toolbar here, which opens the page to the extension.
        manifest["host_permissions"] = ["http://127.0.0.1/*"]
        with open(path, "w") as file:
            json.dump(manifest, file)
        cls.browser = Chromium()
        cls.addClassCleanup(cls.browser.__exit__)
        cls.id = cls.browser.send("Extensions.loadUnpacked", path=cls.extension)["id"]

    def setUp(self):
        self.page = self.browser.open(self.site.root + "year")
        self.addCleanup(self.browser.send, "Page.close", self.page)

    def popup(self):
        popup = self.browser.open(f"chrome-extension://{self.id}/popup.html?tab=-1")
        self.addCleanup(self.browser.send, "Page.close", popup)
        tabs = self.browser.evaluate(popup, "chrome.tabs.query({}).then((all) => all.map((tab) => [tab.id, tab.url]))")
        tab = [number for number, url in tabs if url == self.site.root + "year"][-1]
        self.browser.go(popup, f"chrome-extension://{self.id}/popup.html?tab={tab}")
        self.browser.until(popup, f"document.querySelectorAll('li').length >= {len(EXPECTED)}")
        return popup

    def click(self, session, selector):
        self.assertTrue(self.browser.evaluate(session, f"(() => {{ const it = document.querySelector({json.dumps(selector)}); "
                                                       "const can = it && !it.disabled; if (can) it.click(); return can; })()"),
                        selector)

    def handed(self):
        return self.browser.event(lambda method, parameters: method == "Page.frameStartedNavigating" and
                                  parameters["url"].startswith("zelto:"))["url"]

    def choose(self, popup, names):
        self.click(popup, "#none")
        urls = json.dumps([self.site.url(name) for name in names])
        self.browser.evaluate(popup, f"document.querySelectorAll('li').forEach((item) => {{ if ({urls}.includes("
                                     "item.querySelector('img').src)) item.querySelector('input').click(); })")

    def test_every_image_of_the_page_is_shown_with_its_size(self):
        popup = self.popup()
        # Sizes that the page does not know are seen once the pictures are loaded; these are loaded when they are seen.
        self.browser.evaluate(popup, "document.querySelectorAll('li img').forEach((img) => { img.loading = 'eager'; })")
        self.browser.evaluate(popup, "(() => { const box = document.getElementById('smallest'); box.value = 0; "
                                     "box.dispatchEvent(new Event('input')); })()")
        self.browser.until(popup, "[...document.querySelectorAll('.size')].every((each) => each.textContent !== "
                                  "'size not known')")
        rows = dict(self.browser.evaluate(popup, "[...document.querySelectorAll('li')].map((item) => [item.querySelector("
                                                 "'img').src, item.querySelector('.size').textContent])"))
        sizes = {self.site.url(name): f"{width} × {height}" if width else "cannot be shown"
                 for name, (width, height) in EXPECTED.items()}
        self.assertEqual(rows, sizes)
        self.browser.evaluate(popup, "(() => { const box = document.getElementById('smallest'); box.value = 300; "
                                     "box.dispatchEvent(new Event('input')); })()")
        shown = self.browser.evaluate(popup, "[...document.querySelectorAll('li:not([hidden]) img')].map((img) => img.src)")
        self.assertEqual(set(shown), {self.site.url(name) for name, size in EXPECTED.items() if size[0] == 0 or max(size) >= 300})
        self.assertEqual(self.browser.evaluate(popup, "[...document.querySelectorAll('li:not([hidden]) input:not(:checked)')]"
                                                      ".map((box) => box.closest('li').querySelector('img').src)"),
                         [self.site.url("art/gone.png")])
        unnamed = self.browser.evaluate(popup, "[...document.querySelectorAll('button, input, ul')].filter((each) => !each.hidden && "
                                               "!(each.labels?.[0] ?? each).textContent.trim() && "
                                               "!each.getAttribute('aria-label')).map((each) => each.id)")
        self.assertEqual(unnamed, [])

    def test_what_is_chosen_is_handed_over(self):
        popup = self.popup()
        names = ["art/plain.png", "art/wide,1.png"]
        self.choose(popup, names)
        self.click(popup, "#import")
        self.assertEqual(read(self.handed()), {"page_url": self.site.root + "year", "page_title": TITLE, "import_all": "",
                                               "urls": [self.site.url(name) for name in names]})
        self.click(popup, "#project")
        everything = read(self.handed())
        self.assertTrue(everything["import_all"])
        self.assertIn(self.site.url("art/hidden%20away.png"), everything["urls"])
        self.assertNotIn(self.site.url("art/small.png"), everything["urls"]) # too small to be shown
        self.click(popup, "#capture")
        frame = read(self.handed(), "snap")
        self.assertEqual(frame.pop("page_url"), self.site.root + "year")
        self.assertEqual({key for key, value in frame.items() if isinstance(value, int)},
                         {"win_x", "win_y", "win_width", "win_height"})

    def test_long_lists_go_in_parts_that_fit_and_never_into_two_projects(self):
        popup = self.popup()
        cases = [(1200, 20, 3), (100, 4000, 4), (1, 20, 1), (0, 0, 0)]
        for count, length, parts in cases:
            with self.subTest(count=count, length=length):
                result = self.browser.evaluate(popup, f"""import('./command.js').then((it) => {{
                    const page = {{ page_url: 'http://a.example/', page_title: '\\ud800 ½'.repeat(400) }};
                    const urls = Array.from({{ length: {count} }}, (_, i) => 'http://a.example/' + i + 'x'.repeat({length}));
                    return [it.importAddresses(page, urls, false), it.importAddresses(page, urls, true), urls]; }})""")
                pieces, project, urls = result
                self.assertEqual(sum((read(piece["address"])["urls"] for piece in pieces), []), urls)
                self.assertEqual(len(pieces), parts)
                self.assertTrue(all(len(piece["address"]) <= 120000 for piece in pieces))
                self.assertEqual(project is None, parts > 1)

    def test_the_bookmarklet_does_the_same_in_the_page(self):
        line = (RESOURCES / "bookmarklet" / "bookmarklet.txt").read_text().strip()
        self.browser.evaluate(self.page, urllib.parse.unquote(line.removeprefix("javascript:")))
        self.browser.evaluate(self.page, "[...document.querySelectorAll('#zelto-import button')].find((each) => "
                                         "each.textContent === 'Import').click()")
        self.assertEqual(set(read(self.handed())["urls"]), {self.site.url(name) for name in EXPECTED})
        self.assertFalse(self.browser.evaluate(self.page, "!!document.querySelector('#zelto-import')"))

    def command(self, arguments):
        home = os.path.join(self.scratch.name, self.id_of_home())
        return {"args": [ZELTO, "--library", os.path.join(home, "Test.ztlibrary"), *arguments],
                "env": os.environ | {key: os.path.join(home, key) for key in ("XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME")} |
                {"ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0"},  # what fonts are held by at the end
                "text": True}

    def id_of_home(self):
        os.makedirs(os.path.join(self.scratch.name, self._testMethodName), exist_ok=True)
        return self._testMethodName

    def zelto(self, *arguments):
        return subprocess.run(**self.command(arguments), capture_output=True, timeout=300)

    def addresses(self):
        """Both addresses of each item."""
        items = json.loads(self.zelto("items", "--json").stdout or "[]")
        return {(item["webURL"] or "", item["webPageURL"]) for item in items}

    def test_images_become_items_with_both_addresses(self):
        if not ZELTO:
            self.skipTest("no program was named")
        popup = self.popup()
        names = ["art/plain.png", "art/hero.png?crop=1,2", "art/drawing.svg"]
        self.choose(popup, names)
        self.click(popup, "#import")
        address = self.handed()
        # It lies on this machine, which wants the person's word each time.
        agreed = self.zelto("defaults", "write", "ProtocolKnownPages", '["127.0.0.1"]')
        self.assertEqual(agreed.returncode, 0, agreed.stderr)
        self.assertNotEqual(self.zelto("open-url", address).returncode, 0)
        self.assertEqual(self.addresses(), set())
        done = self.zelto("open-url", "--yes", address)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(self.addresses(), {(self.site.url(name), self.site.root + "year") for name in names})

    def test_a_window_takes_what_a_desktop_starts_or_wakes_it_with(self):
        if not ZELTO:
            self.skipTest("no program was named")

        def address(page, width):
            image = "data:image/png;base64," + base64.b64encode(png(width, 10, (9, 90, 160))).decode()
            return "zelto:import:" + urllib.parse.quote(json.dumps({"page_url": page, "urls": [image]}), safe="")

        wanted = set()
        window = None
        try:
            # Nobody is there to answer, as for a page of this machine. The first starts it.
            for width, page in ((20, "https://a.example/one"), (30, "https://a.example/two")):
                wanted.add(("", page))
                if window is None:
                    window = subprocess.Popen(**self.command([address(page, width)]))
                else:
                    woken = self.zelto(address(page, width))
                    self.assertEqual(woken.returncode, 0, woken.stderr)
                deadline = time.monotonic() + 120
                while self.addresses() != wanted and time.monotonic() < deadline:
                    self.assertIsNone(window.poll(), "the window ended")
                    time.sleep(0.2)
                self.assertEqual(self.addresses(), wanted)
        finally:
            if window is not None:
                window.terminate()
                window.wait(60)


if __name__ == "__main__":
    if not program():
        print("NOT TESTED: the way from a browser, for want of chromium")
        sys.exit(1 if os.environ.get("ZELTO_TESTS_MUST_NOT_SKIP") else 77)
    ZELTO = sys.argv.pop(1) if len(sys.argv) > 1 and not sys.argv[1].startswith(("-", "BrowserTest")) else None
    unittest.main(verbosity=2)
