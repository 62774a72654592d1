"""What the package holds (packaging/contents.json), what it is called, and its one version (VERSION)."""
import json
import os
import re
import subprocess
from dataclasses import dataclass
from pathlib import Path

from faults import PackageFault

ROOT = Path(__file__).resolve().parents[2]
PACKAGING = ROOT / "packaging"


@dataclass(frozen=True)
class Item:
    """One installed file. `name` is its path in the stage; files of a `part` belong together and may not be built yet."""
    name: str
    source: Path
    part: str
    sign: bool


@dataclass(frozen=True)
class Contents:
    items: tuple
    absent_parts: dict
    symbols: Path
    icon: Path
    beside: tuple
    documents: tuple

    def has(self, part):
        return part not in self.absent_parts


def version_text(root=ROOT):
    text = (root / "VERSION").read_text(encoding="ascii").strip()
    check_version(text)
    return text


def check_version(text):
    """Windows Installer compares three numbers, of which it keeps 8, 8 and 16 bits."""
    match = re.fullmatch(r"(\d+)\.(\d+)\.(\d+)", text)
    if not match or any(int(part) > limit for part, limit in zip(match.groups(), (255, 255, 65535))):
        raise PackageFault(f"'{text}' is no version that Windows Installer compares; it takes 255.255.65535 at most.")


def read(build, packaging=PACKAGING, root=ROOT):
    """The contents as they stand in the build folder; a part of which a file is missing is absent as a whole."""
    raw = json.loads((packaging / "contents.json").read_text(encoding="utf-8"))
    items = [Item(entry["name"], build / entry["from"], entry.get("part", ""), entry.get("sign", False))
             for entry in raw["installed"]]
    absent = {}
    for item in items:
        if not item.source.is_file():
            if not item.part:
                raise PackageFault(f"{item.source} is missing; build it first: ./dev build shipping")
            absent.setdefault(item.part, []).append(item.name)
    symbols, icon = build / raw["symbols"]["from"], build / raw["icon"]
    for needed in (symbols, icon):
        if not needed.is_file():
            raise PackageFault(f"{needed} is missing; build it first: ./dev build shipping")
    beside = tuple(_beside(name, build, root) for name in raw["beside"])
    documents = tuple(root / name for name in raw["documents"])
    for path in (*beside, *documents):
        if not path.is_file():
            absent.setdefault("Beside", []).append(path.name)
    return Contents(tuple(item for item in items if item.part not in absent), absent, symbols, icon,
                    *(tuple(path for path in paths if path.is_file()) for paths in (beside, documents)))


def _beside(name, build, root):
    """A file of the sources, or below `build/` one of what was built."""
    return build / name.removeprefix("build/") if name.startswith("build/") else root / name


def epoch(root=ROOT):
    """Seconds that stand as the time of everything in the package: given from outside, or of the last commit."""
    if given := os.environ.get("SOURCE_DATE_EPOCH"):
        return int(given)
    said = subprocess.run(["git", "-C", str(root), "log", "-1", "--format=%ct"], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True, check=False).stdout.strip()
    if not said:
        raise PackageFault("Without git the time of the package must be given: SOURCE_DATE_EPOCH=seconds ./dev package")
    return int(said)
