"""The parts of the packager by themselves: tables, names, versions, program files, summaries, archives, signing."""
import os
import shutil
import struct
import subprocess
import tempfile
import unittest
import zipfile
from pathlib import Path
from unittest import mock

import support  # noqa: F401  puts the packager on the path
import archive
import contents
import corrections
import msi
import pefile
import signing
import summary
import tables
from faults import PackageFault

_IDT = "Key\tNumber\tText\ns72\ti2\tS255\nThing\tKey\none\t1\tfirst\ntwo\t2\t\n"


class Tables(unittest.TestCase):
    def test_text_is_read_and_written_alike(self):
        self.assertEqual(tables.Table.parse(_IDT).text(), _IDT)
        self.assertEqual(tables.Table.parse(_IDT.replace("\n", "\r\n")).text(), _IDT)

    def test_row_with_a_missing_column_is_refused(self):
        with self.assertRaisesRegex(PackageFault, "has not 3 columns"):
            tables.Table.parse(_IDT + "three\t3\n")

    def test_update_changes_rows_and_takes_them_out(self):
        table = tables.Table.parse(_IDT)
        table.update(lambda row: row.update(Text="new") if row["Key"] == "one" else False)
        self.assertEqual(table.rows, [["one", "1", "new"]])

    def test_put_replaces_by_key_and_adds(self):
        table = tables.Table.parse(_IDT)
        table.put(tables.Table("Thing", table.columns, table.types, table.keys, [["two", "9", "x"], ["three", "3", ""]]))
        self.assertEqual([row[:2] for row in table.rows], [["one", "1"], ["two", "9"], ["three", "3"]])

    def test_put_refuses_other_columns(self):
        table = tables.Table.parse(_IDT)
        with self.assertRaisesRegex(PackageFault, "has the columns"):
            table.put(tables.Table("Thing", ["Key"], ["s72"], ["Key"], [["four"]]))

    def test_tool_that_is_missing_is_named_with_its_cure(self):
        with self.assertRaisesRegex(PackageFault, "no-such-tool is not installed; run ./dev install package"):
            tables.run(["no-such-tool"])


class Names(unittest.TestCase):
    def test_long_names_get_a_short_one(self):
        for name in ("OrvikNotifications.exe", "Orvik Notifications", "toastImageAndText.png", "name.longer"):
            short, bar, long_name = corrections.with_short_name(name).partition("|")
            self.assertEqual((bar, long_name), ("|", name))
            self.assertRegex(short, r"^[a-z0-9]{8}(\.[a-z]{3})?$")

    def test_short_names_stay(self):
        for name in ("Orvik", "en-US", ".", "SourceDir", "a.png", "abc|long name"):
            self.assertEqual(corrections.with_short_name(name), name)

    def test_codes_follow_version_and_contents(self):
        self.assertEqual(msi.package_code(b"1"), msi.package_code(b"1"))
        self.assertNotEqual(msi.package_code(b"1"), msi.package_code(b"2"))
        self.assertNotEqual(msi.product_code("1.0.0"), msi.product_code("1.0.1"))

    def test_version_is_one_that_windows_installer_compares(self):
        for good in ("0.0.1", "255.255.65535"):
            contents.check_version(good)
        for bad in ("1.0", "1.0.0.0", "256.0.0", "1.256.0", "1.0.65536", "1.0.0-rc1", ""):
            with self.assertRaises(PackageFault, msg=bad):
                contents.check_version(bad)


class Sources(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def test_machine_without_git_has_no_commits(self):
        with mock.patch.dict(os.environ, PATH="", SOURCE_DATE_EPOCH=""):
            self.assertFalse(contents.differs_from_commit(self.folder))
            with self.assertRaisesRegex(PackageFault, "Without git the time"):
                contents.epoch(self.folder)

    @unittest.skipUnless(shutil.which("git"), "git is not installed, and nothing else needs it")
    def test_sources_with_what_no_commit_holds_are_noticed(self):
        self.assertFalse(contents.differs_from_commit(self.folder), "no commits, nothing to compare with")
        subprocess.run(["git", "-C", self.folder, "init", "-q"], check=True)
        self.assertFalse(contents.differs_from_commit(self.folder))
        (self.folder / "new").write_text("new")
        self.assertTrue(contents.differs_from_commit(self.folder))

    def test_time_is_a_number_of_seconds(self):
        for given, expected in (("0", 0), ("1700000000", 1_700_000_000), ("4294967295", 0xFFFFFFFF)):
            with mock.patch.dict(os.environ, SOURCE_DATE_EPOCH=given):
                self.assertEqual(contents.epoch(self.folder), expected)
        for given in ("yesterday", "-1", "1.5", "4294967296", "17000000000"):
            with mock.patch.dict(os.environ, SOURCE_DATE_EPOCH=given), self.assertRaisesRegex(PackageFault, "whole seconds"):
                contents.epoch(self.folder)

    def test_time_must_be_given_where_there_are_no_commits(self):
        with mock.patch.dict(os.environ, SOURCE_DATE_EPOCH=""), self.assertRaisesRegex(PackageFault, "Without git the time"):
            contents.epoch(self.folder)


class ProgramFiles(unittest.TestCase):
    def test_what_is_no_program_has_no_version(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder, "a.png")
            path.write_bytes(b"\x89PNG")
            self.assertIsNone(pefile.file_version(path))

    def test_damaged_program_is_refused(self):
        for data in (b"MZ", b"MZ" + bytes(200), b"MZ" + bytes(0x3A) + struct.pack("<I", 0x40) + b"NE\0\0" + bytes(100)):
            with self.assertRaisesRegex(PackageFault, "no Windows program file"):
                pefile.PeFile(data)


class Archives(unittest.TestCase):
    def test_zip_depends_on_contents_alone(self):
        with tempfile.TemporaryDirectory() as folder:
            made = []
            for name in ("one", "two"):
                source = Path(folder, f"source-{name}")
                source.write_bytes(b"same")
                source.chmod(0o600 if name == "one" else 0o755)
                target = Path(folder, name)
                archive.write_zip(target, {"b": source, "a/c": source}, support.EPOCH)
                made.append(target.read_bytes())
            self.assertEqual(made[0], made[1])
            self.assertEqual(zipfile.ZipFile(target).namelist(), ["a/c", "b"])

    def test_summary_that_is_not_there_is_refused(self):
        with self.assertRaisesRegex(PackageFault, "summary was not found"):
            summary.properties(bytes(2000))


class Signing(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.file = Path(folder.name) / "with blank.exe"
        self.file.write_bytes(b"MZ")

    def test_command_is_run_with_the_file_and_changes_it(self):
        signing.sign(self.file, "sh -c 'printf signed >> \"$0\"' {file}", support.EPOCH)
        self.assertEqual(self.file.read_bytes(), b"MZsigned")
        self.assertEqual(int(self.file.stat().st_mtime), support.EPOCH)

    def test_command_that_does_nothing_is_noticed(self):
        with self.assertRaisesRegex(PackageFault, "left with blank.exe as it was"):
            signing.sign(self.file, "true {file}", support.EPOCH)

    def test_command_that_fails_or_is_missing_is_named(self):
        with self.assertRaisesRegex(PackageFault, "failed with 3 for with blank.exe: no key"):
            signing.sign(self.file, "sh -c 'echo no key; exit 3' {file}", support.EPOCH)
        with self.assertRaisesRegex(PackageFault, "cannot be started"):
            signing.sign(self.file, "no-such-signer {file}", support.EPOCH)

    def test_command_without_a_place_for_the_file_is_refused(self):
        with self.assertRaisesRegex(PackageFault, "where the file's name goes"):
            signing.check("sign.sh")

    def test_command_with_an_open_quotation_is_refused(self):
        with self.assertRaisesRegex(PackageFault, "is not whole: No closing quotation"):
            signing.check("sign.sh '{file}")


if __name__ == "__main__":
    unittest.main()
