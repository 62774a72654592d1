"""What the rules look at: the project's files, with comments and texts taken out of the C++ ones."""
import os
import re
from dataclasses import dataclass, field
from functools import cached_property
from pathlib import Path

CPP_FOLDERS = ("src", "simulator", "tests", "bench", "tools", "packaging")
_NEVER_LOOKED_AT = {"build", ".git", "__pycache__"}

# Comments, raw strings, strings and characters; a quote between digits is a digit separator.
_NOT_CODE = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"([^\s()\\]{0,16})\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<![0-9A-Fa-f])\'(?:\\.|[^\'\\\n])+\'', re.DOTALL)


def _blank(match):
    """Keeps the lines, and the quotes of a text, so that places stay what they were."""
    text = match.group(0)
    if text.startswith("/"):
        return "\n" * text.count("\n") if "\n" in text else " "
    return '""' + "\n" * text.count("\n")


@dataclass(frozen=True)
class Finding:
    rule: str
    path: str
    line: int
    text: str


@dataclass
class SourceFile:
    path: str
    text: str

    @property
    def lines(self):
        return self.text.splitlines()

    @property
    def is_cpp(self):
        return self.path.endswith((".cpp", ".h")) and self.path.split("/")[0] in CPP_FOLDERS

    @cached_property
    def code(self):
        """C++ without comments and the contents of texts; line numbers are those of the file."""
        return _NOT_CODE.sub(_blank, self.text)

    @property
    def code_lines(self):
        return self.code.splitlines()


@dataclass
class Tree:
    root: Path
    files: dict = field(default_factory=dict)

    @classmethod
    def read(cls, root):
        tree = cls(Path(root))
        for folder, folders, names in os.walk(tree.root):
            folders[:] = sorted(name for name in folders if name not in _NEVER_LOOKED_AT)
            for name in sorted(set(names) - _NEVER_LOOKED_AT):
                path = Path(folder, name)
                tree._take(path.relative_to(tree.root).as_posix(), path)
        return tree

    def _take(self, relative, path):
        try:
            self.files[relative] = SourceFile(relative, path.read_bytes().decode("utf-8"))
        except (UnicodeDecodeError, OSError):
            pass  # A picture, or a link to nowhere.

    @property
    def cpp(self):
        return [file for file in self.files.values() if file.is_cpp]
