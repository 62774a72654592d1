"""The notices of the libraries inside the executable, which their licences want with every copy of it."""
from pathlib import Path

from faults import PackageFault
from sbom import package_facts

_DOCUMENTS = Path("/usr/share/doc")
# What the copyright files name by its place on a Debian system alone; the exception to it stands in them.
_LICENCES = (Path("/usr/share/common-licenses/GPL-3"),)
_RULE = "=" * 100


def _read(path, cure):
    if not path.is_file():
        raise PackageFault(f"{path} is missing: install {cure} again, with its documents.")
    return path.read_text(encoding="utf-8").rstrip()


def write(target, inside):
    """Copyright files of the packages that the libraries came in, whole, after a list of what came from where. A text file of
    Windows, whose older editors know no other."""
    lines = ["Third-party notices of Orvik Notifications", "",
             "The executable holds these libraries, linked statically, as Debian ships them:", ""]
    names_by_text = {}
    for linked in inside:
        library = linked.library
        came = ", ".join(f"{package} {package_facts(package)[0]}" for package in linked.packages)
        lines.append(f"  {library.name}: {library.what}; {library.licence}; {came}")
        for package in linked.packages:
            text = _read(_DOCUMENTS / package / "copyright", f"the package {package}")
            names_by_text.setdefault(text, set()).add(package)
    lines += ["", "The texts below cover the whole packages, also parts that are not in the executable."]
    for text, names in sorted(names_by_text.items(), key=lambda entry: sorted(entry[1])):
        lines += ["", _RULE, ", ".join(sorted(names)), _RULE, "", text]
    for path in _LICENCES:
        lines += ["", _RULE, path.name, _RULE, "", _read(path, "the package base-files")]
    target.write_text("\n".join(lines) + "\n", encoding="utf-8-sig", newline="\r\n")
