"""The installed Wine, and the template prefix of each Windows version that runs are cloned from."""
import fcntl
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

from . import places
from .errors import EnvironmentFault

# Goes up when a template made before would no longer do.
_TEMPLATE_REVISION = 5
_SECONDS_TO_CREATE = 300
# Debian puts the loader and the server here and a shell script that looks for them on the path.
_DEBIAN_FOLDER = Path("/usr/lib/wine")
# Wine's own substitutes for the fonts of Windows depend on what is installed; one choice makes pictures alike everywhere,
# and dialogs about as wide as those of Windows: there "MS Shell Dlg" is Microsoft Sans Serif, which is taken to be like
# Arial, and Liberation Sans has the widths of Arial.
_SETTINGS = r"""REGEDIT4

[HKEY_CURRENT_USER\Software\Wine\Fonts\Replacements]
"Segoe UI"="DejaVu Sans"
"Tahoma"="Liberation Sans"
"MS Shell Dlg"="Liberation Sans"
"MS Shell Dlg 2"="Liberation Sans"

; No window manager runs on our displays: Wine draws the frames of windows itself, and does not wait two seconds for one
; to take a window away that is closed.
[HKEY_CURRENT_USER\Software\Wine\X11 Driver]
"Managed"="N"

; A program that breaks ends. Wine's debugger would wait for somebody to look.
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\AeDebug]
"Debugger"="none"
"""


def _find(name):
    for place in (_DEBIAN_FOLDER / f"{name}64", shutil.which(f"{name}64"), shutil.which(name)):
        if place and os.access(place, os.X_OK):
            return str(place)
    raise EnvironmentFault(f"{name} is not installed; run tools/install.")


class Wine:
    def __init__(self, fixed_addresses):
        self.loader = _find("wine")
        self.server = _find("wineserver")
        said = subprocess.run([self.loader, "--version"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              env={**os.environ, "WINELOADER": self.loader}, check=False).stdout
        self._version = (re.findall(r"wine-([\w.]+)", said) or ["unknown"])[0]
        self._fixed_addresses = fixed_addresses

    def environment(self, prefix, display):
        """Variables of a program that runs in the prefix. The C locale makes Wine speak English (language 1033)."""
        result = dict(os.environ)
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "LANG", "LANGUAGE"):
            result.pop(name, None)
        result.update(WINEPREFIX=str(prefix), WINEARCH="win64", WINELOADER=self.loader, WINESERVER=self.server,
                      WINEDEBUG=os.environ.get("ORVIK_WINEDEBUG", "-all"), LC_ALL="C.UTF-8", ORVIK_TESTENV="1",
                      # No questions about Mono and Gecko, no entries in the desktop menus of this machine.
                      WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d")
        if display:
            result["DISPLAY"] = display
        if not self._fixed_addresses:
            result["ORVIK_RETRY_START"] = "1"
        if not os.access(result.get("HOME", "/nonexistent"), os.W_OK):
            result["HOME"] = str(places.BUILD)
        return result

    def ask_server(self, option, environment):
        """Runs the server's program with one option: start (-p), end the server of this prefix (-k), wait for its end (-w)."""
        subprocess.run([self.server, option], env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, check=False)

    def template(self, version):
        return places.WINE / f"template-{version}-{self._version}-r{_TEMPLATE_REVISION}"

    def make_templates(self, versions):
        """Makes those that are missing, one maker at a time; a template is complete when it stands under its name."""
        try:
            places.WINE.mkdir(parents=True, exist_ok=True)
            places.LOG.mkdir(parents=True, exist_ok=True)
            with open(places.WINE / "template.lock", "w", encoding="ascii") as lock:
                fcntl.flock(lock, fcntl.LOCK_EX)
                for version in versions:
                    if not self.template(version).exists():
                        self._make_template(version)
        except PermissionError as fault:
            raise EnvironmentFault(f"{fault.filename} cannot be written; it belongs to another user.") from fault

    def _make_template(self, version):
        print(f"Creating the Wine prefix for {version} (once) ...", file=sys.stderr, flush=True)
        fresh = self.template("fresh")
        if not fresh.exists():
            self._in_unfinished(fresh, [["wineboot", "--init"]], None)
        settings = places.WINE / "template.reg"
        settings.write_text(_SETTINGS, encoding="ascii")
        self._in_unfinished(self.template(version), [["winecfg", "-v", version], ["regedit", "/S", f"Z:{settings}"]], fresh)

    def _in_unfinished(self, final, commands, source):
        unfinished = final.with_name(final.name + ".unfinished")
        shutil.rmtree(unfinished, ignore_errors=True)
        if source:
            clone(source, unfinished)
        environment = self.environment(unfinished, None)
        log_path = places.LOG / "wine-template.log"
        with open(log_path, "ab") as log:
            try:
                for command in commands:
                    subprocess.run([self.loader, *command], env=environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                   timeout=_SECONDS_TO_CREATE, check=True)
            except (subprocess.SubprocessError, OSError) as fault:
                raise EnvironmentFault(f"Wine could not create a prefix ({fault}); see {log_path}.") from fault
            finally:
                self.ask_server("-k", environment)
                self.ask_server("-w", environment)
        _make_home_folders_real(unfinished)
        unfinished.rename(final)


def _make_home_folders_real(prefix):
    """Wine links Documents and its like to the home folder of the person who works here; tests stay out of it."""
    for link in (prefix / "drive_c" / "users").glob("*/*"):
        if link.is_symlink():
            link.unlink()
            link.mkdir()


def clone(source, target):
    """Copy by hard links of what only an update of Wine changes, a real copy of everything else."""
    system_folder = str(source / "drive_c" / "windows")

    def copy_file(path, copy):
        shared = str(path).startswith(system_folder) and not str(path).endswith(".ini")
        if shared:
            os.link(path, copy)
        else:
            shutil.copy2(path, copy)
    shutil.copytree(source, target, symlinks=True, copy_function=copy_file,
                    ignore=lambda folder, names: ["wineserver"] if Path(folder) == source else [])
