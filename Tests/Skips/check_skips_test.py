"""Whether a skipped test is noticed: check_skips_test.py TOOL"""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from xml.sax.saxutils import escape

TOOL = sys.argv[1]
LIMITED = "Pool.LimitsMemory"
RAN = f"[ RUN      ] {LIMITED}\n[       OK ] {LIMITED} (3 ms)\n[----------] 1 test (3 ms total)\n[       OK ] Pool.Draws/0 (1 ms)\n"
SKIPPED = f"[ RUN      ] {LIMITED}\nPoolTest.cpp:7: Skipped\nnot under a sanitizer\n\n[  SKIPPED ] {LIMITED} (0 ms)\n[       OK ] Pool.Draws/0 (1 ms)\n"


def program(output, skipped=False):
    status, mark = ("notrun", '<skipped message="SKIP_RETURN_CODE=77"/>') if skipped else ("run", "")
    return f'<testcase name="test_pool" status="{status}">{mark}<system-out>{escape(output)}</system-out></testcase>'


class Skips(unittest.TestCase):
    def check(self, *reports):
        with tempfile.TemporaryDirectory() as folder:
            paths = [Path(folder, f"{number}.xml") for number in range(len(reports))]
            for path, report in zip(paths, reports):
                path.write_text(f"<testsuite>{report}</testsuite>")
            done = subprocess.run([sys.executable, TOOL, *map(str, paths)], text=True, capture_output=True)
        return done.returncode, done.stdout

    def test_a_test_has_to_run_in_one_of_the_builds(self):
        self.assertEqual(self.check(program(RAN))[0], 0)
        self.assertEqual(self.check(program(SKIPPED), program(RAN))[0], 0)
        status, said = self.check(program(SKIPPED), program(SKIPPED))
        self.assertEqual(status, 1)
        self.assertIn(f"{LIMITED} was skipped in every build", said)
        self.assertIn("not under a sanitizer", said)

    def test_a_program_that_skips_itself_counts(self):
        status, said = self.check(program("this file system keeps no attributes\n", skipped=True))
        self.assertEqual(status, 1)
        self.assertIn("keeps no attributes", said)

    def test_no_test_at_all_is_no_success(self):
        self.assertEqual(self.check("")[0], 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
