"""What the tests of the package share: its modules, the build that they pack, and why they may have to be skipped."""
import os
import shutil
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
FOLDER = Path(__file__).resolve().parents[1]
sys.path[:0] = [str(FOLDER), str(FOLDER / "install")]
BUILD = Path(os.environ.get("ORVIK_PACKAGE_BUILD", FOLDER.parents[1] / "build" / "release"))
EPOCH = 1_700_000_000


def needs(*programs, package="package"):
    missing = [name for name in programs if not shutil.which(name)]
    return unittest.skipIf(missing, f"{', '.join(missing)} not installed: ./dev install {package}")


def needs_build():
    """The symbols beside the program are made by the release preset alone."""
    symbols = BUILD / "src" / "app" / "OrvikNotifications.exe.debug"
    return unittest.skipUnless(symbols.is_file(), f"{symbols} is not built: ./dev build release")
