"""Where the release goes: only a release is replaced, and only by a whole one."""
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import support
import archive
import msi
import packages
import release
from faults import PackageFault


class OutputFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.output = self.folder / "out"

    def fill(self, *names, checksums=None):
        self.output.mkdir()
        for name in names:
            (self.output / name).write_text(name)
        if checksums is not None:
            archive.write_checksums(self.output / "SHA256SUMS", [self.output / name for name in checksums])

    def test_folder_that_is_not_there_or_empty_is_taken(self):
        release.check_output(self.output)
        self.fill()
        release.check_output(self.output)

    def replace(self, meanwhile=lambda: None):
        """By a release of one file, made without the tools that make a real one."""
        def make(_found, _work, target, *_):
            (target / "OrvikNotifications-2.msi").write_text("new")
            meanwhile()

        with mock.patch.object(release, "_make", make):
            return release.make(support.BUILD, self.output, None, support.EPOCH, support.VERSION)

    def test_release_is_replaced_as_a_whole(self):
        self.fill("OrvikNotifications-1.msi", "NOTES", checksums=["OrvikNotifications-1.msi", "NOTES"])
        self.assertEqual(self.replace(), [self.output / "OrvikNotifications-2.msi"])
        self.assertEqual([path.name for path in self.folder.iterdir()], ["out"])

    def test_release_that_cannot_be_replaced_stays(self):
        self.fill("OrvikNotifications-1.msi", checksums=["OrvikNotifications-1.msi"])
        rename = Path.rename

        def refuse(path, target):
            if path.name == "release":
                raise OSError(16, "Device or resource busy")
            return rename(path, target)

        with mock.patch.object(Path, "rename", refuse), self.assertRaisesRegex(PackageFault, "cannot be replaced: Device"):
            self.replace()
        self.assertTrue((self.output / "OrvikNotifications-1.msi").exists())
        self.assertEqual([path.name for path in self.folder.iterdir()], ["out"])

    def test_what_came_into_the_folder_meanwhile_stays(self):
        self.fill("OrvikNotifications-1.msi", checksums=["OrvikNotifications-1.msi"])
        with self.assertRaisesRegex(PackageFault, "holds other things than a release"):
            self.replace(lambda: (self.output / "letter.txt").write_text("a letter"))
        self.assertEqual((self.output / "letter.txt").read_text(), "a letter")

    def test_folder_with_a_folder_inside_is_refused(self):
        self.fill("OrvikNotifications-1.msi", checksums=["OrvikNotifications-1.msi"])
        (self.output / "OrvikNotifications-1.msi").unlink()
        (self.output / "OrvikNotifications-1.msi").mkdir()
        with self.assertRaisesRegex(PackageFault, "holds other things than a release"):
            release.check_output(self.output)

    def test_checksums_that_are_a_folder_are_refused(self):
        self.fill()
        (self.output / "SHA256SUMS").mkdir()
        with self.assertRaisesRegex(PackageFault, "holds other things than a release"):
            release.check_output(self.output)

    def test_name_that_is_none_is_refused(self):
        for name in ("/", self.folder / "x" / ".."):
            with self.assertRaisesRegex(PackageFault, "is no name for a new folder"):
                release.check_output(Path(name))

    def test_foreign_folder_is_refused(self):
        self.fill("letter.txt")
        with self.assertRaisesRegex(PackageFault, "holds other things than a release"):
            release.check_output(self.output)

    def test_release_with_a_foreign_file_beside_is_refused(self):
        self.fill("OrvikNotifications-1.msi", "letter.txt", checksums=["OrvikNotifications-1.msi"])
        with self.assertRaisesRegex(PackageFault, "holds other things than a release"):
            release.check_output(self.output)

    def test_foreign_checksums_are_refused(self):
        self.fill("letter.txt", checksums=["letter.txt"])
        with self.assertRaisesRegex(PackageFault, "holds other things than a release"):
            release.check_output(self.output)

    def test_file_and_link_are_refused(self):
        self.output.write_text("a file")
        link = self.folder / "link"
        link.symlink_to(self.folder)
        for path in (self.output, link):
            with self.assertRaisesRegex(PackageFault, "is there and is no folder"):
                release.check_output(path)

    @support.needs("wixl", "msibuild", "msiinfo")
    def test_fault_on_the_way_leaves_the_old_release_and_nothing_else(self):
        self.fill("OrvikNotifications-1.msi", checksums=["OrvikNotifications-1.msi"])
        with mock.patch.object(msi, "build", side_effect=PackageFault("stopped")):
            with self.assertRaisesRegex(PackageFault, "stopped"):
                release.make(support.BUILD, self.output, None, support.EPOCH, support.VERSION)
        self.assertEqual((self.output / "OrvikNotifications-1.msi").read_text(), "OrvikNotifications-1.msi")
        self.assertEqual([path.name for path in self.folder.iterdir()], ["out"])

    @support.needs("wixl", "msibuild", "msiinfo")
    def test_policy_texts_that_the_sources_do_not_have_are_refused(self):
        build = packages.copy_build(support.BUILD, self.folder / "build")
        (build / "policies" / "xx-XX").mkdir()
        (build / "policies" / "xx-XX" / "OrvikNotifications.adml").write_text("<left/>")
        with self.assertRaisesRegex(PackageFault, r"has not the policy texts of the sources \(xx-XX\)"):
            release.make(build, self.output, None, support.EPOCH, support.VERSION)


if __name__ == "__main__":
    unittest.main()
