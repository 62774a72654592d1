"""Base of the tests that install: packages of three versions, and what a machine looks like with and without them."""
import atexit
import functools
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
LOWER, VERSION, HIGHER = "0.9.9", "1.2.3", "1.2.4"
LANGUAGES = sorted(path.stem for path in (machine.ROOT / "policies" / "texts").glob("*.json"))
_EVENT_LOG = "system\\currentcontrolset\\services\\eventlog\\application"
RUN = "software\\microsoft\\windows\\currentversion\\run"
_POLICIES = ("Software\\Policies\\Orvik\\Orvik Notifications", "Software\\Policies\\Orvik\\OrvikNotifications Application")
_SHORTCUT = "Start Menu/Programs/Orvik Notifications.lnk"
_MISSING = [name for name in ("wixl", "msibuild", "msiinfo") if not shutil.which(name)]


def in_windows(test_class):
    """Skips a class of tests where nothing can be installed."""
    test_class = unittest.skipIf(_MISSING, f"{', '.join(_MISSING)} not installed: ./dev install package")(test_class)
    return unittest.skipUnless(os.environ.get("WINEPREFIX"), "no Windows: run inside tools/testenv")(test_class)


def _text(data):
    """A string as a .reg file writes it."""
    return '"' + data.replace("\\", "\\\\").replace('"', '\\"') + '"'


def _expandable(data):
    return "hex(2):" + ",".join(f"{byte:02x}" for byte in (data + "\0").encode("utf-16-le"))


@functools.cache
def package(version):
    folder = tempfile.mkdtemp()
    atexit.register(shutil.rmtree, folder, ignore_errors=True)
    return packages.installer(BUILD, Path(folder), version)


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        for key in _POLICIES:
            machine.set_value(key, "SuppressUsbCNotifications", "true")
        cls.all_files = machine.files(temporary=True)
        cls.files, cls.registry = machine.files(), machine.registry()

    def setUp(self):
        self.addCleanup(self.remove_everything)

    def remove_everything(self):
        for version in (LOWER, VERSION, HIGHER):
            self.remove(version)

    def install(self, version, *words):
        return machine.msiexec("/i", machine.windows_path(package(version)), *words)

    def remove(self, version):
        return machine.msiexec("/x", machine.windows_path(package(version)))

    def start_agent(self):
        agent = machine.RunningAgent()
        self.addCleanup(agent.close)
        return agent

    @staticmethod
    def expected_files(templates):
        names = {"Program Files (x86)/Orvik", machine.AGENT_FOLDER, machine.AGENT}
        names |= {f"{machine.AGENT_FOLDER}/{name}"
                  for name in ("toastImageAndText.png", "OrvikNotificationsEvents.dll", "THIRD-PARTY-NOTICES.txt")}
        if templates:
            names |= {"windows/PolicyDefinitions", "windows/PolicyDefinitions/OrvikNotifications.admx"}
            for language in LANGUAGES:
                names |= {f"windows/PolicyDefinitions/{language}",
                          f"windows/PolicyDefinitions/{language}/OrvikNotifications.adml"}
        return names

    @staticmethod
    def expected_values(autostart):
        folder = "C:\\" + machine.AGENT_FOLDER.replace("/", "\\")
        values = {}
        if autostart:
            values[RUN, "Orvik Notifications"] = _text(f'"{folder}\\OrvikNotifications.exe"')
        for source in ("orvik veritor", "orviknotifications"):
            values[f"{_EVENT_LOG}\\{source}", None] = ""
            values[f"{_EVENT_LOG}\\{source}", "TypesSupported"] = "dword:00000007"
            values[f"{_EVENT_LOG}\\{source}", "EventMessageFile"] = _expandable(f"{folder}\\OrvikNotificationsEvents.dll")
        return values

    def _files(self, users):
        return {name for name in machine.files() if name in self.files or name.rpartition("/")[2] not in users}

    def assert_state(self, version, autostart=True, templates=False, users=()):
        """Exactly what belongs there was added, and nothing was taken away or changed: policies included. `users` are names
        of files that the agent itself may have made."""
        files = self._files(users)
        shortcuts = {name for name in files - self.files if name.endswith(_SHORTCUT)}
        self.assertEqual(len(shortcuts), 1, "one shortcut in the Start menu")
        missing_folders = {name for name in self.expected_files(templates) if name not in self.files}
        self.assertEqual(files - self.files - shortcuts, missing_folders)
        self.assertEqual(self.files - files, set())
        new, gone = machine.changes(self.registry, machine.registry())
        self.assertEqual(new, self.expected_values(autostart))
        self.assertEqual(gone, set())
        self.assertEqual(machine.products(), [("Orvik Notifications", version)])
        for name in (machine.AGENT, f"{machine.AGENT_FOLDER}/OrvikNotificationsEvents.dll"):
            self.assertEqual(packages.pefile.file_version(machine.drive() / name)[0], version + ".0")

    def assert_untouched(self, users=()):
        """As before the first installation. Keys without values do not count, unless they are ours."""
        self.assertEqual(self._files(users), self.files)
        self.assertEqual(machine.changes(self.registry, machine.registry()), ({}, set()))
        self.assertEqual(machine.products(), [])
