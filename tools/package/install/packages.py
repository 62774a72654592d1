"""Packages of other versions, made of the same build: the program in them says the other version too."""
import shutil
import struct
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
import contents  # noqa: E402
import pefile  # noqa: E402
import release  # noqa: E402


def renumber(path, version):
    """Writes another version into a program's version resource, where Windows Installer and Windows look."""
    data = bytearray(path.read_bytes())
    begin, size = pefile.PeFile(bytes(data), path.name).version_block()
    fixed = data.find(struct.pack("<I", 0xFEEF04BD), begin, begin + size)
    major, minor, patch = map(int, version.split("."))
    for place in (8, 16):
        struct.pack_into("<II", data, fixed + place, major << 16 | minor, patch << 16)
    path.write_bytes(data)


def copy_build(build, target):
    """What the package takes of a build, and nothing more."""
    found = contents.read(build)
    for path in (*(item.source for item in found.items), found.icon, found.symbols, found.map, *found.beside):
        if path.is_relative_to(build):
            copy = target / path.relative_to(build)
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(path, copy)
    return target


def installer(build, folder, version):
    """The installer of that version, made in the folder."""
    other = copy_build(build, folder / f"build-{version}")
    for item in contents.read(other).items:
        if item.program:
            renumber(item.source, version)
    return next(path for path in release.make(other, folder / version, None, 1_700_000_000, version) if path.suffix == ".msi")
