"""The product's code as the guides may quote it: without comments, by text and by function."""
import re

_COMMENT = re.compile(r"""("(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])')|//[^\n]*|/\*.*?\*/""", re.S)
_TEXT = re.compile(r'L"(?:\\.|[^"\\\n])*"(?:\s*L?"(?:\\.|[^"\\\n])*")*')
_PART = re.compile(r'"((?:\\.|[^"\\\n])*)"')


def without_comments(text):
    return _COMMENT.sub(lambda match: match[1] or " ", text)


def texts_of(code):
    """The wide texts of a piece of code, each in one whatever lines it is written on."""
    return ["".join(_PART.findall(match)).replace("\\\\", "\\").replace('\\"', '"') for match in _TEXT.findall(code)]


def holds(texts, piece):
    """Whether one of the texts holds the piece, from one end of a word to another."""
    whole = re.compile(rf"(?<!\w){re.escape(piece)}(?!\w)")
    return any(whole.search(text) for text in texts)


def _body(code, start):
    """What stands between the brace at that place and its own end."""
    depth = 0
    for match in re.finditer(r'"(?:\\.|[^"\\\n])*"|[{}]', code[start:]):
        depth += {"{": 1, "}": -1}.get(match[0], 0)
        if depth == 0:
            return code[start:start + match.end()]
    return code[start:]


class Code:
    """All files of a folder, one behind the other."""

    def __init__(self, folder):
        self.text = "\n".join(without_comments(path.read_text(encoding="utf-8")) for path in sorted(folder.rglob("*"))
                              if path.suffix in (".cpp", ".h"))
        self._texts = texts_of(self.text)

    def bodies(self, function):
        """The bodies of the functions of that name, with or without its class."""
        head = rf"(?<![\w.>]){re.escape(function)}\((?:[^(){{}};]|\([^(){{}};]*\))*\)(?:\s*(?:const|noexcept|override))*\s*(\{{)"
        return "\n".join(_body(self.text, match.start(1)) for match in re.finditer(head, self.text)) if function else ""

    def texts(self, function=None):
        """The wide texts of the functions of that name, or of all the code."""
        return texts_of(self.bodies(function)) if function else self._texts
