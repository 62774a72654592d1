"""The Windows that packages are installed on: a Wine prefix of tools/testenv, looked at from outside."""
import os
import re
import subprocess
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
_WINE_RUN = str(ROOT / "tools" / "wine-run")
AGENT_FOLDER = "Program Files (x86)/Orvik/Orvik Notifications"
AGENT = f"{AGENT_FOLDER}/OrvikNotifications.exe"
# Windows Installer's own books; empty keys and its folder stay when the last product is gone.
_BOOKS = re.compile(r"\\Classes\\Installer\b|\\CurrentVersion\\Installer\b|\\CurrentVersion\\Uninstall\\\{", re.IGNORECASE)
_BOOK_FILES = re.compile(r"^windows/Installer(/|$)")
# Made by whatever runs in a prefix.
_NOISE_FILES = re.compile(r"^(users/[^/]+/(AppData/Local/)?Temp|windows/temp)(/|$)", re.IGNORECASE)

# What Windows changes while it runs; and the number of the current control set, under which newer Wine shows it once more.
_VOLATILE = ("system\\currentcontrolset\\enum", "system\\currentcontrolset\\control\\", "system\\controlset001", "hardware")


def run(*words, timeout=300):
    """(exit code, output) of a Windows program."""
    with tempfile.TemporaryFile() as said:
        done = subprocess.run([_WINE_RUN, *map(str, words)], stdin=subprocess.DEVNULL, stdout=said, stderr=subprocess.STDOUT,
                              timeout=timeout, check=False)
        said.seek(0)
        return done.returncode, said.read().decode(errors="replace").replace("\r", "")


def drive():
    return Path(os.environ["WINEPREFIX"], "drive_c")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def msiexec(*words):
    """Exit code of an installation without any window. Windows keeps 1603 and its like; a Unix exit code the last 8 bits."""
    return run("msiexec", *words, "/qn")[0]


def files(temporary=False):
    """Names of files and folders, of what installations may change."""
    found = set()
    for path in drive().rglob("*"):
        name = path.relative_to(drive()).as_posix()
        if not _BOOK_FILES.match(name) and (temporary or not _NOISE_FILES.match(name)):
            found.add(name)
    return found


def _registry_text():
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder, "machine.reg")
        code, said = run("reg", "export", "HKLM", windows_path(path), "/y")
        if code:
            raise AssertionError(f"the registry could not be read: {said}")
        return path.read_bytes().decode("utf-16").replace("\r", "")


def registry(books=False):
    """{(key, name): data} of the machine's values, or of Windows Installer's books; keys in small letters. A key of ours
    stands there under the name None, with or without values."""
    found, key = {}, None
    for line in _registry_text().replace("\\\n  ", "").split("\n"):
        if line.startswith("["):
            key = line.strip("[]").partition("\\")[2].lower()
            if "orvik" in key:
                found[key, None] = ""
        elif match := re.match(r'(?:"((?:[^"\\]|\\.)*)"|@)=(.*)', line):
            found[key, match.group(1) or ""] = match.group(2)
    return {place: data for place, data in found.items()
            if bool(_BOOKS.search("\\" + place[0])) == books and not place[0].startswith(_VOLATILE)}


def changes(before, after):
    """What is new or different, and what is gone."""
    new = {place: data for place, data in after.items() if before.get(place) != data}
    return new, {place for place in before if place not in after}


def set_value(key, name, data, kind="REG_SZ"):
    code, said = run("reg", "add", f"HKLM\\{key}", "/v", name, "/t", kind, "/d", data, "/f")
    if code:
        raise AssertionError(said)


def products():
    """(name, version) of the installed products of ours, as the list of programs shows them."""
    books = registry(books=True)
    return [(data.strip('"'), books[key, "DisplayVersion"].strip('"')) for (key, name), data in books.items()
            if name == "DisplayName" and "\\uninstall\\{" in key and "Orvik" in data]


class RunningAgent:
    """The installed agent, as somebody's session runs it. Two are started: only one copy runs in a session, and when one
    has ended with 1, the other one has come up."""

    def __init__(self):
        path = "C:\\" + AGENT.replace("/", "\\")
        copies = [subprocess.Popen([os.environ["WINELOADER"], path], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL) for _ in range(2)]
        deadline = time.monotonic() + 60
        while all(copy.poll() is None for copy in copies) and time.monotonic() < deadline:
            time.sleep(0.05)
        self._process = next((copy for copy in copies if copy.poll() is None), None)
        codes = [copy.returncode for copy in copies if copy is not self._process]
        if not self._process or codes != [1]:
            for copy in copies:
                copy.kill()
                copy.wait()
            raise AssertionError(f"the agent did not start: {codes}")

    @property
    def runs(self):
        return self._process.poll() is None

    def has_ended(self, patience=20):
        """Soon, by whatever made it end."""
        try:
            self._process.wait(patience)
        except subprocess.TimeoutExpired:
            return False
        return True

    def close(self):
        if self.runs:
            self._process.kill()
        self._process.wait()
