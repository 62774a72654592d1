"""Prefixes of one run: cloned from the templates, alive for the run, removed after it."""
import fcntl
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

from . import places
from .errors import EnvironmentFault
from .wine import clone

WINDOWS_VERSIONS = ("win7", "win81", "win10")
_SECONDS_TO_START = 120
# A server that outlives us by accident goes an hour after its last program; until then it keeps drivers loaded.
_SERVER_SECONDS = 3600
_WITHOUT_DISPLAY = '\n[Software\\\\Wine\\\\Drivers]\n"Graphics"="null"\n'


class RunFolder:
    """Folder of one run. Its lock says that the run lives: what a run that was killed left behind is removed here."""

    def __init__(self, wine):
        for leftover in places.WINE.glob("run-*"):
            self._remove_if_dead(wine, leftover)
        self.path = Path(tempfile.mkdtemp(prefix="run-", dir=places.WINE))
        self._lock = open(self.path / "lock", "w", encoding="ascii")
        fcntl.flock(self._lock, fcntl.LOCK_EX)

    @staticmethod
    def _remove_if_dead(wine, folder):
        try:
            with open(folder / "lock", "r", encoding="ascii") as lock:
                fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
                for prefix in folder.glob("*/"):
                    wine.ask_server("-k", wine.environment(prefix, None))
                shutil.rmtree(folder, ignore_errors=True)
        except OSError:
            pass

    def close(self, keep=False):
        if keep:
            kept = self.path.with_name(self.path.name.replace("run-", "kept-"))
            self.path.rename(kept)
            print(f"testenv: kept {kept}")
        else:
            shutil.rmtree(self.path, ignore_errors=True)
        self._lock.close()


class Prefix:
    """One Windows. `environment` holds the variables of a program that runs in it."""

    def __init__(self, wine, folder, name, version, display):
        self._wine = wine
        self._log_path = folder.path / f"{name}.log"
        self.path = folder.path / name
        clone(wine.template(version), self.path)
        if not display:
            with open(self.path / "user.reg", "a", encoding="ascii") as registry:
                registry.write(_WITHOUT_DISPLAY)
        self.environment = wine.environment(self.path, display.name if display else None)
        self._first_program = None

    def start(self):
        """Begins to start the server and the services; the first program hands its output to them, so it gets none."""
        self._wine.ask_server(f"-p{_SERVER_SECONDS}", self.environment)
        self._first_program = self._run("cmd", "/c", "exit")

    def _run(self, *command):
        with open(self._log_path, "ab") as log:
            return subprocess.Popen([self._wine.loader, *command], env=self.environment, stdin=subprocess.DEVNULL,
                                    stdout=subprocess.DEVNULL, stderr=log)

    def wait_until_started(self):
        try:
            code = self._first_program.wait(_SECONDS_TO_START)
        except subprocess.TimeoutExpired:
            code = "a time-out"
        if code:
            said = self._log_path.read_text(errors="replace").strip().splitlines()
            raise EnvironmentFault(f"Wine did not start in {self.path.name} ({code}): {said[-1:] or 'it said nothing'}; "
                                   f"if this stays, remove {places.WINE}.")
        self._start_desktop()

    def _start_desktop(self):
        """The desktop, too, gets the output of the program that needs it first, and whoever reads that output would wait
        for the desktop's end. So it stands before the first test, and stays."""
        self._run("explorer.exe", "/desktop")
        # Makes a window, for which it waits until there is a desktop, and ends.
        if self._run("rundll32.exe", "user32.dll,UpdateWindow").wait(_SECONDS_TO_START):
            raise EnvironmentFault(f"Wine made no desktop in {self.path.name}; if this stays, remove {places.WINE}.")

    def run_script(self, script, environment):
        mine = {**environment, **{name: self.environment[name] for name in ("WINEPREFIX", "DISPLAY") if name in self.environment},
                "ORVIK_WINDOWS": self.path.name}
        if code := subprocess.run([str(script)], env=mine, stdin=subprocess.DEVNULL, check=False).returncode:
            raise EnvironmentFault(f"{script} failed with {code} in {self.path.name}.")

    def close(self, keep=False):
        """A prefix that is kept ends tidily, so that its registry is written; one that goes away just ends."""
        self._wine.ask_server("-k" if keep else "-k9", self.environment)
        if keep:
            self._wine.ask_server("-w", self.environment)
