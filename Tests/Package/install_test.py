"""Whether what a desktop looks for is installed, and what the package is said to need is all: install_test.py CMAKE BUILD ROOT [without-texts]

`without-texts`: the build makes no manual page and no completions."""
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CMAKE, BUILD, ROOT = sys.argv[1:4]
HAS_TEXTS = "without-texts" not in sys.argv[4:]
PROGRAMS = r"(bin|libexec|share/zelto)/"  # large, and of other folders of the build
TEXTS = r"share/(man|bash-completion|zsh|fish)/"


class Install(unittest.TestCase):
    def test_each_file_for_desktops_is_put(self):
        with tempfile.TemporaryDirectory() as folder:
            done = subprocess.run([CMAKE, "--install", f"{BUILD}/Resources/desktop", "--prefix", "/usr"], text=True, capture_output=True,
                                  timeout=300, env={**os.environ, "DESTDIR": folder})
            self.assertEqual(done.returncode, 0, done.stderr)
            for line in (Path(ROOT) / "Tests/Package/files").read_text().split():
                if not re.match(PROGRAMS, line) and (HAS_TEXTS or not re.match(TEXTS, line)):
                    with self.subTest(line):
                        self.assertTrue((Path(folder) / "usr" / line.removesuffix(".gz")).is_file())
            entry = (Path(folder) / "usr/share/applications/org.zelto.Zelto.desktop").read_text()
            self.assertRegex(entry, r"\nExec=zelto ")
            service = (Path(folder) / "usr/share/dbus-1/services/org.zelto.Zelto.service").read_text()
            self.assertRegex(service, r"\nExec=/usr/bin/zelto")

    def test_the_package_builds_with_what_the_build_needs(self):
        listed = re.search(r"^build_packages=\((.*?)\)", (Path(ROOT) / "dev").read_text(), re.M | re.S)[1].split()
        needed = re.search(r"^Build-Depends: (.*?)\n\n", (Path(ROOT) / "packaging/debian/control").read_text(), re.M | re.S)[1]
        packages = {re.match(r"[\w.+-]+", each.strip())[0] for each in needed.split(",")}
        self.assertEqual(packages - {"debhelper-compat"}, set(listed) - {"g++", "ccache"})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
