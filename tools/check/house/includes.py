"""Who may include whom, and in which order."""
import re
from pathlib import PurePosixPath

from .tree import Finding

# The arrows of the folders of src, as their link lines have them; what an arrow leads to brings its own arrows along.
_ARROWS = {
    "shared": [],
    "platform": ["shared"],
    "usbc": ["platform"],
    "notifications": ["usbc"],
    "app/system": ["platform"],
    "app/dialogs": ["shared"],
    "wmievents": ["notifications", "app/system", "app/dialogs"],
    "app": ["wmievents"],
}
# Folders beside src that may be included from a folder beside src; everybody sees src and res.
_OTHER_ARROWS = {"src": [], "res": [], "simulator": ["simulator"], "tests": ["tests", "simulator"],
                 "bench": ["bench", "simulator"], "tools": ["tools"], "packaging": ["packaging"]}
_INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def includes_of(file):
    """(line, is quoted, path) of each include; the file's own text, since a path is a text."""
    code = file.code_lines
    for number, line in enumerate(file.lines, 1):
        match = _INCLUDE.match(line)
        if match and number <= len(code) and "include" in code[number - 1]:
            yield number, match.group(1) == '"', match.group(2)


def _src_folder(path):
    """The folder of src that a path below src belongs to; the longer name wins."""
    known = [name for name in _ARROWS if path.startswith(name + "/")]
    return max(known, key=len, default=None)


def _reached(folder):
    found = {folder}
    for arrow in _ARROWS[folder]:
        found |= _reached(arrow)
    return found


def include_order(tree):
    """Rule include-order: an include never points upwards."""
    for file in tree.cpp:
        top, _, rest = file.path.partition("/")
        own = _src_folder(rest) if top == "src" else None
        for line, quoted, path in includes_of(file):
            target = path.partition("/")[0]
            if quoted and target in _OTHER_ARROWS and target not in ("src", "res", *_OTHER_ARROWS[top]):
                yield Finding("include-order", file.path, line, f"{top} does not include {target}: {path}")
            aim = _src_folder(path) if quoted and own else None
            if aim and aim not in _reached(own):
                yield Finding("include-order", file.path, line, f"src/{own} has no arrow to src/{aim}: {path}")


def include_path(tree):
    """Rule include-path: includes are written from the root of src or of the project, not from the file's own folder."""
    for file in tree.cpp:
        folder = PurePosixPath(file.path).parent
        for line, quoted, path in includes_of(file):
            from_roots = {path, f"src/{path}"} & tree.files.keys()
            if quoted and not from_roots and (folder / path).as_posix() in tree.files:
                yield Finding("include-path", file.path, line, f"write it from the root of src or of the project: {path}")


def _group(file, quoted, path):
    """None for libraries, which have no place of their own."""
    if quoted:
        own = PurePosixPath(path).stem == PurePosixPath(file.path).stem
        return 0 if own else 1
    if "/" in path or path.endswith(".hpp"):
        return None
    return 2 if path.endswith(".h") else 3


def include_groups(tree):
    """Rule include-groups: own header, project, Windows, std."""
    names = ("its own header", "project headers", "Windows headers", "std headers")
    for file in tree.cpp:
        last = 0
        for line, quoted, path in includes_of(file):
            group = _group(file, quoted, path)
            if group is None:
                continue
            if group < last:
                yield Finding("include-groups", file.path, line, f"{names[group]} stand before {names[last]}: {path}")
            last = max(last, group)


RULES = {"include-order": include_order, "include-path": include_path, "include-groups": include_groups}
