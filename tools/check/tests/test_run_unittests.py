"""A failure is told even where other tests are skipped, and a skip is never a pass."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

RUNNER = Path(__file__).resolve().parents[1] / "run_unittests.py"
PASSES = "    def test_passes(self):\n        pass\n"
FAILS = "    def test_fails(self):\n        self.fail('seeded')\n"
SKIPS = "    @unittest.skip('no tool')\n    def test_is_skipped(self):\n        self.fail('never run')\n"


class Runner(unittest.TestCase):
    def run_tests(self, *methods):
        with tempfile.TemporaryDirectory() as folder:
            if methods:
                text = "import unittest\n\n\nclass Seeded(unittest.TestCase):\n" + "\n".join(methods)
                Path(folder, "test_seeded.py").write_text(text, encoding="utf-8")
            done = subprocess.run([sys.executable, "-B", RUNNER, folder], capture_output=True, text=True, check=False)
            return done.returncode, done.stdout.strip().splitlines()[-1]

    def test_all_pass(self):
        self.assertEqual(self.run_tests(PASSES)[0], 0)

    def test_a_failure_beside_a_skip_is_a_failure(self):
        self.assertEqual(self.run_tests(PASSES, SKIPS, FAILS)[0], 1)

    def test_a_skip_beside_passes_is_a_skip_with_its_reason(self):
        self.assertEqual(self.run_tests(PASSES, SKIPS), (77, "1 of them skipped: no tool"))

    def test_no_tests_are_a_failure(self):
        self.assertEqual(self.run_tests()[0], 1)


if __name__ == "__main__":
    unittest.main()
