"""What the package holds (packaging/contents.json), what it is called, and its one version (VERSION)."""
import json
import os
import re
import subprocess
from dataclasses import dataclass
from pathlib import Path

from faults import PackageFault
from pefile import file_version

ROOT = Path(__file__).resolve().parents[2]
PACKAGING = ROOT / "packaging"
POLICY_TEXTS = "OrvikNotifications.adml"


@dataclass(frozen=True)
class Item:
    """One installed file. `name` is its path in the stage, which is also its path in the zip."""
    name: str
    source: Path
    program: bool = False  # has a version, and is signed


@dataclass(frozen=True)
class Contents:
    """`languages` are those of the policies' texts, which are among the items."""
    items: tuple
    languages: tuple
    symbols: Path
    map: Path
    icon: Path
    beside: tuple
    documents: tuple


def version_text(root=ROOT):
    text = (root / "VERSION").read_text(encoding="ascii").strip()
    check_version(text)
    return text


def check_version(text):
    """Windows Installer compares three numbers, of which it keeps 8, 8 and 16 bits."""
    match = re.fullmatch(r"(\d+)\.(\d+)\.(\d+)", text)
    if not match or any(int(part) > limit for part, limit in zip(match.groups(), (255, 255, 65535))):
        raise PackageFault(f"'{text}' is no version that Windows Installer compares; it takes 255.255.65535 at most.")


def check_programs(items, version):
    """Every program says the version of the package: Windows Installer goes by it when it replaces files."""
    for source in (item.source for item in items if item.program):
        said = file_version(source)
        if not said or said[0] != f"{version}.0":
            raise PackageFault(f"{source.name} says version {said[0] if said else 'nothing'}, the package is {version}: "
                               "build again, ./dev build shipping")


def read(build, packaging=PACKAGING, root=ROOT):
    """The contents as they stand in the build folder; what is missing there is a fault."""
    raw = json.loads((packaging / "contents.json").read_text(encoding="utf-8"))
    languages = policy_languages(build / raw["policy-texts"]["from"], root)
    items = [Item(entry["name"], build / entry["from"], entry.get("program", False)) for entry in raw["installed"]]
    items += [Item(f"{raw['policy-texts']['name']}/{language}/{POLICY_TEXTS}",
                   build / raw["policy-texts"]["from"] / language / POLICY_TEXTS) for language in languages]
    found = Contents(tuple(items), languages, *(build / raw[name] for name in ("symbols", "map", "icon")),
                     tuple(_beside(name, build, root) for name in raw["beside"]),
                     tuple(root / name for name in raw["documents"]))
    for needed in (*(item.source for item in items), found.symbols, found.map, found.icon, *found.beside, *found.documents):
        if not needed.is_file():
            raise PackageFault(f"{needed} is missing; build it first: ./dev build shipping")
    return found


def policy_languages(built, root=ROOT):
    """The languages whose texts the build has made. What was left from another state of the sources is no part of them."""
    made = {path.parent.name for path in built.glob(f"*/{POLICY_TEXTS}")}
    if not made:
        raise PackageFault(f"{built} holds no policy texts; build them first: ./dev build shipping")
    sources = {path.stem for path in (root / "policies" / "texts").glob("*.json")}
    if made != sources:
        raise PackageFault(f"{built} has not the policy texts of the sources ({', '.join(sorted(made ^ sources))}): "
                           "remove that folder, then ./dev build shipping")
    return tuple(sorted(made))


def _beside(name, build, root):
    """A file of the sources, or below `build/` one of what was built."""
    return build / name.removeprefix("build/") if name.startswith("build/") else root / name


def epoch(root=ROOT):
    """Seconds that stand as the time of everything in the package: given from outside, or of the last commit."""
    if given := os.environ.get("SOURCE_DATE_EPOCH"):
        if not re.fullmatch(r"\d{1,10}", given) or int(given) >= 1 << 32:
            raise PackageFault(f"SOURCE_DATE_EPOCH is '{given}'; it takes whole seconds since 1970, below 4294967296.")
        return int(given)
    said = _git(root, "log", "-1", "--format=%ct")
    if not said:
        raise PackageFault("Without git the time of the package must be given: SOURCE_DATE_EPOCH=seconds ./dev package")
    return int(said)


def differs_from_commit(root=ROOT):
    """Whether a release made now holds what no commit holds; False where there are no commits to compare with."""
    return bool(_git(root, "status", "--porcelain"))


def _git(root, *words):
    """What git says; nothing where there is none."""
    try:
        return subprocess.run(["git", "-C", str(root), *words], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              check=False).stdout.strip()
    except FileNotFoundError:
        return ""
