"""The simple types of the template schema."""
import re

_NAME = r"\w+"
_PATTERNS = {
    "guid": r"\{[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\}",
    "version": r"[0-9]{1,4}\.[0-9]{1,5}",
    "name": _NAME,
    "reference": rf"{_NAME}(:{_NAME})?",
    "text reference": rf"\$\(string\.{_NAME}\)",
    "presentation reference": rf"\$\(presentation\.{_NAME}\)",
    "boolean": r"true|false|0|1",
    "language": r"[A-Za-z]{1,8}(-[A-Za-z0-9]{1,8})*",
    "URI": r"[^\s<>\"{}|\\^`]+",
    "string": r"(?s:.*)",
    "string of 255": r"(?s:.{0,255})",
}
_NUMBERS = {"number": 0xFFFFFFFF, "long number": 0xFFFFFFFFFFFFFFFF}


def fits(kind, text):
    """Whether the text is of the simple type."""
    if kind in _NUMBERS:
        return bool(re.fullmatch(r"\s*\+?[0-9]+\s*", text, re.ASCII)) and int(text) <= _NUMBERS[kind]
    return bool(re.fullmatch(_PATTERNS[kind], text))
