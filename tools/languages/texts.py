"""The texts of the product: the English string table, and the catalogues of the other languages."""
import re
from collections import Counter
from pathlib import Path

import polib

from faults import TextFault

_ENTRY = re.compile(r'^\s*(IDS_\w+)\s+"((?:[^"\\]|""|\\.)*)"\s*$')
_ESCAPES = {"r": "\r", "n": "\n", "t": "\t", "\\": "\\"}
_BREAKS = re.compile(r"(?:\r\n|\r|\n)+")


def read_english(path):
    """Texts of the English string table by the names of their ids, in its order."""
    texts = {}
    for line in path.read_text(encoding="utf-8").splitlines():
        if match := _ENTRY.match(line):
            texts[match[1]] = re.sub(r"\\(.)", lambda escape: _ESCAPES[escape[1]], match[2].replace('""', '"'))
    return texts


class Catalogue:
    """One PO file. What is wrong with it raises TextFault, whose message names the file and the id."""

    def __init__(self, path):
        self.path = path
        if not path.is_file():
            raise TextFault(path, "the file is missing")
        try:
            self._file = polib.pofile(str(path), wrapwidth=0, encoding="utf-8")
        except (OSError, UnicodeDecodeError, ValueError) as fault:
            raise TextFault(path, f"cannot be read: {fault}") from fault
        self._entries = [entry for entry in self._file if not entry.obsolete]

    @property
    def language_id(self):
        """The number that Windows gives to the language, out of the header."""
        number = self._file.metadata.get("X-Windows-Language-Id", "")
        if not re.fullmatch(r"[0-9]+", number):
            raise TextFault(self.path, f"X-Windows-Language-Id: {number!r} is no number")
        return int(number)

    def check_keys(self, english):
        """Each id of the English table stands here once, with exactly its English text."""
        for entry in self._entries:
            if entry.msgctxt not in english:
                raise TextFault(self.path, "the string table has no such id", entry.msgctxt)
            if entry.msgid != english[entry.msgctxt]:
                raise TextFault(self.path, "msgid differs from the English string table", entry.msgctxt)
        counts = Counter(entry.msgctxt for entry in self._entries)
        for name in english:
            if counts[name] != 1:
                raise TextFault(self.path, f"stands {counts[name]} times" if counts[name] else "is missing", name)

    def check_texts(self):
        for entry in self._entries:
            if not entry.msgstr.strip():
                raise TextFault(self.path, "has no text", entry.msgctxt)
            if entry.fuzzy:
                raise TextFault(self.path, "is marked fuzzy", entry.msgctxt)
            if _BREAKS.findall(entry.msgstr) != _BREAKS.findall(entry.msgid):
                raise TextFault(self.path, "its paragraphs differ from those of the English text", entry.msgctxt)

    def texts(self):
        return {entry.msgctxt: entry.msgstr for entry in self._entries}


def read_languages(folder, english, languages):
    """Texts of each language by its tag; `languages` says which there are, with their Windows ids."""
    Catalogue(folder / "OrvikNotifications.pot").check_keys(english)
    for path in sorted(Path(folder).glob("*.po")):
        if path.stem not in languages:
            raise TextFault(path, "is no language of the product; tools/languages/languages.py lists them")
    texts, owners = {}, {}
    for tag, number in languages.items():
        catalogue = Catalogue(folder / f"{tag}.po")
        said = catalogue.language_id
        if said in owners:
            raise TextFault(catalogue.path, f"X-Windows-Language-Id: {said} is that of {owners[said]}.po")
        if said != number:
            raise TextFault(catalogue.path, f"X-Windows-Language-Id: {said} instead of {number}")
        owners[said] = tag
        catalogue.check_keys(english)
        catalogue.check_texts()
        texts[tag] = catalogue.texts()
    return texts
