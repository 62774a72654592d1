#!/usr/bin/env python3
"""Prints what failed and what was skipped in CTest's results, and one closing line; exit code 1 when something failed.

    tools/check/test_report.py results.xml...
"""
import re
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

_FAILURES_SHOWN = 20
_LINES_SHOWN = 60


def output_of(case):
    return (case.findtext("system-out") or "").strip().splitlines()


def reason_of(case):
    """GoogleTest prints the reason on the line after the place; a check of another kind on its last line."""
    lines = [line.strip() for line in output_of(case)]
    for place, line in enumerate(lines[:-1]):
        if re.search(r":\s*Skipped$|\(\d+\): Skipped", line):
            return lines[place + 1]
    return lines[-1] if lines else "it gave no reason"


class Report:
    def __init__(self):
        self.passed, self.failed, self.skipped = [], [], []

    def read(self, path):
        """A result file that is missing or holds no test is a failure itself: nothing was proved then."""
        try:
            cases = list(ElementTree.parse(path).getroot().iter("testcase"))
        except (OSError, ElementTree.ParseError):
            cases = []
        run = Path(path).stem.removeprefix("tests-")
        if not cases:
            self.failed.append((f"{run}: the whole run", ["no test ran; see the log of the run"]))
        for case in cases:
            self._take(f"{run}: {case.get('name')}", case)

    def _take(self, name, case):
        """CTest also calls a test skipped whose program is missing; that one failed."""
        skipped = case.find("skipped")
        if skipped is not None and skipped.get("message", "").startswith("SKIP_"):
            self.skipped.append((name, reason_of(case)))
        elif case.get("status") == "disabled":
            self.skipped.append((name, "it is disabled"))
        elif case.get("status") == "run" and case.find("failure") is None:
            self.passed.append(name)
        else:
            self.failed.append((name, output_of(case) or [f"it said nothing in {float(case.get('time', 0)):.0f} s"]))

    def text(self):
        lines = []
        for name, output in self.failed[:_FAILURES_SHOWN]:
            lines += [f"FAILED {name}", *(f"    {line}" for line in output[-_LINES_SHOWN:])]
        lines += [f"FAILED {name}" for name, _ in self.failed[_FAILURES_SHOWN:]]
        lines += [f"skipped {name}: {reason}" for name, reason in self.skipped]
        lines += [f"{len(self.passed)} passed, {len(self.failed)} failed, {len(self.skipped)} skipped"]
        return "\n".join(lines)


def main(paths):
    report = Report()
    for path in paths:
        report.read(path)
    print(report.text())
    return 1 if report.failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
