"""The closing line counts what CTest wrote."""
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
from test_report import Report  # noqa: E402

_PASSED = '<testcase name="a" status="run" time="0"><system-out>fine</system-out></testcase>'
_FAILED = '<testcase name="b" status="fail" time="0"><failure message=""/><system-out>why\nso</system-out></testcase>'
_SILENT = '<testcase name="c" status="fail" time="9.8"><failure message=""/><system-out></system-out></testcase>'
_SKIPPED = ('<testcase name="d" status="notrun"><skipped message="SKIP_REGULAR_EXPRESSION_MATCHED"/>'
            '<system-out>x.cpp:3: Skipped\nno driver here\n\n[  SKIPPED ] d</system-out></testcase>')
_MISSING = ('<testcase name="e" status="notrun"><skipped message="Unable to find executable"/>'
            '<system-out>Unable to find executable: x</system-out></testcase>')
_DISABLED = '<testcase name="f" status="disabled"><system-out>Disabled</system-out></testcase>'


def report_of(*cases):
    report = Report()
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder, "tests-release.xml")
        if cases:
            path.write_text(f'<testsuite>{"".join(cases)}</testsuite>', encoding="utf-8")
        report.read(path)
    return report


class TestReport(unittest.TestCase):
    def test_counts_stand_on_the_last_line(self):
        text = report_of(_PASSED, _FAILED, _SKIPPED, _DISABLED, _PASSED).text()
        self.assertEqual(text.splitlines()[-1], "2 passed, 1 failed, 2 skipped")

    def test_failure_shows_its_output(self):
        self.assertEqual(report_of(_FAILED).text().splitlines()[:3], ["FAILED release: b", "    why", "    so"])
        self.assertIn("    it said nothing in 10 s", report_of(_SILENT).text())

    def test_skip_shows_its_reason(self):
        self.assertIn("skipped release: d: no driver here", report_of(_SKIPPED).text())

    def test_missing_program_is_a_failure(self):
        self.assertEqual(report_of(_MISSING).text().splitlines()[-1], "0 passed, 1 failed, 0 skipped")

    def test_run_without_results_is_a_failure(self):
        self.assertEqual(report_of().text().splitlines()[-1], "0 passed, 1 failed, 0 skipped")
        self.assertEqual(len(report_of("").failed), 1)


if __name__ == "__main__":
    unittest.main()
