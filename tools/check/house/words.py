"""Words that say nothing to a reader of this project: papers, places and tickets that he does not have."""
import re

from .tree import Finding

# Written so that no pattern finds itself.
_WORDS = re.compile("|".join((
    r"sp[e]c\.md",
    r"[Ss]p[e]cification",
    r"\bthe sp[e]c\b",
    r"\bParts? [1-7]\.[1-5]\b",
    r"DEVELOP[E]RS\.md",
    r"/(?:w[o]rk|f[a]rm)/",
    r"\.\./sh[a]red",
    r"https?://(?:d[e]b|registry|security|ftp|snapshot)\.",
    r"\b[Ii]ssu[e] #?[0-9]+\b",
)))


def words(tree):
    """Rule words."""
    for file in tree.files.values():
        for number, line in enumerate(file.lines, 1):
            if match := _WORDS.search(line):
                yield Finding("words", file.path, number, f"say it without '{match.group(0)}'")


RULES = {"words": words}
