#!/usr/bin/env python3
"""Starts the program of seeded faults with one fault and compares what it says with the mark in its source.

    tools/ubsan/check_fault.py source fault program...
"""
import re
import subprocess
import sys
from pathlib import Path

_EXIT_CODE_OF_FAULT = 99


def expected(source, fault):
    """The text that the fault's line asks for; `none` is the run that nothing ends."""
    for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
        if match := re.search(rf"// fault: {re.escape(fault)}: (.+)$", line):
            return rf"undefined behaviour: {re.escape(match.group(1))}.* at \S*{re.escape(source.name)}:{number}:\d+"
    return None


def main(source, fault, *program):
    result = subprocess.run([*program, fault], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    pattern = expected(Path(source), fault)
    print(f"{result.stdout.strip()}\nexit code {result.returncode}, expected: {pattern or 'survived with 1'}")
    if pattern is None:
        return 0 if fault == "none" and result.returncode == 0 and result.stdout.strip() == "survived with 1" else 1
    return 0 if result.returncode == _EXIT_CODE_OF_FAULT and re.search(pattern, result.stdout) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
