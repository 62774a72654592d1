"""Upgrades and what is refused, under Wine: the whole state after each step."""
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
from state import HIGHER, LOWER, VERSION, Installation, in_windows  # noqa: E402
from test_install import PER_USER  # noqa: E402

# 1603, of which a Unix exit code keeps the last eight bits.
_FATAL = 1603 & 0xFF


@in_windows
class Upgrading(Installation):
    def test_upgrade_of_a_running_agent_ends_it_and_needs_no_restart(self):
        self.assertEqual(self.install(VERSION), 0)
        agent = self.start_agent()
        self.assertEqual(self.install(HIGHER), 0, "0, not 3010: nothing waits for a restart")
        self.assertTrue(agent.has_ended())
        self.assert_state(HIGHER, users=PER_USER)
        self.start_agent()
        self.assertEqual(self.remove(HIGHER), 0)
        self.assert_untouched(users=PER_USER)

    def test_features_that_were_left_out_stay_away(self):
        """Windows takes over what was chosen before; Wine has to be told again."""
        self.assertEqual(self.install(VERSION, "ADDLOCAL=Agent"), 0)
        self.assertEqual(self.install(HIGHER, "ADDLOCAL=Agent"), 0)
        self.assert_state(HIGHER, autostart=False)

    def test_templates_are_replaced_with_the_rest(self):
        self.assertEqual(self.install(VERSION, "ADDLOCAL=ALL"), 0)
        self.assertEqual(self.install(HIGHER, "ADDLOCAL=ALL"), 0)
        self.assert_state(HIGHER, templates=True)
        self.assertEqual(self.remove(HIGHER), 0)
        self.assert_untouched()

    def test_downgrade_is_refused_and_changes_nothing(self):
        self.assertEqual(self.install(VERSION), 0)
        agent = self.start_agent()
        self.assertEqual(self.install(LOWER), _FATAL)
        self.assertEqual(self.install(LOWER, "ADDLOCAL=ALL"), _FATAL)
        self.assertTrue(agent.runs, "the agent is left alone")
        self.assert_state(VERSION, users=PER_USER)


if __name__ == "__main__":
    unittest.main()
