"""A private X display without a screen."""
import os
import select
import subprocess

from . import processes
from .errors import EnvironmentFault

_SECONDS_TO_START = 30


class Display:
    """Xvfb under a number that it chose itself, so that several never meet. `name` is what DISPLAY takes."""

    def __init__(self, log_path):
        self._log_path = log_path
        read_end, write_end = os.pipe()
        with open(log_path, "wb") as log:
            try:
                self._server = subprocess.Popen(
                    ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1280x800x24", "-nolisten", "tcp", "-noreset"],
                    stdin=subprocess.DEVNULL, stdout=log, stderr=log, pass_fds=[write_end],
                    preexec_fn=processes.die_with_parent)
            except OSError as fault:
                os.close(read_end)
                raise EnvironmentFault("Xvfb is not installed; run tools/install.") from fault
            finally:
                os.close(write_end)
        self.name = ":" + self._read_number(read_end)

    def _read_number(self, read_end):
        number = b""
        with os.fdopen(read_end, "rb", buffering=0) as pipe:
            while not number.endswith(b"\n"):
                ready, _, _ = select.select([pipe], [], [], _SECONDS_TO_START)
                part = pipe.read(16) if ready else b""
                if not part:
                    said = self._log_path.read_text(errors="replace").strip().splitlines()
                    self.close()
                    raise EnvironmentFault(f"Xvfb did not start ({said[-1] if said else 'it said nothing'}).")
                number += part
        return number.decode().strip()

    def close(self, keep=False):
        del keep
        processes.end(self._server)
