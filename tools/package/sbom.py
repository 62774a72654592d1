"""What is inside the executable besides its own code: the bill of materials (CycloneDX) and the notices that go with it."""
import datetime
import json
import re
import subprocess
import uuid
from dataclasses import dataclass
from pathlib import Path

from archive import sha256
from faults import PackageFault
from tables import run

_GPL_EXCEPTION = "GPL-3.0-or-later WITH GCC-exception-3.1"
_DOCUMENTS = Path("/usr/share/doc")


@dataclass(frozen=True)
class Inside:
    """A library that is linked in; `symbol` is one of its functions that the executable holds for certain."""
    name: str
    what: str
    package: str
    licence: str
    symbol: str


LIBRARIES = (
    Inside("libstdc++", "C++ library of GCC", "gcc-mingw-w64-x86-64-posix-runtime", _GPL_EXCEPTION, "__cxa_throw"),
    Inside("libgcc", "support library of GCC", "gcc-mingw-w64-x86-64-posix-runtime", _GPL_EXCEPTION, "_Unwind_RaiseException"),
    Inside("libssp", "stack protection of GCC", "gcc-mingw-w64-x86-64-posix-runtime", _GPL_EXCEPTION, "__stack_chk_fail"),
    Inside("mingw-w64-crt", "C runtime and start-up code of mingw-w64", "mingw-w64-x86-64-dev", "ZPL-2.1", "mainCRTStartup"),
    Inside("winpthreads", "threads of mingw-w64", "mingw-w64-x86-64-dev", "MIT AND BSD-3-Clause", "pthread_mutex_lock"),
)


def _package(name):
    """(version, source) of an installed Debian package."""
    said = run(["dpkg-query", "-W", "-f", "${Version}\t${source:Package}", name]).decode()
    return tuple(said.split("\t"))


def symbols_of(path):
    return set(re.findall(r" [TtWw] (\S+)$", run(["x86_64-w64-mingw32-nm", path]).decode(), re.MULTILINE))


def _stack_protection_is_of_gcc():
    """Newer releases of mingw-w64 bring it with their own C runtime."""
    said = subprocess.run(["x86_64-w64-mingw32-gcc-posix", "-print-file-name=libssp.a"], stdout=subprocess.PIPE, text=True,
                          check=True).stdout.strip()
    return Path(said).is_file()


def libraries(symbols_file):
    """Those that are inside; each is seen in the symbols."""
    inside = [library for library in LIBRARIES if library.name != "libssp" or _stack_protection_is_of_gcc()]
    symbols = symbols_of(symbols_file)
    for library in inside:
        if library.symbol not in symbols:
            raise PackageFault(f"{library.name} is not in the executable ({library.symbol} is missing): mend tools/package/sbom.py")
    return inside


def _component(library):
    version, source = _package(library.package)
    return {
        "type": "library",
        "bom-ref": library.name,
        "name": library.name,
        "version": version,
        "description": f"{library.what}, linked statically",
        "licenses": [{"expression": library.licence}],
        "purl": f"pkg:deb/debian/{library.package}@{version.replace('+', '%2B')}?arch=all",
        "properties": [{"name": "debian:source", "value": source}],
    }


def write_bill(target, version, files, inside, epoch):
    """`files` are the shipped program files, name to path."""
    when = datetime.datetime.fromtimestamp(epoch, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    shipped = [{"type": "file", "bom-ref": name, "name": name, "version": version,
                "hashes": [{"alg": "SHA-256", "content": sha256(files[name])}]} for name in sorted(files)]
    bill = {
        "bomFormat": "CycloneDX",
        "specVersion": "1.5",
        "version": 1,
        "metadata": {
            "timestamp": when,
            "component": {"type": "application", "bom-ref": "orvik-notifications", "name": "Orvik Notifications",
                          "version": version, "supplier": {"name": "Orvik"}},
        },
        "components": shipped + [_component(library) for library in inside],
        "dependencies": [
            {"ref": "orvik-notifications", "dependsOn": sorted(files)},
            {"ref": "OrvikNotifications.exe", "dependsOn": sorted(library.name for library in inside)},
        ],
    }
    # The number names this document: other contents, another number.
    number = uuid.uuid5(uuid.NAMESPACE_OID, json.dumps(bill, sort_keys=True))
    text = json.dumps({**bill, "serialNumber": f"urn:uuid:{number}"}, indent=2, sort_keys=True)
    target.write_text(text + "\n", encoding="utf-8", newline="\n")


def write_notices(target, inside):
    """The copyright files of the packages that the libraries come from, whole, after a list of what comes from where."""
    lines = ["Third-party notices of Orvik Notifications", "",
             "The executable holds these libraries, linked statically, as Debian ships them:", ""]
    for library in inside:
        version, _ = _package(library.package)
        lines.append(f"  {library.name}: {library.what}; {library.licence}; package {library.package} {version}")
    lines += ["", "The files below cover the whole packages, also parts that are not in the executable."]
    for package in sorted({library.package for library in inside}):
        path = _DOCUMENTS / package / "copyright"
        if not path.is_file():
            raise PackageFault(f"{path} is missing: install the package {package} again, with its documents.")
        lines += ["", "=" * 100, f"{package}", "=" * 100, "", path.read_text(encoding="utf-8").rstrip()]
    target.write_text("\n".join(lines) + "\n", encoding="utf-8", newline="\n")
