"""Deliberately broken copies of the templates are refused, each for its fault."""
import contextlib
import io
import tempfile
import unittest
from pathlib import Path

from made import ADML, ADMX, FILES, write
import check
from checker import intune, simple

_POLICY = '<policy name="SuppressAllNotifications" '
_ENABLED = "<string>true</string>"
_SIZE = '<decimal id="MaxLogSize" valueName="MaxLogSize" required="true" minValue="1" maxValue="4194303" />'
_MESSAGES = r'key="SOFTWARE\Policies\Orvik\Orvik Notifications" valueName="SuppressAllNotifications"'
_SUPPORT = ('<definition name="SUPPORTED_OrvikNotifications" '
            'displayName="$(string.SUPPORTED_OrvikNotifications)" />')
_CATEGORY = '<category name="AuditLog" displayName="$(string.Category_AuditLog)">'
_NAMESPACES = 'namespace="Orvik.Policies.OrvikNotifications" />'
_LABEL = '<string id="SuppressAllNotifications">'
_DROPDOWN = '<dropdownList refId="LoggingType" noSort="true" defaultItem="0">'
_SPIN = '<decimalTextBox refId="MaxLogSize" defaultValue="2048" spinStep="1024">'

# What is replaced, by what, and what the finding says.
_SCHEMA = {
    ADMX: (
        ("</policies>", "", "is not XML that can be read"),
        (' revision="1.0"', "", "the attribute revision is missing"),
        (' revision="1.0"', ' revision="1"', 'revision="1" is no version'),
        ("GroupPolicy/PolicyDefinitions", "GroupPolicy/Other", "is not in the namespace"),
        ("policyDefinitions", "definitions", "the first element is not policyDefinitions"),
        ('<resources minRequiredRevision="1.0" />', "", "the element resources is missing"),
        (_POLICY, '<policy ', "the attribute name is missing"),
        (_POLICY, '<policy name="Suppress All" ', "is no name"),
        (_POLICY, _POLICY + 'colour="red" ', "has no attribute colour"),
        ('class="Machine"', 'class="Computer"', "is no class"),
        ('displayName="$(string.SuppressAllNotifications)"', 'displayName="Suppress"', "is no text reference"),
        ('presentation="$(presentation.MaxLogSize)"', 'presentation="MaxLogSize"', "is no presentation reference"),
        ('<supportedOn ref="SUPPORTED_OrvikNotifications" />', "", "the element supportedOn is missing"),
        (_ENABLED, "", "is empty"),
        (_ENABLED, _ENABLED + '<decimal value="1" />', "holds 2 elements"),
        (_ENABLED, f"<string>{'x' * 256}</string>", "is no string of 255"),
        (_ENABLED, "<text>true</text>", "the element text does not belong here"),
        (_ENABLED, "true", "holds text where only elements may be"),
        ("<enabledValue>", "<surprise /><enabledValue>", "the element surprise does not belong here"),
        (_SIZE, _SIZE.replace("4194303", "4294967296"), "is no number"),
        (_SIZE, _SIZE.replace('"true"', '"yes"'), "is no boolean"),
        (_SIZE, _SIZE.replace('id="MaxLogSize" ', ""), "the attribute id is missing"),
    ),
    ADML: (
        ("</stringTable>", "", "is not XML that can be read"),
        ("<displayName>Orvik Notifications</displayName>", "", "the element displayName is missing"),
        (_LABEL, "<string>", "the attribute id is missing"),
        (_LABEL, '<string id="Suppress-All">', "is no name"),
        (_DROPDOWN, _DROPDOWN.replace('defaultItem="0"', 'defaultItem="first"'), "is no number"),
        (_DROPDOWN, _DROPDOWN.replace('refId="LoggingType" ', ""), "the attribute refId is missing"),
        ("</presentationTable>", "<slider /></presentationTable>", "the element slider does not belong here"),
    ),
}
_REFERENCES = {
    ADMX: (
        (_POLICY, '<policy name="SuppressAllLoggings" ', "SuppressAllLoggings stands twice"),
        (_POLICY, '<policy name="SUPPRESSALLLOGGINGS" ', "stands twice"),
        (_CATEGORY, _CATEGORY.replace('"AuditLog"', '"Messages"'), "Messages stands twice"),
        (_NAMESPACES, _NAMESPACES + '<using prefix="orviknotifications" namespace="Orvik.Policies.Other" />',
         "the prefix orviknotifications stands twice"),
        (_SUPPORT, _SUPPORT + _SUPPORT, "SUPPORTED_OrvikNotifications stands twice"),
        ('<parentCategory ref="Messages" />', '<parentCategory ref="Message" />', "there is no category Message"),
        ('<parentCategory ref="Messages" />', "", "parentCategory is missing"),
        ('<parentCategory ref="Messages" />', '<parentCategory ref="other:Messages" />', "no category other:Messages"),
        ('<parentCategory ref="OrvikNotifications" />', '<parentCategory ref="Messages" />', "is its own ancestor"),
        ('<supportedOn ref="SUPPORTED_OrvikNotifications" />', '<supportedOn ref="windows:SUPPORTED_Windows7" />',
         "there is no supportedOn definition windows:SUPPORTED_Windows7"),
        ("$(string.SuppressAllNotifications)", "$(string.SuppressNothing)", "SuppressNothing, which the template"),
        ("$(string.SuppressAllNotifications)", "$(string.Category_Messages)", "nothing refers to SuppressAllNotif"),
        ("$(presentation.MaxLogSize)", "$(presentation.LogSize)", "LogSize, which the template refers to, is missing"),
        (' explainText="$(string.SuppressAllNotifications_Explain)"', "", "the attribute explainText is missing"),
        (' presentation="$(presentation.MaxLogSize)"', "", "the attribute presentation is missing"),
        (_MESSAGES, _MESSAGES.replace(' valueName="SuppressAllNotifications"', ""), "need a valueName"),
        (_MESSAGES, _MESSAGES.replace("SuppressAllNotif", "SuppressUsbCNotif"), "writes the same value"),
        (_MESSAGES, _MESSAGES.replace("SOFTWARE", r"HKEY_LOCAL_MACHINE\SOFTWARE"), "names a hive"),
        (_MESSAGES, _MESSAGES.replace("Orvik Notifications", "Orvik Notifications\\"), "has an empty part"),
        (_MESSAGES, _MESSAGES.replace(r"SOFTWARE\Policies", "SOFTWARE"), "not below Software\\Policies"),
        (_SIZE, _SIZE.replace('minValue="1"', 'minValue="4194304"'), "a minValue above its maxValue"),
        (_SIZE, _SIZE.replace(' valueName="MaxLogSize"', ""), "the element MaxLogSize has no valueName"),
        (_SIZE, _SIZE + _SIZE, "the element MaxLogSize stands twice"),
        (_SIZE, _SIZE.replace('maxValue="4194303"', 'maxValue="2047"'), "the defaultValue of MaxLogSize is outside"),
        ("<string>FILE;DEBUG</string>", "<string>EVENT;DEBUG</string>", "fewer than two different items, or one twice"),
        ('minRequiredRevision="1.0"', 'minRequiredRevision="1.1"', "is below the template's minRequiredRevision"),
    ),
    ADML: (
        (_LABEL, '<string id="SuppressAllLoggings">', "SuppressAllLoggings stands twice"),
        (_LABEL, '<string id="Suppress">', "nothing refers to Suppress"),
        ("Suppress all messages that can be suppressed", " ", "string[SuppressAllNotifications]: is empty"),
        ('<presentation id="MaxLogSize">', '<presentation id="LoggingType">', "LoggingType stands twice"),
        (_DROPDOWN, _DROPDOWN.replace('refId="LoggingType"', 'refId="Type"'), "there is no element Type"),
        (_DROPDOWN, _DROPDOWN.replace('refId="LoggingType"', 'refId="Type"'), "no control is for the element Logging"),
        (_DROPDOWN, _DROPDOWN.replace('defaultItem="0"', 'defaultItem="7"'), "is behind the last item"),
        (_SPIN, _SPIN.replace("2048", "0"), "the defaultValue of MaxLogSize is outside its limits"),
    ),
}
_INTUNE = {
    ADMX: (
        (_MESSAGES, _MESSAGES.replace("Orvik\\Orvik", "Microsoft\\Orvik"), "Windows takes nothing below"),
        (_NAMESPACES, _NAMESPACES + '<using prefix="windows" namespace="Microsoft.Policies.Windows" />',
         "unless somebody imported Microsoft.Policies.Windows before"),
        ("</policyDefinitions>", "</policyDefinitions>" + " " * 1024 * 1024, "Intune takes 1048576"),
    ),
    ADML: ((_DROPDOWN + "Write the diagnostic log to:</dropdownList>",
            '<comboBox refId="LoggingType"><label>Where:</label></comboBox>', "Intune takes no comboBox"),),
}


def findings_of(files):
    with tempfile.TemporaryDirectory() as folder:
        write(folder, files)
        return [str(finding) for finding in check.check(folder)]


def broken(name, old, new):
    text = FILES[name].decode("utf-8")
    if old not in text:
        raise AssertionError(f"{name} has no {old}")
    # The name of the first element stands at the end, too.
    count = -1 if old == "policyDefinitions" else 1
    return {**FILES, name: text.replace(old, new, count).encode("utf-8")}


class Checker(unittest.TestCase):
    def refused(self, copies):
        for name, changes in copies.items():
            for old, new, says in changes:
                with self.subTest(file=name, says=says):
                    found = findings_of(broken(name, old, new))
                    self.assertTrue(any(says in finding for finding in found), found)

    def test_templates_are_accepted(self):
        self.assertEqual(findings_of(FILES), [])

    def test_second_language_is_accepted(self):
        self.assertEqual(findings_of({**FILES, ADML.replace("en-US", "de-DE"): FILES[ADML]}), [])

    def test_copies_that_break_the_schema_are_refused(self):
        self.refused(_SCHEMA)

    def test_copies_with_broken_references_are_refused(self):
        self.refused(_REFERENCES)

    def test_copies_that_intune_refuses_are_refused(self):
        self.refused(_INTUNE)

    def test_missing_state_of_a_switch_is_refused(self):
        text = FILES[ADMX].decode("utf-8")
        begin, end = text.index("<disabledValue>"), text.index("</disabledValue>") + len("</disabledValue>")
        found = findings_of({**FILES, ADMX: (text[:begin] + text[end:]).encode("utf-8")})
        self.assertTrue(any("has an enabledValue and a disabledValue" in finding for finding in found), found)

    def test_control_of_another_kind_is_refused(self):
        text = FILES[ADML].decode("utf-8").replace("<decimalTextBox", "<checkBox").replace("</decimalTextBox", "</checkBox")
        found = findings_of({**FILES, ADML: text.replace(' defaultValue="2048" spinStep="1024"', "").encode("utf-8")})
        self.assertTrue(any("a checkBox cannot show the decimal MaxLogSize" in finding for finding in found), found)

    def test_texts_at_the_wrong_place_are_refused(self):
        rest = {name: content for name, content in FILES.items() if name != ADML}
        for path, says in (("de-DE/OrvikNotifications.adml", "Intune takes texts in en-US alone"),
                           ("en-US/Other.adml", "there is no template Other.admx"),
                           ("en US/OrvikNotifications.adml", "is no language")):
            found = findings_of({**rest, path: FILES[ADML]})
            self.assertTrue(any(says in finding for finding in found), found)

    def test_folder_with_two_templates_or_none_is_refused(self):
        self.assertIn("holds 2 templates", findings_of({**FILES, "Other.admx": FILES[ADMX]})[0])
        self.assertIn("holds 0 templates", findings_of({ADML: FILES[ADML]})[0])

    def test_command_prints_findings_and_fails(self):
        with tempfile.TemporaryDirectory() as folder, contextlib.redirect_stdout(io.StringIO()) as said:
            write(folder, FILES)
            self.assertEqual(check.main([folder]), 0)
            write(folder, {ADML: broken(ADML, _LABEL, '<string id="Suppress">')[ADML]})
            self.assertEqual(check.main([folder]), 1)
        self.assertIn("nothing refers to Suppress", said.getvalue())
        self.assertTrue(Path(check.__file__).read_text(encoding="utf-8").startswith("#!"))


class Parts(unittest.TestCase):
    def test_places_that_windows_refuses_from_intune(self):
        for key in ("System", r"System\CurrentControlSet", r"SOFTWARE\Microsoft\Windows NT",
                    r"software\policies\microsoft", r"Software\Policies\Microsoft\EdgeOther"):
            self.assertTrue(intune.is_refused(key), key)
        for key in (r"Software\Policies\Orvik", r"Software\Microsoft\Edge", r"Software\Policies\Microsoft\Office\16.0",
                    r"Software\Policies\MicrosoftOther", r"SystemOther"):
            self.assertFalse(intune.is_refused(key), key)

    def test_simple_types_at_their_edges(self):
        fitting = {"number": ("0", "4294967295", " 7 "), "long number": ("18446744073709551615",),
                   "version": ("1.0", "9999.99999"), "reference": ("a", "a:b"), "string of 255": ("", "x" * 255),
                   "language": ("en", "zh-Hant-TW"), "guid": ("{12345678-1234-1234-1234-123456789abc}",)}
        others = {"number": ("", "-1", "4294967296", "0x1", "1.0", "\u0661"), "long number": ("18446744073709551616",),
                  "version": ("1", "10000.0", "1.0.0", "1.0\n"), "reference": ("", ":b", "a:b:c", "a b"),
                  "string of 255": ("x" * 256,), "language": ("", "en_US", "-"), "guid": ("12345678",)}
        for kind, texts in fitting.items():
            for text in texts:
                self.assertTrue(simple.fits(kind, text), (kind, text))
        for kind, texts in others.items():
            for text in texts:
                self.assertFalse(simple.fits(kind, text), (kind, text))


if __name__ == "__main__":
    unittest.main()
