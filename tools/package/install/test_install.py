"""Installed, used, upgraded, repaired and removed under Wine, with what changed on disk and in the registry after each.

Run inside a prefix that nobody else uses: tools/testenv --display -- python3 -m unittest discover -s tools/package/install
"""
import os
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
import machine  # noqa: E402
import packages  # noqa: E402

BUILD = Path(os.environ.get("ORVIK_PACKAGE_BUILD", machine.ROOT / "build" / "release"))
SYMBOLS = BUILD / "src" / "app" / "OrvikNotifications.exe.debug"
LOWER, VERSION, HIGHER = "0.9.9", "1.2.3", "1.2.4"
_EVENT_LOG = "system\\currentcontrolset\\services\\eventlog\\application"
_RUN = "software\\microsoft\\windows\\currentversion\\run"
_POLICIES = ("Software\\Policies\\Orvik\\Orvik Notifications", "Software\\Policies\\Orvik\\OrvikNotifications Application")
_SHORTCUT = "Start Menu/Programs/Orvik Notifications.lnk"
# 1603, of which a Unix exit code keeps the last eight bits.
FATAL = 1603 & 0xFF
MISSING = [name for name in ("wixl", "msibuild", "msiinfo") if not shutil.which(name)]


# What the agent itself writes into the folders of the person at the keyboard; it is theirs, and stays.
PER_USER = {"Toaster Message.lnk", "Orvik.ico"}


def text(data):
    """A string as a .reg file writes it."""
    return '"' + data.replace("\\", "\\\\").replace('"', '\\"') + '"'


def expandable(data):
    return "hex(2):" + ",".join(f"{byte:02x}" for byte in (data + "\0").encode("utf-16-le"))


@unittest.skipIf(MISSING, f"{', '.join(MISSING)} not installed: ./dev install package")
@unittest.skipUnless(SYMBOLS.is_file(), f"{SYMBOLS} is not built: ./dev build release")
@unittest.skipUnless(os.environ.get("WINEPREFIX"), "no Windows: run inside tools/testenv")
class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.packages = {version: packages.installer(BUILD, Path(folder.name), version) for version in (LOWER, VERSION, HIGHER)}
        cls.has = packages.contents.read(BUILD).has
        for key in _POLICIES:
            machine.set_value(key, "SuppressUsbCNotifications", "true")
        cls.all_files = machine.files(temporary=True)
        cls.files, cls.registry = machine.files(), machine.registry()

    def setUp(self):
        self.addCleanup(self.remove_everything)

    def remove_everything(self):
        for version in self.packages:
            machine.msiexec("/x", machine.windows_path(self.packages[version]))

    def install(self, version, *words):
        return machine.msiexec("/i", machine.windows_path(self.packages[version]), *words)

    def expected_files(self, templates=False):
        names = {"Program Files (x86)/Orvik", machine.AGENT_FOLDER, machine.AGENT,
                 f"{machine.AGENT_FOLDER}/toastImageAndText.png"}
        if self.has("Events"):
            names.add(f"{machine.AGENT_FOLDER}/OrvikNotificationsEvents.dll")
        if templates and self.has("Policies"):
            names |= {"windows/PolicyDefinitions", "windows/PolicyDefinitions/OrvikNotifications.admx",
                      "windows/PolicyDefinitions/en-US", "windows/PolicyDefinitions/en-US/OrvikNotifications.adml"}
        return names

    def expected_values(self, autostart=True):
        folder = "C:\\" + machine.AGENT_FOLDER.replace("/", "\\")
        values = {}
        if autostart:
            values[_RUN, "Orvik Notifications"] = text(f'"{folder}\\OrvikNotifications.exe"')
        for source in ("orvik veritor", "orviknotifications"):
            values[f"{_EVENT_LOG}\\{source}", None] = ""
            values[f"{_EVENT_LOG}\\{source}", "TypesSupported"] = "dword:00000007"
            if self.has("Events"):
                values[f"{_EVENT_LOG}\\{source}", "EventMessageFile"] = expandable(f"{folder}\\OrvikNotificationsEvents.dll")
        return values

    def assert_state(self, autostart=True, templates=False):
        """Exactly what belongs there was added, and nothing was taken away or changed: policies included."""
        files = machine.files()
        shortcuts = {name for name in files - self.files if name.endswith(_SHORTCUT)}
        self.assertEqual(len(shortcuts), 1, "one shortcut in the Start menu")
        missing_folders = {name for name in self.expected_files(templates) if name not in self.files}
        self.assertEqual(files - self.files - shortcuts, missing_folders)
        self.assertEqual(self.files - files, set())
        new, gone = machine.changes(self.registry, machine.registry())
        self.assertEqual(new, self.expected_values(autostart))
        self.assertEqual(gone, set())

    def assert_untouched(self):
        """As before the first installation. Keys without values do not count, unless they are ours."""
        self.assertEqual(machine.files(), self.files)
        self.assertEqual(machine.changes(self.registry, machine.registry()), ({}, set()))
        self.assertEqual(machine.products(), [])

    def test_install_puts_there_what_belongs_there_and_uninstall_leaves_nothing(self):
        self.assertEqual(self.install(VERSION), 0)
        self.assert_state()
        self.assertEqual(machine.products(), [("Orvik Notifications", VERSION)])
        self.assertEqual(machine.msiexec("/x", machine.windows_path(self.packages[VERSION])), 0)
        self.assert_untouched()

    def test_features_autostart_can_be_left_out_and_templates_be_asked_for(self):
        self.assertEqual(self.install(VERSION, "ADDLOCAL=Agent"), 0)
        self.assert_state(autostart=False)
        self.remove_everything()
        self.assertEqual(self.install(VERSION, "ADDLOCAL=ALL"), 0)
        self.assert_state(templates=True)
        self.remove_everything()
        self.assert_untouched()

    def test_folder_cannot_be_moved_to_where_the_agent_does_not_look(self):
        self.assertEqual(self.install(VERSION, "AGENTFOLDER=C:\\elsewhere", "INSTALLDIR=C:\\elsewhere"), 0)
        self.assert_state()

    def test_upgrade_of_a_running_agent_ends_it_and_needs_no_restart(self):
        self.assertEqual(self.install(VERSION), 0)
        before = (machine.drive() / machine.AGENT).read_bytes()
        agent = machine.RunningAgent()
        self.addCleanup(agent.close)
        self.assertEqual(self.install(HIGHER), 0, "0, not 3010: nothing waits for a restart")
        self.assertIsNotNone(agent.exit_code())
        self.assert_state()
        self.assertEqual(machine.products(), [("Orvik Notifications", HIGHER)])
        self.assertNotEqual((machine.drive() / machine.AGENT).read_bytes(), before)
        self.assertEqual(packages.pefile.file_version(machine.drive() / machine.AGENT)[0], HIGHER + ".0")
        again = machine.RunningAgent()
        self.addCleanup(again.close)

    def test_uninstall_of_a_running_agent_ends_it_and_leaves_what_is_the_users(self):
        self.assertEqual(self.install(VERSION), 0)
        agent = machine.RunningAgent()
        self.addCleanup(agent.close)
        self.assertEqual(machine.msiexec("/x", machine.windows_path(self.packages[VERSION])), 0)
        self.assertIsNotNone(agent.exit_code())
        left = {name.rpartition("/")[2] for name in machine.files(temporary=True) - self.all_files}
        self.assertEqual(left - PER_USER, set())
        self.assertEqual(machine.changes(self.registry, machine.registry()), ({}, set()))

    def test_downgrade_is_refused_and_changes_nothing(self):
        self.assertEqual(self.install(VERSION), 0)
        agent = machine.RunningAgent()
        self.addCleanup(agent.close)
        self.assertEqual(self.install(LOWER), FATAL)
        self.assertTrue(agent.runs, "the agent is left alone")
        self.assertEqual(machine.products(), [("Orvik Notifications", VERSION)])
        self.assertEqual(packages.pefile.file_version(machine.drive() / machine.AGENT)[0], VERSION + ".0")

    def test_repair_brings_back_what_was_lost(self):
        self.assertEqual(self.install(VERSION), 0)
        (machine.drive() / machine.AGENT_FOLDER / "toastImageAndText.png").unlink()
        machine.run("reg", "delete", f"HKLM\\{_RUN}", "/v", "Orvik Notifications", "/f")
        # What msiexec /f stands for; Wine does not know that word for an installed product.
        self.assertEqual(self.install(VERSION, "REINSTALL=ALL", "REINSTALLMODE=omus"), 0)
        self.assert_state()


if __name__ == "__main__":
    unittest.main()
