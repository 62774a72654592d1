"""Folders of the project that the environment writes to; all of them are below build/."""
import os
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("ORVIK_BUILD_ROOT", ROOT / "build"))
WINE = BUILD / "wine"
LOG = BUILD / "log"
