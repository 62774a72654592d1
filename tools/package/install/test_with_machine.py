"""The installed agent in the simulated machine, in a prefix of its own: the machine stays in the prefix."""
import os
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
import machine  # noqa: E402
import packages  # noqa: E402
from test_install import BUILD, MISSING, SYMBOLS, VERSION  # noqa: E402

_SIMULATOR = BUILD / "bin" / "orvik-sim.exe"
_AGENT = "C:\\" + machine.AGENT.replace("/", "\\")


@unittest.skipIf(MISSING, f"{', '.join(MISSING)} not installed: ./dev install package")
@unittest.skipUnless(SYMBOLS.is_file(), f"{SYMBOLS} is not built: ./dev build release")
@unittest.skipUnless(os.environ.get("WINEPREFIX"), "no Windows: run inside tools/testenv")
@unittest.skipUnless(_SIMULATOR.is_file(), f"{_SIMULATOR} is not built")
class InstalledAgent(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            package = packages.installer(BUILD, Path(folder), VERSION)
            if code := machine.msiexec("/i", machine.windows_path(package)):
                raise AssertionError(f"the installation failed with {code}")
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
