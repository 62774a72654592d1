"""Packages of other versions, made of the same build: the program in them says the other version too."""
import json
import shutil
import struct
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
import contents  # noqa: E402
import pefile  # noqa: E402

TOOL = Path(__file__).resolve().parents[1] / "package"


def load_tool():
    """The program without an ending, as a module."""
    import importlib.machinery
    import importlib.util
    loader = importlib.machinery.SourceFileLoader("package_tool", str(TOOL))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("package_tool", loader))
    loader.exec_module(module)
    return module


def renumber(path, version):
    """Writes another version into a program's version resource, where Windows Installer and Windows look."""
    data = bytearray(path.read_bytes())
    _, begin, size = pefile.PeFile(bytes(data), path.name).version_block()
    fixed = data.find(struct.pack("<I", 0xFEEF04BD), begin, begin + size)
    major, minor, patch = map(int, version.split("."))
    for place in (8, 16):
        struct.pack_into("<II", data, fixed + place, major << 16 | minor, patch << 16)
    path.write_bytes(data)


def copy_build(build, target):
    """What the package takes of a build, and nothing more."""
    raw = json.loads((contents.PACKAGING / "contents.json").read_text(encoding="utf-8"))
    for name in [entry["from"] for entry in raw["installed"]] + [raw["icon"], raw["symbols"]["from"]] \
            + [name.removeprefix("build/") for name in raw["beside"] if name.startswith("build/")]:
        if (build / name).is_file():
            (target / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(build / name, target / name)
    return target


def installer(build, folder, version):
    """The installer of that version, made in the folder."""
    other = copy_build(build, folder / f"build-{version}")
    for item in contents.read(other).items:
        if item.sign:
            renumber(item.source, version)
    made, _ = load_tool().make(other, folder / version, None, 1_700_000_000, version)
    return next(path for path in made if path.suffix == ".msi")
