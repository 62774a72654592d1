"""tools/testenv and tools/wine-run as their users see them."""
import os
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

_TOOLS = Path(__file__).resolve().parents[2]
_TESTENV = str(_TOOLS / "testenv")
_WINE_RUN = str(_TOOLS / "wine-run")


def run(*command, **variables):
    environment = {name: value for name, value in os.environ.items() if not name.startswith(("ORVIK_", "WINE"))}
    if "ORVIK_BUILD_ROOT" in os.environ:
        environment["ORVIK_BUILD_ROOT"] = os.environ["ORVIK_BUILD_ROOT"]
    return subprocess.run(command, env={**environment, **variables}, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, text=True, timeout=300, check=False)


def processes_of(prefix):
    """Processes that have this prefix in their environment; those of Wine all do."""
    found = []
    for entry in Path("/proc").glob("[0-9]*/environ"):
        try:
            if f"WINEPREFIX={prefix}\0".encode() in entry.read_bytes():
                found.append(int(entry.parent.name))
        except OSError:
            pass
    return found


class TestEnv(unittest.TestCase):
    def test_exit_code_is_that_of_the_command(self):
        self.assertEqual(run(_TESTENV, "--", "sh", "-c", "exit 7").returncode, 7)

    def test_command_that_is_missing_is_one_sentence(self):
        result = run(_TESTENV, "--", "/no/such/program")
        self.assertEqual(result.returncode, 125)
        self.assertRegex(result.stderr, r"/no/such/program cannot be started .*\.\n$")

    def test_each_version_says_what_it_is(self):
        script = 'for version in win7 win81 win10; do ORVIK_WINDOWS=$version "$0" cmd /c ver; done; "$0" cmd /c ver'
        result = run(_TESTENV, "--windows", "win7", "--windows", "win81", "--windows", "win10", "--", "sh", "-c", script, _WINE_RUN)
        versions = [line.split()[-1] for line in result.stdout.splitlines() if line.strip()]
        self.assertEqual([version.rpartition(".")[0] for version in versions], ["6.1", "6.3", "10.0", "10.0"], result)

    def test_version_that_was_not_asked_for_is_refused(self):
        result = run(_TESTENV, "--", _WINE_RUN, "cmd", ORVIK_WINDOWS="win7")
        self.assertEqual(result.returncode, 125)
        self.assertIn("--windows win7", result.stderr)

    def test_displays_differ_and_end(self):
        result = run(_TESTENV, "--windows", "win7", "--windows", "win10", "--display", "--",
                     "sh", "-c", 'echo "$DISPLAY $ORVIK_DISPLAY_WIN7 $ORVIK_DISPLAY_WIN10 $WINEPREFIX"')
        *displays, prefix = result.stdout.split()
        self.assertEqual(len(set(displays)), 3)
        self.assertEqual(processes_of(prefix), [])
        self.assertFalse(Path(prefix).exists())

    def test_what_a_run_writes_reaches_no_other(self):
        script = '"$0" reg add "HKCU\\Software\\Mine" /v a /d b /f && echo x >"$WINEPREFIX/drive_c/windows/win.ini"'
        self.assertEqual(run(_TESTENV, "--", "sh", "-c", script, _WINE_RUN).returncode, 0)
        seen = run(_TESTENV, "--", "sh", "-c", '"$0" reg query "HKCU\\Software\\Mine"; head -c 2 "$WINEPREFIX/drive_c/windows/win.ini"', _WINE_RUN)
        self.assertNotIn("REG_SZ", seen.stdout)
        self.assertNotIn("x\n", seen.stdout)

    def test_prepare_script_runs_in_each_prefix_and_its_failure_counts(self):
        with tempfile.TemporaryDirectory() as folder:
            script = Path(folder, "prepare")
            script.write_text('#!/bin/sh\necho "$ORVIK_WINDOWS" >"$WINEPREFIX/prepared"\n', encoding="ascii")
            script.chmod(0o755)
            arguments = (_TESTENV, "--windows", "win7", "--windows", "win10", "--prepare", str(script), "--", "sh", "-c",
                         'cat "$ORVIK_PREFIX_WIN7/prepared" "$ORVIK_PREFIX_WIN10/prepared"')
            self.assertEqual(run(*arguments).stdout, "win7\nwin10\n")
            script.write_text("#!/bin/sh\nexit 3\n", encoding="ascii")
            self.assertEqual(run(*arguments).returncode, 125)

    def start_sleeping(self):
        sleeping = subprocess.Popen([_TESTENV, "--display", "--", "sh", "-c", 'echo "$WINEPREFIX"; exec sleep 100'],
                                    stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        self.addCleanup(sleeping.stdout.close)
        return sleeping, sleeping.stdout.readline().strip()

    def test_polite_end_cleans_up(self):
        sleeping, prefix = self.start_sleeping()
        self.assertNotEqual(processes_of(prefix), [])
        sleeping.send_signal(signal.SIGTERM)
        self.assertNotEqual(sleeping.wait(60), 0)
        self.assertEqual((processes_of(prefix), Path(prefix).exists()), ([], False))

    def test_rude_end_is_cleaned_up_by_the_next_run(self):
        sleeping, prefix = self.start_sleeping()
        sleeping.kill()
        sleeping.wait(60)
        run(_TESTENV, "--", "true")
        deadline = time.monotonic() + 30
        while processes_of(prefix) and time.monotonic() < deadline:
            time.sleep(0.1)
        self.assertEqual((processes_of(prefix), Path(prefix).exists()), ([], False))


class WineRun(unittest.TestCase):
    def test_outside_of_an_environment_it_says_where_it_belongs(self):
        result = run(_WINE_RUN, "cmd")
        self.assertEqual(result.returncode, 125)
        self.assertIn("tools/testenv", result.stderr)

    def run_with_loader(self, text):
        """Runs a loader that counts its starts; returns its result and the number of starts."""
        with tempfile.TemporaryDirectory() as folder:
            loader = Path(folder, "loader")
            loader.write_text(f"#!/bin/sh\necho >>{folder}/starts\n{text}\n", encoding="ascii")
            loader.chmod(0o755)
            result = run(_WINE_RUN, "program", ORVIK_TESTENV="1", ORVIK_RETRY_START="1", WINELOADER=str(loader))
            return result.returncode, result.stdout, len(Path(folder, "starts").read_text(encoding="ascii"))

    def test_silent_code_1_is_tried_once_more_where_addresses_are_random(self):
        self.assertEqual(self.run_with_loader("exit 1"), (1, "", 2))

    def test_every_other_end_stands(self):
        self.assertEqual(self.run_with_loader("echo no; exit 1"), (1, "no\n", 1))
        self.assertEqual(self.run_with_loader("exit 2"), (2, "", 1))
        self.assertEqual(self.run_with_loader("echo yes"), (0, "yes\n", 1))


if __name__ == "__main__":
    unittest.main()
