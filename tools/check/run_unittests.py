#!/usr/bin/env python3
"""Runs the Python tests of a folder for CTest. Exit code 1 when one failed or none was found; 77 when none failed and some
were skipped, with the reasons on the last line; else 0.

    tools/check/run_unittests.py FOLDER
"""
import sys
import unittest

sys.dont_write_bytecode = True  # nothing is written outside build/
SKIPPED = 77


def main(folder):
    result = unittest.TextTestRunner(stream=sys.stdout, verbosity=2).run(unittest.defaultTestLoader.discover(folder))
    if not result.wasSuccessful():
        return 1
    if result.testsRun == 0 and not result.skipped:
        print(f"There are no tests in {folder}.")
        return 1
    if result.skipped:
        print(f"{len(result.skipped)} of them skipped:", "; ".join(sorted({reason for _, reason in result.skipped})))
        return SKIPPED
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
