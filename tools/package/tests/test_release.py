"""The release as it is made of a build: its files, the installer's tables, the same bytes twice, signatures."""
import hashlib
import json
import os
import re
import struct
import subprocess
import tempfile
import unittest
import zipfile
from pathlib import Path

import support
import contents
import packages
import pefile
import summary
import tables

VERSION = "1.2.3"
_WINDOWS_7 = contents.ROOT / "tests" / "res" / "windows7-imports.txt"


@support.needs("wixl", "msibuild", "msiinfo")
@support.needs_build()
class Release(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = Path(folder.name)
        cls.tool = packages.load_tool()
        cls.made, cls.absent = cls.tool.make(support.BUILD, cls.folder / "release", None, support.EPOCH, VERSION)
        cls.installer = next(path for path in cls.made if path.suffix == ".msi")
        cls.tables = tables.read_all(cls.installer)

    def rows(self, name, *columns):
        return {tuple(row[column] for column in columns) for row in self.tables[name].dicts()}

    def optional(self, part, *values):
        return set() if part in self.absent else set(values)

    def test_release_is_these_files(self):
        base = f"OrvikNotifications-{VERSION}"
        self.assertEqual({path.name for path in (self.folder / "release").iterdir()},
                         {f"{base}-x64.msi", f"{base}-x64.zip", f"{base}-x64-symbols.zip", f"{base}.cdx.json",
                          "THIRD-PARTY-NOTICES.txt", "SHA256SUMS"})

    def test_checksums_are_those_of_the_files(self):
        lines = (self.folder / "release" / "SHA256SUMS").read_text().splitlines()
        self.assertEqual(len(lines), len(self.made) - 1)
        for line in lines:
            digest, name = line.split("  ")
            self.assertEqual(hashlib.sha256((self.folder / "release" / name).read_bytes()).hexdigest(), digest)

    def test_zip_holds_what_is_installed_with_documents_and_notices(self):
        names = set(zipfile.ZipFile(next(path for path in self.made if path.name.endswith("x64.zip"))).namelist())
        documents = {name for name in names if name.startswith("docs/")}
        self.assertEqual(names - documents,
                         {"OrvikNotifications.exe", "toastImageAndText.png", "THIRD-PARTY-NOTICES.txt",
                          f"OrvikNotifications-{VERSION}.cdx.json"}
                         | {name for name in ("OrvikNotifications.reg", "OrvikNotifications-subscription.xml",
                                              "OrvikNotifications-view.xml") if name not in self.absent.get("Beside", ())}
                         | self.optional("Events", "OrvikNotificationsEvents.dll")
                         | self.optional("Policies", "OrvikNotifications.admx", "en-US/OrvikNotifications.adml"))
        self.assertIn("docs/log.md", documents)

    def test_program_imports_system_libraries_alone(self):
        allowed = set(re.findall(r"^\[(.+)\]$", _WINDOWS_7.read_text(), re.MULTILINE))
        imports = pefile.PeFile.read(support.BUILD / "src/app/OrvikNotifications.exe").imports()
        self.assertTrue(imports)
        self.assertEqual({name.lower() for name in imports} - allowed, set())

    def test_installed_files_with_versions_or_hashes(self):
        files = {row["FileName"].partition("|")[2]: row for row in self.tables["File"].dicts()}
        self.assertEqual(set(files), {"OrvikNotifications.exe", "toastImageAndText.png"}
                         | self.optional("Events", "OrvikNotificationsEvents.dll")
                         | self.optional("Policies", "OrvikNotifications.admx", "OrvikNotifications.adml"))
        built = contents.version_text() + ".0"
        self.assertEqual((files["OrvikNotifications.exe"]["Version"], files["OrvikNotifications.exe"]["Language"]),
                         (built, "1033"))
        hashed = self.rows("MsiFileHash", "File_")
        for row in files.values():
            self.assertEqual(bool(row["Version"]), (row["File"],) not in hashed, row)
        parts = struct.unpack("<4i", hashlib.md5((support.BUILD / "res/generated/toastImageAndText.png").read_bytes()).digest())
        self.assertIn(("ToastImagePng", *map(str, parts)),
                      self.rows("MsiFileHash", "File_", "HashPart1", "HashPart2", "HashPart3", "HashPart4"))

    def test_folder_is_the_one_that_the_agent_looks_into(self):
        folders = {row["Directory"]: (row["Directory_Parent"], row["DefaultDir"].rpartition("|")[2])
                   for row in self.tables["Directory"].dicts()}
        self.assertEqual(folders["AgentFolder"], ("OrvikFolder", "Orvik Notifications"))
        self.assertEqual(folders["OrvikFolder"], ("ProgramFilesFolder", "Orvik"))
        # In a 64-bit package a component without the flag 256 is a 32-bit one: its program files are the 32-bit ones.
        flags = {row["Component"]: (row["Directory_"], int(row["Attributes"]) & 256) for row in self.tables["Component"].dicts()}
        self.assertEqual(flags["Agent"], ("AgentFolder", 0))
        self.assertEqual(flags["ToastImage"], ("AgentFolder", 0))
        # And its registry would be the 32-bit one.
        for component, in self.rows("Registry", "Component_"):
            self.assertEqual(flags[component], ("TARGETDIR", 256))

    def test_registry_keys_end_without_backslash_and_expandable_values_say_so(self):
        log = "SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\"
        values = {("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run", "Orvik Notifications",
                   '"[AgentFolder]OrvikNotifications.exe"')}
        for source in ("Orvik Veritor", "OrvikNotifications"):
            values.add((log + source, "TypesSupported", "#7"))
            values |= self.optional("Events", (log + source, "EventMessageFile", "#%[AgentFolder]OrvikNotificationsEvents.dll"))
        self.assertEqual(self.rows("Registry", "Key", "Name", "Value"), values)
        self.assertEqual(self.rows("Registry", "Root"), {("2",)})

    def test_features(self):
        self.assertEqual(self.rows("Feature", "Feature", "Level", "Attributes"),
                         {("Agent", "1", "24"), ("Autostart", "1", "8")}
                         | self.optional("Policies", ("PolicyTemplates", "1000", "8")))
        self.assertIn(("Autostart", "AutostartValue"), self.rows("FeatureComponents", "Feature_", "Component_"))
        self.assertNotIn("INSTALLLEVEL", [row["Property"] for row in self.tables["Property"].dicts()])

    def test_shortcut_carries_the_application_user_model_id(self):
        source = (contents.ROOT / "src/notifications/ApplicationId.h").read_text()
        self.assertIn('L"Orvik Notifications"', source)
        self.assertEqual(self.rows("MsiShortcutProperty", "Shortcut_", "PropertyKey", "PropVariantValue"),
                         {("AgentShortcut", "System.AppUserModel.ID", "Orvik Notifications")})
        self.assertEqual(self.rows("Shortcut", "Shortcut", "Directory_", "Target"),
                         {("AgentShortcut", "ProgramMenuFolder", "[#AgentExe]")})

    def test_properties_upgrade_and_silence(self):
        properties = {row["Property"]: row["Value"] for row in self.tables["Property"].dicts()}
        code = "{5D0F3C61-8B57-4C0E-9A43-2E9B7C4F1D26}"
        expected = {"ALLUSERS": "1", "ARPPRODUCTICON": "orvik.ico", "ARPNOMODIFY": "1", "Manufacturer": "Orvik",
                    "ProductName": "Orvik Notifications", "ProductVersion": VERSION, "UpgradeCode": code,
                    "MSIRESTARTMANAGERCONTROL": "Disable"}
        self.assertEqual({name: properties.get(name) for name in expected}, expected)
        self.assertEqual(self.rows("Upgrade", "UpgradeCode", "VersionMin", "VersionMax", "Attributes", "ActionProperty"),
                         {(code, "", VERSION, "1", "WIX_UPGRADE_DETECTED"), (code, VERSION, "", "2", "WIX_DOWNGRADE_DETECTED")})
        self.assertEqual(self.rows("LaunchCondition", "Condition"), {("NOT WIX_DOWNGRADE_DETECTED",)})
        self.assertFalse({"Dialog", "Control"} & set(self.tables), "no dialogs")

    def test_agents_are_ended_before_files_are_touched(self):
        steps = {row["Action"]: int(row["Sequence"]) for row in self.tables["InstallExecuteSequence"].dicts()}
        order = ["InstallValidate", "InstallInitialize", "EndAgents", "RemoveExistingProducts", "RemoveFiles", "InstallFiles",
                 "InstallFinalize"]
        self.assertEqual(sorted(order, key=steps.get), order)
        self.assertEqual(len(set(steps.values())), len(steps))
        # A program, deferred, with the rights of the system, whose result does not count.
        self.assertEqual(self.rows("CustomAction", "Action", "Type"), {("EndAgents", str(34 + 1024 + 2048 + 64))})

    def test_summary_has_no_chance_and_no_clock_in_it(self):
        data = self.installer.read_bytes()
        found = summary.properties(data)
        for number in (summary.CREATED, summary.SAVED):
            time, = struct.unpack_from("<Q", data, found[number][1])
            self.assertEqual(time, (support.EPOCH + 11644473600) * 10_000_000)

    def test_same_build_makes_the_same_bytes_from_another_folder(self):
        other = packages.copy_build(support.BUILD, self.folder / "elsewhere" / "deeper" / "build")
        made, _ = self.tool.make(other, self.folder / "elsewhere" / "out", None, support.EPOCH, VERSION)
        self.assertEqual([path.name for path in made], [path.name for path in self.made])
        for one, two in zip(self.made, made):
            self.assertEqual(one.read_bytes(), two.read_bytes(), one.name)

    def test_other_contents_of_the_same_version_are_another_package(self):
        other = packages.copy_build(support.BUILD, self.folder / "changed" / "build")
        with open(other / "res/generated/toastImageAndText.png", "ab") as picture:
            picture.write(b"\0")
        made, _ = self.tool.make(other, self.folder / "changed" / "out", None, support.EPOCH, VERSION)
        one, two = (self._package_code(path) for path in (self.installer, next(p for p in made if p.suffix == ".msi")))
        self.assertNotEqual(one, two)

    @staticmethod
    def _package_code(path):
        data = path.read_bytes()
        place = summary.properties(data)[summary.PACKAGE_CODE][1] + 4
        return data[place:place + 38]

    def test_bill_names_what_is_inside(self):
        bill = json.loads(next(path for path in self.made if path.name.endswith(".cdx.json")).read_text())
        self.assertEqual((bill["bomFormat"], bill["specVersion"]), ("CycloneDX", "1.5"))
        names = {component["name"] for component in bill["components"]}
        self.assertLessEqual({"OrvikNotifications.exe", "libstdc++", "libgcc", "mingw-w64-crt", "winpthreads"}, names)
        references = {component["bom-ref"] for component in bill["components"]} | {"orvik-notifications"}
        self.assertEqual({name for entry in bill["dependencies"] for name in [entry["ref"], *entry["dependsOn"]]} - references,
                         set())
        notices = (self.folder / "release" / "THIRD-PARTY-NOTICES.txt").read_text()
        for text in ("GCC RUNTIME LIBRARY EXCEPTION", "winpthreads", "ZPL"):
            self.assertIn(text.lower(), notices.lower())

    def test_program_that_is_not_built_is_a_fault_with_its_cure(self):
        said = subprocess.run([str(packages.TOOL), "--build", str(self.folder / "nowhere"), "--output",
                               str(self.folder / "none")], env={**os.environ, "SOURCE_DATE_EPOCH": str(support.EPOCH)},
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
        self.assertEqual(said.returncode, 1)
        self.assertIn("build it first: ./dev build shipping", said.stderr)


@support.needs("wixl", "msibuild", "msiinfo", "osslsigncode", "openssl")
@support.needs_build()
class SignedRelease(unittest.TestCase):
    def test_programs_and_installer_carry_the_signature(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=Throw-away",
                            "-addext", "extendedKeyUsage=codeSigning", "-keyout", folder / "key.pem", "-out", folder / "cert.pem"],
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
            signer = folder / "sign"
            signer.write_text(f'#!/bin/sh\nosslsigncode sign -h sha256 -certs {folder}/cert.pem -key {folder}/key.pem -in "$1" '
                              '-out "$1.signed" && mv "$1.signed" "$1"\n')
            signer.chmod(0o755)
            environment = {**os.environ, "SOURCE_DATE_EPOCH": str(support.EPOCH)}
            done = subprocess.run([str(packages.TOOL), "--build", str(support.BUILD), "--output", str(folder / "out"), "--sign",
                                   f"{signer} {{file}}"], env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                  text=True, check=False)
            self.assertEqual(done.returncode, 0, done.stdout)
            self.assertIn("Signed", done.stdout)
            installer = next((folder / "out").glob("*.msi"))
            self.assert_signed(installer, folder)
            zipfile.ZipFile(next((folder / "out").glob("*-x64.zip"))).extractall(folder / "zip")
            for program in [*(folder / "zip").glob("*.exe"), *(folder / "zip").glob("*.dll")]:
                self.assert_signed(program, folder)
            # The installer holds the signed program, not the one that was built.
            size = next(row["FileSize"] for row in tables.read_table(installer, "File").dicts() if row["File"] == "AgentExe")
            self.assertEqual(int(size), (folder / "zip" / "OrvikNotifications.exe").stat().st_size)

    def assert_signed(self, path, folder):
        said = subprocess.run(["osslsigncode", "verify", "-CAfile", folder / "cert.pem", "-in", path], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False).stdout
        self.assertIn("Throw-away", said, path.name)
        self.assertRegex(said, r"(?i)signature verification: ok|number of verified signatures: 1", path.name)


if __name__ == "__main__":
    unittest.main()
