"""Which libraries the linker put into the executable, from the account that it gives (its map)."""
import re
from dataclasses import dataclass
from pathlib import Path

from faults import PackageFault
from tables import run

_GCC_LICENCE = "GPL-3.0-or-later WITH GCC-exception-3.1"
# Debian's names of three that have no name of their own among the licences of SPDX: Lucent's is of the conversion of
# floating-point numbers, Keith Marshall's of the printf family, and some mathematics is in the public domain.
_CRT_LICENCE = "ZPL-2.1 AND LicenseRef-Lucent AND LicenseRef-Keith-Marshall AND LicenseRef-public-domain"


@dataclass(frozen=True)
class Library:
    """A library that may be linked in. What it is made of comes from the Debian source package, in files of these names.
    `foreign` are members under licences that `licence` does not name."""
    name: str
    what: str
    source: str
    files: str
    licence: str
    foreign: str = "$^"


LIBRARIES = (
    Library("libstdc++", "C++ library of GCC", "gcc-mingw-w64", r"libstdc\+\+\.a", _GCC_LICENCE),
    Library("libgcc", "support library of GCC", "gcc-mingw-w64", r"libgcc(_eh)?\.a|crt(begin|end)\.o", _GCC_LICENCE),
    Library("libssp", "stack protection of GCC", "gcc-mingw-w64", r"libssp(_nonshared)?\.a", _GCC_LICENCE),
    Library("winpthreads", "threads of mingw-w64", "mingw-w64", r"lib(win)?pthread\.a", "MIT AND BSD-3-Clause",
            "dll_math"),
    Library("mingw-w64-crt", "C runtime and start-up code of mingw-w64", "mingw-w64", r"(?!lib(win)?pthread).*\.[ao]",
            _CRT_LICENCE, "qnan|strtodnrp|s?_erf|e_(pow|fmod|remainder)f?|getopt|strtok_r|gcrt0|gmon|mcount|profil"),
)


@dataclass(frozen=True)
class Linked:
    """A library that is inside, with the Debian packages that its files came in."""
    library: Library
    packages: tuple


def taken(text):
    """(file, member) of all that the map says was taken from archives, and (file, None) of single object files."""
    begin, discarded = text.find("Archive member included"), text.find("\nDiscarded input sections")
    if begin < 0 or discarded < begin:
        raise PackageFault("The linker's map does not begin as expected; another linker may write it otherwise.")
    members = re.findall(r"^(\S+\.a)\(([^)]+)\)", text[begin:discarded], re.MULTILINE)
    objects = re.findall(r"^LOAD (\S+\.(?:o|obj|res))$", text, re.MULTILINE)
    if not members or not objects:
        raise PackageFault("The linker's map names no archives or no object files; another linker may write it otherwise.")
    return [*members, *((name, None) for name in objects)]


def _owners(paths):
    """path -> (package, source package) that a file of this system came in."""
    real = {path: str(path.resolve()) for path in paths}
    said = run(["dpkg-query", "-S", *sorted(set(real.values()))]).decode().splitlines()
    packages = {name: package.partition(":")[0] for package, _, name in (line.partition(": ") for line in said)}
    sources = {package: run(["dpkg-query", "-W", "-f", "${source:Package}", package]).decode()
               for package in set(packages.values())}
    return {path: (packages[name], sources[packages[name]]) for path, name in real.items()}


def _library_of(name, source, members):
    found = next((one for one in LIBRARIES if one.source == source and re.fullmatch(one.files, name)), None)
    if not found:
        raise PackageFault(f"{name} of {source} is in the executable and no entry holds it; mend tools/package/linked.py")
    parts = [member or name for member in members]
    foreign = [part for part in parts if re.fullmatch(rf"(.*-)?({found.foreign})\.o", part)]
    if foreign:
        raise PackageFault(f"{', '.join(foreign)} of {name} has a licence of its own; mend tools/package/linked.py")
    return found


def libraries(map_file):
    """All that is inside and not our own: what the build made stands in the map by a path below the build folder."""
    members = {}
    for name, member in taken(map_file.read_text(encoding="utf-8", errors="replace")):
        if Path(name).is_absolute() or ".." in Path(name).parts:
            members.setdefault(Path(name), []).append(member)
    packages = {}
    for path, (package, source) in _owners(members).items():
        packages.setdefault(_library_of(path.name, source, members[path]), set()).add(package)
    return [Linked(library, tuple(sorted(packages[library]))) for library in LIBRARIES if library in packages]
