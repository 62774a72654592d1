"""What the installer does in which order, and how running agents leave."""
import unittest

import support

# By Windows' rules: what is installed is found and removed before anything is written into the script of the new package;
# removal stands before installation, and what is registered comes last.
_ORDER = ["FindRelatedProducts", "LaunchConditions", "ValidateProductID", "CostInitialize", "FileCost", "CostFinalize",
          "MigrateFeatureStates", "InstallValidate", "InstallInitialize", "RemoveExistingProducts", "EndAgents",
          "ProcessComponents", "UnpublishFeatures", "RemoveRegistryValues", "RemoveShortcuts", "RemoveFiles",
          "InstallFiles", "CreateShortcuts", "WriteRegistryValues", "RegisterUser", "RegisterProduct",
          "PublishFeatures", "PublishProduct", "InstallFinalize"]


@support.needs("wixl", "msibuild", "msiinfo")
class Sequence(support.InstallerTables):
    def steps(self):
        return {row["Action"]: int(row["Sequence"]) for row in self.tables["InstallExecuteSequence"].dicts()}

    def test_actions_stand_in_this_order_each_in_a_place_of_its_own(self):
        steps = self.steps()
        self.assertEqual(sorted(steps, key=steps.get), _ORDER)
        self.assertEqual(len(set(steps.values())), len(steps))

    def test_nothing_stands_between_the_beginning_of_the_script_and_the_removal_of_the_older_version(self):
        steps = self.steps()
        between = {name for name, step in steps.items()
                   if steps["InstallInitialize"] < step < steps["RemoveExistingProducts"]}
        self.assertEqual(between, set())

    def test_conditions(self):
        conditions = {row["Action"]: row["Condition"] for row in self.tables["InstallExecuteSequence"].dicts()}
        # Agents end when their own files come, go or are repaired, and not when another feature comes or goes.
        self.assertEqual({name: said for name, said in conditions.items() if said},
                         {"EndAgents": "NOT Installed OR $Agent=2 OR (REINSTALL AND $Agent=3)"})
        self.assertEqual(self.by_key("Component", "Component")["Agent"]["KeyPath"], "AgentExe")

    def test_agents_are_ended_by_windows_own_program_with_the_rights_of_the_system(self):
        # A program in a folder, deferred, with the rights of the system, whose result does not count.
        self.assertEqual(self.rows("CustomAction", "Action", "Type", "Source", "Target"), {
            ("EndAgents", str(34 + 1024 + 2048 + 64), "System64Folder",
             '"[System64Folder]taskkill.exe" /F /IM OrvikNotifications.exe')})
        # Its working folder is one that Windows names.
        self.assertEqual(self.by_key("Directory", "Directory")["System64Folder"]["Directory_Parent"], "TARGETDIR")

    def test_other_sequences_end_no_agents(self):
        for name in ("InstallUISequence", "AdminExecuteSequence", "AdvtExecuteSequence"):
            self.assertNotIn("EndAgents", {row["Action"] for row in self.tables[name].dicts()}, name)


if __name__ == "__main__":
    unittest.main()
