"""The release as it is made of a build: its files, the same bytes twice, what it says when something is missing."""
import hashlib
import os
import posixpath
import re
import subprocess
import tempfile
import unittest
import zipfile
from pathlib import Path

import support
import contents
import packages
import pefile
import release
from test_summary import printed

_WINDOWS_7 = contents.ROOT / "tests" / "res" / "windows7-imports.txt"


@support.needs("wixl", "msibuild", "msiinfo")
class Release(unittest.TestCase):
    def setUp(self):
        self.release = support.made()
        self.zip = zipfile.ZipFile(support.one(self.release, "x64.zip"))
        self.addCleanup(self.zip.close)
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def test_release_is_these_files(self):
        base = f"OrvikNotifications-{support.VERSION}"
        self.assertEqual({path.name for path in self.release.iterdir()},
                         {f"{base}-x64.msi", f"{base}-x64.zip", f"{base}-x64-symbols.zip", f"{base}.cdx.json",
                          "THIRD-PARTY-NOTICES.txt", "SHA256SUMS"})

    def test_checksums_are_those_of_the_files(self):
        lines = (self.release / "SHA256SUMS").read_text().splitlines()
        self.assertEqual({line[66:] for line in lines}, {path.name for path in self.release.iterdir()} - {"SHA256SUMS"})
        for line in lines:
            digest, name = line.split("  ")
            self.assertEqual(hashlib.sha256((self.release / name).read_bytes()).hexdigest(), digest)

    def test_zip_holds_what_is_installed_with_documents_and_notices(self):
        self.assertEqual(sorted(self.zip.namelist()), sorted([
            "OrvikNotifications.exe", "toastImageAndText.png", "OrvikNotificationsEvents.dll", "THIRD-PARTY-NOTICES.txt",
            f"OrvikNotifications-{support.VERSION}.cdx.json", "OrvikNotifications.reg", "OrvikNotifications-subscription.xml",
            "OrvikNotifications-view.xml", "PolicyDefinitions/OrvikNotifications.admx",
            *(f"PolicyDefinitions/{language}/OrvikNotifications.adml" for language in support.LANGUAGES),
            "docs/administrators.md", "docs/privacy.md", "docs/support.md", "docs/log.md"]))
        self.assertEqual(zipfile.ZipFile(support.one(self.release, "symbols.zip")).namelist(), ["OrvikNotifications.exe.debug"])

    def test_documents_in_the_zip_link_to_nothing_outside(self):
        names, outside = set(self.zip.namelist()), []
        for name in names:
            if not name.endswith(".md"):
                continue
            for target in re.findall(r"\]\(([^)#\s]+)[^)]*\)|src=\"([^\"]+)\"", self.zip.read(name).decode()):
                target = target[0] or target[1]
                if "://" not in target and posixpath.normpath(posixpath.join(posixpath.dirname(name), target)) not in names:
                    outside.append(f"{name}: {target}")
        self.assertEqual(outside, [])

    def test_program_imports_system_libraries_alone(self):
        allowed = set(re.findall(r"^\[(.+)\]$", _WINDOWS_7.read_text(), re.MULTILINE))
        imports = pefile.PeFile.read(support.BUILD / "src/app/OrvikNotifications.exe").imports()
        self.assertTrue(imports)
        self.assertEqual({name.lower() for name in imports} - allowed, set())

    def test_same_build_makes_the_same_bytes_from_another_folder(self):
        other = packages.copy_build(support.BUILD, self.folder / "elsewhere" / "deeper" / "build")
        made = release.make(other, self.folder / "elsewhere" / "out", None, support.EPOCH, support.VERSION)
        self.assertEqual([path.name for path in made], sorted(path.name for path in self.release.iterdir()))
        for path in made:
            self.assertEqual(path.read_bytes(), (self.release / path.name).read_bytes(), path.name)

    def test_other_contents_of_the_same_version_are_another_package(self):
        for name in ("res/generated/toastImageAndText.png", "res/generated/orvik.ico"):
            other = packages.copy_build(support.BUILD, self.folder / Path(name).stem / "build")
            with open(other / name, "ab") as file:
                file.write(b"\0")
            out = self.folder / Path(name).stem / "out"
            release.make(other, out, None, support.EPOCH, support.VERSION)
            one, two = (printed(support.one(folder, ".msi"))["Revision number (UUID)"] for folder in (self.release, out))
            self.assertNotEqual(one, two, name)

    def test_same_contents_of_another_time_are_another_package(self):
        other = self.folder / "later"
        release.make(support.BUILD, other, None, support.EPOCH + 2, support.VERSION)
        one, two = (printed(support.one(folder, ".msi"))["Revision number (UUID)"] for folder in (self.release, other))
        self.assertNotEqual(one, two)

    def run_program(self, *words, **environment):
        return subprocess.run([str(support.PROGRAM), *map(str, words)], cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False,
                              env={**os.environ, "SOURCE_DATE_EPOCH": str(support.EPOCH), **environment})

    def test_relative_folders_count_from_where_the_program_is_called(self):
        done = self.run_program("--build", os.path.relpath(support.BUILD, self.folder), "--output", "below/out")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertEqual(len(list((self.folder / "below" / "out").iterdir())), 6)
        self.assertRegex(done.stdout, r"ProductCode \{[0-9A-F-]{36}\}, UpgradeCode \{5D0F3C61-8B57-4C0E-9A43-2E9B7C4F1D26\}")

    def test_what_is_missing_is_a_fault_with_its_cure(self):
        for name in ("src/app/OrvikNotifications.exe", "src/app/OrvikNotifications.exe.debug", "policies/OrvikNotifications.reg"):
            build = packages.copy_build(support.BUILD, self.folder / Path(name).name)
            (build / name).unlink()
            done = self.run_program("--build", build, "--output", self.folder / "none")
            self.assertEqual(done.returncode, 1)
            self.assertIn(f"{name} is missing; build it first: ./dev build shipping", done.stdout)
        self.assertFalse((self.folder / "none").exists())

    def test_time_that_is_none_is_said_in_one_sentence(self):
        done = self.run_program("--build", support.BUILD, "--output", "out", SOURCE_DATE_EPOCH="yesterday")
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stdout, r"^package: SOURCE_DATE_EPOCH is 'yesterday'; [^\n]+\n$")

    def test_program_of_another_version_is_refused(self):
        with self.assertRaisesRegex(contents.PackageFault, "OrvikNotifications.exe says version .*, the package is 9.8.7"):
            release.make(support.BUILD, self.folder / "out", None, support.EPOCH, "9.8.7")


if __name__ == "__main__":
    unittest.main()
