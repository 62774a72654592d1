"""The installer's tables: what is installed where, by which feature, and what Windows is told of it."""
import hashlib
import re
import struct
import unittest

import support
import contents
import languages
import msi

_CODE = "{5D0F3C61-8B57-4C0E-9A43-2E9B7C4F1D26}"
_EVENT_LOG = "SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\"
_PROGRAMS = {"OrvikNotifications.exe", "OrvikNotificationsEvents.dll"}


@support.needs("wixl", "msibuild", "msiinfo")
class Installer(support.InstallerTables):
    def installed(self):
        """Path of each installed file below the folder that Windows names, by the rows' keys."""
        folders, components = self.by_key("Directory", "Directory"), self.by_key("Component", "Component")

        def path(folder):
            row = folders[folder]
            name = row["DefaultDir"].rpartition("|")[2]
            return folder if row["Directory_Parent"] == "TARGETDIR" else f"{path(row['Directory_Parent'])}/{name}"
        return {row["File"]: f"{path(components[row['Component_']]['Directory_'])}/{row['FileName'].rpartition('|')[2]}"
                for row in self.tables["File"].dicts()}

    def test_installed_files(self):
        agent, policies = "ProgramFilesFolder/Orvik/Orvik Notifications/", "WindowsFolder/PolicyDefinitions/"
        expected = [agent + name for name in (*_PROGRAMS, "toastImageAndText.png", "THIRD-PARTY-NOTICES.txt")]
        expected += [policies + "OrvikNotifications.admx",
                     *(f"{policies}{language}/OrvikNotifications.adml" for language in support.LANGUAGES)]
        self.assertEqual(sorted(self.installed().values()), sorted(expected))

    def test_every_language_that_was_made_is_packed(self):
        made = {path.parent.name for path in (support.BUILD / "policies").glob("*/*.adml")}
        packed = {path.split("/")[2] for path in self.installed().values() if path.endswith(".adml")}
        self.assertEqual(packed, made)

    def test_empty_folder_above_the_agents_is_taken_away(self):
        # Windows takes away by itself only the folders of components.
        folders = {row["DirProperty"] for row in self.tables["RemoveFile"].dicts()
                   if row["FileName"] == "" and row["InstallMode"] == "2"}
        self.assertEqual(folders, {"OrvikFolder"})

    def test_versions_are_those_of_the_programs_and_other_files_have_hashes(self):
        hashed = self.rows("MsiFileHash", "File_")
        for row in self.tables["File"].dicts():
            program = row["FileName"].rpartition("|")[2] in _PROGRAMS
            said = (f"{support.VERSION}.0", "1033") if program else ("", "")
            self.assertEqual((row["Version"], row["Language"]), said, row)
            self.assertEqual((row["File"],) in hashed, not program, row)
        picture = (support.BUILD / "res/generated/toastImageAndText.png").read_bytes()
        self.assertIn(("ToastImagePng", *map(str, struct.unpack("<4i", hashlib.md5(picture).digest()))),
                      self.rows("MsiFileHash", "File_", "HashPart1", "HashPart2", "HashPart3", "HashPart4"))

    def test_sizes_are_those_of_the_files(self):
        sizes = {row["FileName"].rpartition("|")[2]: int(row["FileSize"]) for row in self.tables["File"].dicts()}
        self.assertEqual(sizes["OrvikNotifications.exe"], (support.BUILD / "src/app/OrvikNotifications.exe").stat().st_size)
        self.assertEqual(sizes["OrvikNotificationsEvents.dll"],
                         (support.BUILD / "events/OrvikNotificationsEvents.dll").stat().st_size)

    def test_components_are_of_32_bits_where_the_agent_looks_and_of_64_bits_elsewhere(self):
        # In a 64-bit package a component without the flag 256 is a 32-bit one: its program files are the 32-bit ones.
        for row in self.tables["Component"].dicts():
            self.assertEqual(int(row["Attributes"]) & 256, 0 if row["Directory_"] == "AgentFolder" else 256, row)

    def test_folders_cannot_be_named_from_outside(self):
        # Properties in capitals are those that a command line sets; TARGETDIR decides of no folder with files.
        public = {folder for folder, in self.rows("Directory", "Directory") if not re.search("[a-z]", folder)}
        self.assertEqual(public, {"TARGETDIR"})
        self.assertFalse([path for path in self.installed().values() if path.startswith("TARGETDIR")])
        self.assertEqual(self.tables["CreateFolder"].rows, [])

    def test_registry_keys_end_without_backslash_and_expandable_values_say_so(self):
        values = {("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run", "Orvik Notifications",
                   '"[AgentFolder]OrvikNotifications.exe"')}
        for source in ("Orvik Veritor", "OrvikNotifications"):
            values.add((_EVENT_LOG + source, "TypesSupported", "#7"))
            values.add((_EVENT_LOG + source, "EventMessageFile", "#%[AgentFolder]OrvikNotificationsEvents.dll"))
        self.assertEqual(self.rows("Registry", "Key", "Name", "Value"), values)
        self.assertEqual(self.rows("Registry", "Root"), {("2",)})

    def test_features_stand_inside_the_agent_and_templates_are_off(self):
        self.assertEqual(self.rows("Feature", "Feature", "Feature_Parent", "Level", "Attributes"),
                         {("Agent", "", "1", "24"), ("Autostart", "Agent", "1", "8"), ("PolicyTemplates", "Agent", "1000", "8")})
        self.assertNotIn("INSTALLLEVEL", self.by_key("Property", "Property"))
        held = {}
        for feature, component in self.rows("FeatureComponents", "Feature_", "Component_"):
            held.setdefault(feature, set()).add(component)
        texts = {f"PolicyText.{language.replace('-', '_')}" for language in support.LANGUAGES}
        self.assertEqual(held, {
            "Agent": {"Agent", "ToastImage", "Notices", "EventMessages", "VeritorSource", "AgentSource"},
            "Autostart": {"AutostartValue"}, "PolicyTemplates": {"PolicyTemplate"} | texts})

    def test_component_codes_are_all_different_and_those_of_the_languages_stay(self):
        codes = [row["ComponentId"] for row in self.tables["Component"].dicts()]
        self.assertEqual(len(set(codes)), len(codes))
        self.assertEqual(languages.component_guid("en-US"), "DBBBF476-5EFB-5C85-8C88-CDCE20E48B9E")
        self.assertEqual(languages.component_guid("sr-Latn-RS"), "945F3CA5-78A8-5707-BAA0-7DB27DFD2F2A")
        self.assertIn("{DBBBF476-5EFB-5C85-8C88-CDCE20E48B9E}", codes)

    def test_shortcut_carries_the_application_user_model_id(self):
        source = (contents.ROOT / "src/notifications/ApplicationId.h").read_text()
        self.assertIn('L"Orvik Notifications"', source)
        self.assertEqual(self.rows("MsiShortcutProperty", "Shortcut_", "PropertyKey", "PropVariantValue"),
                         {("AgentShortcut", "System.AppUserModel.ID", "Orvik Notifications")})
        self.assertEqual(self.rows("Shortcut", "Shortcut", "Directory_", "Target"),
                         {("AgentShortcut", "ProgramMenuFolder", "[#AgentExe]")})

    def test_properties(self):
        self.assertEqual(dict(self.rows("Property", "Property", "Value")), {
            "ALLUSERS": "1", "ARPPRODUCTICON": "orvik.ico", "ARPNOMODIFY": "1", "Manufacturer": "Orvik",
            "ARPCOMMENTS": "Tells of power adapters, USB-C ports and firmware protection", "ProductLanguage": "1033",
            "ProductName": "Orvik Notifications", "ProductVersion": support.VERSION, "UpgradeCode": _CODE,
            "ProductCode": msi.product_code(support.VERSION), "MSIRESTARTMANAGERCONTROL": "Disable",
            "REBOOT": "ReallySuppress", "SecureCustomProperties": "WIX_DOWNGRADE_DETECTED;WIX_UPGRADE_DETECTED"})

    def test_lower_versions_are_replaced_higher_ones_refused_and_nothing_is_asked(self):
        version = support.VERSION
        self.assertEqual(self.rows("Upgrade", "UpgradeCode", "VersionMin", "VersionMax", "Attributes", "ActionProperty"),
                         {(_CODE, "", version, "1", "WIX_UPGRADE_DETECTED"), (_CODE, version, "", "2", "WIX_DOWNGRADE_DETECTED")})
        self.assertEqual(self.rows("LaunchCondition", "Condition"), {("NOT WIX_DOWNGRADE_DETECTED",)})
        self.assertFalse({"Dialog", "Control"} & set(self.tables), "no dialogs")


if __name__ == "__main__":
    unittest.main()
