"""Whether a lock that is not held is noticed: check_locks_test.py TOOL ROOT"""
import json
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOOL, ROOT = sys.argv[1:3]
HEADER = """
#include "Kit/Foundation/ZQThreadSafety.h"
struct Counter
{
    ZQMutex mutex;
    ZQCondition changed;
    int count ZQ_GUARDED_BY(mutex) = 0;
    void addLocked() ZQ_REQUIRES(mutex) { ++count; }
    void wait();
};
"""
SOUND = """const ZQLockGuard lock(mutex);
    while (count == 0) {
        changed.wait(mutex);
    }
    addLocked();
    { const ZQUnlockGuard open(mutex); }
    count = 0;"""
FAULTS = {
    "a guarded member without the lock": "count = 1;",
    "a function that requires the lock": "addLocked();",
    "a wait without the lock": "changed.wait(mutex);",
    "behind the end of the block": "{ const ZQLockGuard lock(mutex); } count = 1;",
    "while it is let go": "const ZQLockGuard lock(mutex); const ZQUnlockGuard open(mutex); count = 1;",
    "in a function inside": "const ZQLockGuard lock(mutex); const auto add = [this] { ++count; }; add();",
    "taken twice": "const ZQLockGuard lock(mutex); const ZQLockGuard again(mutex);",
}


class Locks(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name).resolve()
        Path(self.folder, "Counter.h").write_text(HEADER)

    def check(self, *names, **bodies):
        """`names` are asked for; each of `bodies` becomes a source of the build."""
        build = Path(self.folder, "build")
        build.mkdir(exist_ok=True)
        entries = []
        for name, body in bodies.items():
            source = Path(self.folder, name + ".cpp")
            source.write_text(f'#include "Counter.h"\nvoid Counter::wait()\n{{\n    {body}\n}}\n')
            command = f"/usr/bin/c++ -DNAME=1 -I{ROOT} -std=c++20 -Wall -Werror -o build/{name}.o -c {source}"
            entries.append({"directory": str(self.folder), "command": command, "file": str(source)})
        if bodies:
            Path(build, "compile_commands.json").write_text(json.dumps(entries))
        paths = [name if name.startswith("--") else str(Path(self.folder, name)) for name in names]
        done = subprocess.run([sys.executable, TOOL, "--build", str(build), "--root", str(self.folder), *paths],
                              text=True, capture_output=True, cwd=self.folder)
        return done.returncode, done.stdout + done.stderr

    def test_what_holds_the_lock_is_clean(self):
        self.assertEqual(self.check(Sound=SOUND), (0, "locks: 1 sources are clean\n"))
        self.assertEqual(list(self.folder.glob("**/*.o")), [])

    def test_what_does_not_is_refused(self):
        for fault, body in FAULTS.items():
            with self.subTest(fault):
                status, said = self.check(Sound=SOUND, Faulty=body)
                self.assertEqual(status, 1)
                self.assertIn("[-Werror,-Wthread-safety", said)
                self.assertIn("1 of 2 sources are at fault: Faulty.cpp", said)

    def test_only_what_is_asked_for_is_looked_at_and_a_header_asks_for_its_users(self):
        bodies = {"Sound": SOUND, "Faulty": FAULTS["taken twice"]}
        self.assertEqual(self.check("Sound.cpp", **bodies)[0], 0)
        for name in ("Faulty.cpp", "Counter.h"):
            self.assertEqual(self.check("Sound.cpp", name, **bodies)[0], 1, name)
        status, said = self.check("Sound.cpp", "Other.cpp", **bodies)
        self.assertEqual(status, 0)
        self.assertIn(f"not checked: {self.folder}/Other.cpp", said)

    def test_of_all_only_those_near_a_lock_are_looked_at_when_that_is_asked_for(self):
        self.check(Sound=SOUND, Faulty=FAULTS["taken twice"], Far="")
        Path(self.folder, "Far.cpp").write_text("#error not looked at\n")
        status, said = self.check("--near")
        self.assertEqual(status, 1)
        self.assertIn("1 of 2 sources are at fault: Faulty.cpp", said)

    def test_headers_that_another_compiler_precompiled_are_left_out(self):
        self.check(Sound=SOUND)
        database = Path(self.folder, "build", "compile_commands.json")
        database.write_text(database.read_text().replace("-std", "-include build/cmake_pch.hxx -std"))
        self.assertEqual(self.check()[0], 0)

    def test_a_header_reaches_its_users_through_others(self):
        Path(self.folder, "Between.h").write_text('#include "Counter.h"\n')
        body = "} void far(Counter &of) { of.count = 1;"
        self.check(Faulty=FAULTS["taken twice"])
        source = Path(self.folder, "Faulty.cpp")
        source.write_text(f'#include "Between.h"\nvoid Counter::wait()\n{{\n    {body}\n}}\n')
        self.assertEqual(self.check("Counter.h")[0], 1)

    def test_a_mutex_that_the_check_is_blind_to_is_refused(self):
        Path(self.folder, "Bare.h").write_text("#include <mutex>\nstd::mutex mutex;\n")
        status, said = self.check("Sound.cpp", "Bare.h", Sound=SOUND)
        self.assertEqual(status, 1)
        self.assertIn("Bare.h: use ZQMutex", said)

    def test_without_a_configured_build_it_says_what_to_do(self):
        status, said = self.check()
        self.assertEqual(status, 1)
        self.assertIn("Configure first", said)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
