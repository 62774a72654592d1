"""What the tests of the package share: its modules, the build that they pack, and why they may have to be skipped."""
import atexit
import functools
import os
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
FOLDER = Path(__file__).resolve().parents[1]
sys.path[:0] = [str(FOLDER), str(FOLDER / "install")]
import contents  # noqa: E402
import release  # noqa: E402
import tables  # noqa: E402

BUILD = Path(os.environ.get("ORVIK_PACKAGE_BUILD", FOLDER.parents[1] / "build" / "release"))
EPOCH = 1_700_000_000
VERSION = contents.version_text()
LANGUAGES = sorted(path.stem for path in (contents.ROOT / "policies" / "texts").glob("*.json"))
PROGRAM = FOLDER / "package"


def needs(*programs):
    missing = [name for name in programs if not shutil.which(name)]
    return unittest.skipIf(missing, f"{', '.join(missing)} not installed: ./dev install package")


@functools.cache
def made():
    """The release of the build, made once for all tests: its folder, which they leave as it is."""
    folder = tempfile.TemporaryDirectory()
    atexit.register(folder.cleanup)
    output = Path(folder.name, "release")
    release.make(BUILD, output, None, EPOCH, VERSION)
    return output


def one(folder, ending):
    """The one file of the folder with that ending."""
    path, = [path for path in folder.iterdir() if path.name.endswith(ending)]
    return path


class InstallerTables(unittest.TestCase):
    """Base of tests that look into the installer's tables."""
    @classmethod
    def setUpClass(cls):
        cls.installer = one(made(), ".msi")
        cls.tables = tables.read_all(cls.installer)

    def rows(self, name, *columns):
        return {tuple(row[column] for column in columns) for row in self.tables[name].dicts()}

    def by_key(self, name, key):
        return {row[key]: row for row in self.tables[name].dicts()}
