"""build_strings.py as the build sees it: what it writes, and what it refuses."""
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
_TOOL = Path(__file__).resolve().parents[1] / "build_strings.py"
_RES = Path(__file__).resolve().parents[3] / "res"
sys.path.insert(0, str(_TOOL.parent))
import polib  # noqa: E402
from agent_run import ENGLISH, LOCALES  # noqa: E402
from languages import LANGUAGES, MESSAGE_BOX_TEXTS  # noqa: E402
from string_table import string_table  # noqa: E402
from texts import read_english  # noqa: E402

_MARKS = "\u200f\u200f"


class BuildStrings(unittest.TestCase):
    """Each test spoils a copy of the real catalogues."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.english = Path(folder.name, "en.rc")
        self.catalogues = Path(folder.name, "languages")
        self.out = Path(folder.name, "out")
        shutil.copy(_RES / "strings" / "en.rc", self.english)
        shutil.copytree(_RES / "languages", self.catalogues)

    def build(self):
        return subprocess.run([sys.executable, "-B", str(_TOOL), str(self.english), str(self.catalogues), str(self.out)],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)

    def spoil(self, change, name="de.po"):
        path = self.catalogues / name
        file = polib.pofile(str(path), wrapwidth=0, encoding="utf-8")
        change(file)
        file.save(str(path))

    def spoil_entry(self, name, **values):
        def change(file):
            for key, value in values.items():
                setattr(file.find(name, by="msgctxt"), key, value)
        self.spoil(change)

    def assert_refused(self, *words):
        result = self.build()
        self.assertEqual(result.returncode, 1, result)
        self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
        for word in words:
            self.assertIn(word, result.stderr)
        self.assertFalse(self.out.exists())

    def test_each_language_becomes_a_script(self):
        result = self.build()
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual({path.stem for path in self.out.glob("*.rc")}, {*LANGUAGES, "all"})
        included = (self.out / "all.rc").read_text(encoding="utf-8").splitlines()
        self.assertEqual(included, [f'#include "{tag}.rc"' for tag in LANGUAGES])
        for tag in LANGUAGES:
            self.assertEqual((self.out / f"{tag}.rc").read_text(encoding="utf-8").count("    IDS_"), 59)

    def test_only_message_boxes_of_right_to_left_languages_begin_with_the_marks(self):
        self.build()
        for tag in LANGUAGES:
            marked = [line.split()[0] for line in (self.out / f"{tag}.rc").read_text(encoding="utf-8").splitlines()
                      if f'"{_MARKS}' in line]
            self.assertEqual(marked, list(MESSAGE_BOX_TEXTS) if tag in ("ar", "he") else [])

    def test_entry_that_is_obsolete_does_not_matter(self):
        self.spoil(lambda file: file.append(polib.POEntry(msgctxt="IDS_OLD", msgid="Old", msgstr="Alt", obsolete=True)))
        self.assertEqual(self.build().returncode, 0)

    def test_catalogue_that_is_missing_is_refused(self):
        (self.catalogues / "et.po").unlink()
        self.assert_refused("et.po", "missing")

    def test_language_that_nobody_knows_is_refused(self):
        shutil.copy(self.catalogues / "de.po", self.catalogues / "cy.po")
        self.assert_refused("cy.po", "no language of the product")

    def test_catalogue_that_is_no_catalogue_is_refused(self):
        (self.catalogues / "de.po").write_text("no catalogue\n", encoding="utf-8")
        self.assert_refused("de.po", "cannot be read")

    def test_catalogue_of_another_encoding_is_refused(self):
        path = self.catalogues / "de.po"
        path.write_bytes(path.read_text(encoding="utf-8").encode("cp1252", "replace"))
        self.assert_refused("de.po", "cannot be read")

    def test_missing_id_is_refused(self):
        self.spoil(lambda file: file.remove(file.find("IDS_SUPPORTED", by="msgctxt")))
        self.assert_refused("de.po", "IDS_SUPPORTED", "is missing")

    def test_id_that_is_not_in_the_table_is_refused(self):
        self.spoil(lambda file: file.append(polib.POEntry(msgctxt="IDS_NEW", msgid="New", msgstr="Neu")))
        self.assert_refused("de.po", "IDS_NEW", "no such id")

    def test_entry_without_id_is_refused(self):
        self.spoil(lambda file: file.append(polib.POEntry(msgid="New", msgstr="Neu")))
        self.assert_refused("de.po", "no such id")

    def test_id_that_stands_twice_is_refused(self):
        self.spoil(lambda file: file.append(file.find("IDS_SUPPORTED", by="msgctxt")))
        self.assert_refused("de.po", "IDS_SUPPORTED", "2 times")

    def test_empty_text_is_refused(self):
        for text in ("", " ", "\r\n"):
            with self.subTest(text):
                self.spoil_entry("IDS_SUPPORTED", msgstr=text)
                self.assert_refused("de.po", "IDS_SUPPORTED", "has no text")

    def test_fuzzy_text_is_refused(self):
        self.spoil_entry("IDS_SUPPORTED", flags=["fuzzy"])
        self.assert_refused("de.po", "IDS_SUPPORTED", "fuzzy")

    def test_other_english_text_is_refused(self):
        self.spoil_entry("IDS_SUPPORTED", msgid="Supported!")
        self.assert_refused("de.po", "IDS_SUPPORTED", "msgid differs")

    def test_other_paragraphs_are_refused(self):
        for text in ("Eins. Zwei.", "Eins.\n\nZwei.", "Eins.\r\nZwei.", "Eins.\r\n\r\nZwei.\r\n\r\nDrei."):
            with self.subTest(text):
                self.spoil_entry("IDS_VERITOR_RECOVERED", msgstr=text)
                self.assert_refused("de.po", "IDS_VERITOR_RECOVERED", "paragraphs")

    def test_language_id_given_twice_is_refused(self):
        self.spoil(lambda file: file.metadata.update({"X-Windows-Language-Id": "6"}))
        self.assert_refused("de.po", "6", "da.po")

    def test_language_id_of_no_language_is_refused(self):
        for number in ("1031", "9", "", "seven"):
            with self.subTest(number):
                self.spoil(lambda file, number=number: file.metadata.update({"X-Windows-Language-Id": number}))
                self.assert_refused("de.po", "X-Windows-Language-Id")

    def test_template_that_differs_from_the_english_table_is_refused(self):
        text = self.english.read_text(encoding="utf-8")
        self.english.write_text(text.replace('"Supported"', '"Supported!"'), encoding="utf-8")
        self.assert_refused("OrvikNotifications.pot", "IDS_SUPPORTED", "msgid differs")

    def test_template_that_lacks_an_id_is_refused(self):
        self.spoil(lambda file: file.remove(file.find("IDS_SUPPORTED", by="msgctxt")), "OrvikNotifications.pot")
        self.assert_refused("OrvikNotifications.pot", "IDS_SUPPORTED", "is missing")


class Locales(unittest.TestCase):
    def test_each_language_is_run_and_pictured(self):
        self.assertEqual(sorted(LOCALES.values()), sorted([*LANGUAGES, ENGLISH]))


class StringTable(unittest.TestCase):
    def test_language_id_is_told_as_primary_and_sublanguage(self):
        for number, line in ((7, "LANGUAGE 7, 0"), (1028, "LANGUAGE 4, 1"), (2070, "LANGUAGE 22, 2")):
            self.assertIn(line, string_table("xx", number, {}).splitlines())

    def test_characters_that_mean_something_to_the_compiler_are_escaped(self):
        script = string_table("de", 7, {"IDS_A": 'a "b" \\r\r\n\tz'})
        self.assertIn('    IDS_A "a ""b"" \\\\r\\r\\n\\tz"', script.splitlines())

    def test_english_table_is_read_to_the_letter(self):
        english = read_english(_RES / "strings" / "en.rc")
        self.assertEqual(len(english), 59)
        self.assertEqual(english["IDS_USBC_TITLE"], "USB Type-C? Connector")
        self.assertTrue(english["IDS_VERITOR_DISABLED"].endswith("support. \r\n\r\n\r\nFor more information please visit"))


if __name__ == "__main__":
    unittest.main()
