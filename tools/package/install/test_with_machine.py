"""The installed agent in the simulated machine. Last of the tests, for the machine stays in the prefix."""
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
import machine  # noqa: E402
from state import BUILD, VERSION, in_windows, package  # noqa: E402

_SIMULATOR = BUILD / "bin" / "orvik-sim.exe"
_AGENT = "C:\\" + machine.AGENT.replace("/", "\\")


@in_windows
class InstalledAgent(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if code := machine.msiexec("/i", machine.windows_path(package(VERSION))):
            raise AssertionError(f"the installation failed with {code}")
        # The machine stays in the prefix, the product does not.
        cls.addClassCleanup(machine.msiexec, "/x", machine.windows_path(package(VERSION)))
        code, said = machine.run(_SIMULATOR, "prepare")
        if code:
            raise AssertionError(said)

    def run_scenario(self, path):
        with tempfile.TemporaryDirectory() as out:
            code, said = machine.run(_SIMULATOR, "run", "--agent", _AGENT, "--out", out, machine.ROOT / path)
        self.assertEqual(code, 0, said)

    def test_toasts_are_shown_and_clicked(self):
        self.run_scenario("simulator/scenarios/first-chapter.json")

    def test_agent_leaves_when_the_restart_manager_closes_its_window(self):
        self.run_scenario("packaging/scenarios/asked-to-leave.json")


if __name__ == "__main__":
    unittest.main()
