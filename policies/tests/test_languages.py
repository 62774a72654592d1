"""Every language says what the English texts say, as far as that can be counted, and names what it must name."""
import re
import sys
import unicodedata
import unittest

from made import ENGLISH, FILES, NAME, POLICIES, ROOT, TEXTS
from templates import data

sys.path.insert(0, str(ROOT / "tools" / "languages"))
from languages import LANGUAGES  # noqa: E402

OTHERS = {tag: texts for tag, texts in TEXTS.items() if tag != data.GUIDE_LANGUAGE}
# Names, paths and words of the registry stand as they are wherever the English text has them.
_NAMES = ("Orvik Notifications", "Orvik Veritor", "Veritor", "Windows", "USB-C", "ACPI", "WMI", "OrvikNotifications",
          r"%APPDATA%\orvikLog\OrvikNotifications.log", "TraceIn", "TraceOut", "Verbose", "Information", "Warning",
          "Error", "Diag", "Never", "2048", r"HKEY_LOCAL_MACHINE\{key}", r"SOFTWARE\Wow6432Node",
          r"SOFTWARE\Policies\Brannock-Vale\Orvik Notifications")
_NAMES_ALONE = {"/displayName", "/categories/OrvikNotifications", "/policies/MaxLogSize/off", "/policies/MinLogLevel/off",
                "/policies/MaxLogLevel/off", *(f"/choices/{level}" for level in POLICIES["levels"] if level != "Never")}
# Marks and words that another language may share with English.
_MAY_BE_EQUAL = _NAMES_ALONE | {"/or", "/list", "/sentence", "/quote", "/range", "/choices/DEBUG"}
_BOTH_LOGGINGS = ("SuppressAllLoggings", "SuppressVeritorLoggings")


def flat(texts, place=""):
    """"/policies/MaxLogSize/off" -> text."""
    found = {}
    for key, text in texts.items():
        found |= flat(text, f"{place}/{key}") if isinstance(text, dict) else {f"{place}/{key}": text}
    return found


def missing_names(english, text):
    return [name for name in _NAMES
            if re.search(rf"(?<![A-Za-z]){re.escape(name)}(?![A-Za-z])", english) and name not in text]


class Languages(unittest.TestCase):
    def pairs(self):
        """(language and place, English text, its text)"""
        english = flat(ENGLISH)
        for tag, texts in OTHERS.items():
            for place, text in flat(texts).items():
                yield f"{tag}{place}", english[place], text

    def test_languages_are_those_of_the_agent(self):
        # zh-CN and zh-TW stand for the two writings; the others begin with the agent's own tag.
        writings = {"zh-CN": "zh-Hans", "zh-TW": "zh-Hant"}
        agents = [next((tag for tag in LANGUAGES if writings.get(own, own) in (tag, f"{tag}-{own.split('-')[-1]}")), own)
                  for own in OTHERS]
        self.assertEqual(sorted(agents), sorted(LANGUAGES))

    def test_each_language_has_its_file(self):
        self.assertEqual({path for path in FILES if path.endswith(".adml")}, {f"{tag}/{NAME}.adml" for tag in TEXTS})

    def test_names_and_paths_stand_in_every_language(self):
        for place, english, text in self.pairs():
            self.assertEqual(missing_names(english, text), [], place)

    def test_nothing_is_left_in_english(self):
        for place, english, text in self.pairs():
            name = "/" + place.partition("/")[2]
            if name in _NAMES_ALONE:
                self.assertEqual(text, english, place)
            elif name not in _MAY_BE_EQUAL:
                self.assertNotEqual(text, english, place)

    def test_paragraphs_are_those_of_english(self):
        for place, english, text in self.pairs():
            self.assertEqual(text.count("\n"), english.count("\n"), place)
            self.assertEqual(text.count("\n\n"), english.count("\n\n"), place)

    def test_texts_are_composed_and_without_slips(self):
        for place, _, text in self.pairs():
            self.assertEqual(unicodedata.normalize("NFC", text), text, place)
            self.assertNotIn("  ", text, place)

    def test_a_policy_is_quoted_by_its_name(self):
        for tag, texts in TEXTS.items():
            for one, other in (_BOTH_LOGGINGS, _BOTH_LOGGINGS[::-1]):
                self.assertIn(texts["policies"][other]["name"], texts["policies"][one]["explain"], f"{tag} {one}")

    def test_a_lost_name_would_be_noticed(self):
        self.assertEqual(missing_names("below SOFTWARE\\Wow6432Node, Error", "unter Wow6432Node, Fehler"),
                         ["Error", r"SOFTWARE\Wow6432Node"])


if __name__ == "__main__":
    unittest.main()
