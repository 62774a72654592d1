"""Installed, used, repaired and removed under Wine, with what changed on disk and in the registry after each.

Run inside a prefix that nobody else uses: tools/testenv --display -- python3 -m unittest discover -s tools/package/install
"""
import shutil
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
import machine  # noqa: E402
from state import RUN, VERSION, Installation, in_windows  # noqa: E402

# What the agent itself writes into the folders of the person at the keyboard; it is theirs, and stays.
PER_USER = {"Toaster Message.lnk", "Orvik.ico"}


@in_windows
class Installing(Installation):
    def test_install_puts_there_what_belongs_there_and_uninstall_leaves_nothing(self):
        self.assertEqual(self.install(VERSION), 0)
        self.assert_state(VERSION)
        self.assertEqual(self.remove(VERSION), 0)
        self.assert_untouched()

    def test_autostart_is_left_out_where_the_agent_alone_is_asked_for(self):
        self.assertEqual(self.install(VERSION, "ADDLOCAL=Agent"), 0)
        self.assert_state(VERSION, autostart=False)

    def test_everything_is_installed_and_removed(self):
        self.assertEqual(self.install(VERSION, "ADDLOCAL=ALL"), 0)
        self.assert_state(VERSION, templates=True)
        self.assertEqual(self.remove(VERSION), 0)
        self.assert_untouched()

    def test_templates_are_installed_where_autostart_is_left_out(self):
        """Windows brings the agent with any feature inside it; Wine has to be told of it."""
        self.assertEqual(self.install(VERSION, "ADDLOCAL=Agent,PolicyTemplates"), 0)
        self.assert_state(VERSION, autostart=False, templates=True)
        self.assertEqual(self.remove(VERSION), 0)
        self.assert_untouched()

    def test_folder_of_a_language_that_windows_has_stays_with_what_is_in_it(self):
        folder = machine.drive() / "windows/PolicyDefinitions/en-US"
        folder.mkdir(parents=True)
        self.addCleanup(shutil.rmtree, folder.parent)
        (folder / "Other.adml").write_text("<theirs/>")
        self.assertEqual(self.install(VERSION, "ADDLOCAL=ALL"), 0)
        self.assertTrue((folder / "OrvikNotifications.adml").is_file())
        self.assertEqual(self.remove(VERSION), 0)
        left = {path.relative_to(folder.parent).as_posix() for path in folder.parent.rglob("*")}
        self.assertEqual(left, {"en-US", "en-US/Other.adml"})

    def test_folder_cannot_be_moved_to_where_the_agent_does_not_look(self):
        moved = [f"{name}=C:\\elsewhere" for name in ("AGENTFOLDER", "INSTALLDIR", "TARGETDIR")]
        self.assertEqual(self.install(VERSION, *moved), 0)
        self.assert_state(VERSION)

    def test_feature_that_is_added_leaves_the_agent_running(self):
        self.assertEqual(self.install(VERSION), 0)
        agent = self.start_agent()
        self.assertEqual(self.install(VERSION, "ADDLOCAL=PolicyTemplates"), 0)
        self.assertTrue(agent.runs, "the agent is left alone")
        self.assert_state(VERSION, templates=True, users=PER_USER)

    def test_feature_that_is_removed_leaves_the_agent_running(self):
        self.assertEqual(self.install(VERSION, "ADDLOCAL=ALL"), 0)
        agent = self.start_agent()
        self.assertEqual(self.install(VERSION, "REMOVE=Autostart"), 0)
        self.assertTrue(agent.runs, "the agent is left alone")
        self.assert_state(VERSION, autostart=False, templates=True, users=PER_USER)

    def test_uninstall_of_a_running_agent_ends_it_and_leaves_what_is_the_users(self):
        self.assertEqual(self.install(VERSION), 0)
        agent = self.start_agent()
        self.assertEqual(self.remove(VERSION), 0)
        self.assertTrue(agent.has_ended())
        self.assert_untouched(users=PER_USER)
        left = {name.rpartition("/")[2] for name in machine.files(temporary=True) - self.all_files}
        self.assertEqual(left - PER_USER, set())

    def test_repair_ends_the_agent_and_brings_back_what_was_lost(self):
        self.assertEqual(self.install(VERSION), 0)
        agent = self.start_agent()
        (machine.drive() / machine.AGENT_FOLDER / "toastImageAndText.png").unlink()
        machine.run("reg", "delete", f"HKLM\\{RUN}", "/v", "Orvik Notifications", "/f")
        # What msiexec /f stands for; Wine does not know that word for an installed product.
        self.assertEqual(self.install(VERSION, "REINSTALL=ALL", "REINSTALLMODE=omus"), 0)
        self.assertTrue(agent.has_ended())
        self.assert_state(VERSION, users=PER_USER)


if __name__ == "__main__":
    unittest.main()
