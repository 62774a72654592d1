"""Processes that this program started, directly or through others, and how they end."""
import contextlib
import ctypes
import os
import signal
import subprocess
import sys
import time
from pathlib import Path

_PR_SET_PDEATHSIG = 1
_PR_SET_CHILD_SUBREAPER = 36
_ADDR_NO_RANDOMIZE = 0x0040000
_QUERY_PERSONALITY = 0xFFFFFFFF
_libc = ctypes.CDLL(None, use_errno=True)


def adopt_orphans():
    """From here on a descendant whose parent ends becomes our child: daemons can be found and ended by id."""
    _libc.prctl(_PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def die_with_parent():
    """For preexec_fn: the process ends even when we are killed without a chance to clean up."""
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL, 0, 0, 0)


def forbid_address_randomisation():
    """True when all later processes get fixed addresses: about one Wine start in 6,000 fails with random ones."""
    current = _libc.personality(ctypes.c_ulong(_QUERY_PERSONALITY))
    return current >= 0 and _libc.personality(ctypes.c_ulong(current | _ADDR_NO_RANDOMIZE)) >= 0


def leave(_signal, _frame):
    """Handler of the polite ends while nothing is running yet."""
    raise KeyboardInterrupt


def ignore_ends():
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.SIG_IGN)


@contextlib.contextmanager
def ends_passed_on_to(child):
    """While inside, SIGTERM and SIGHUP go to the child; SIGINT is waited out, the terminal sent it to the child as well."""
    def pass_on(number, _frame):
        child.send_signal(number)
    before = {signal.SIGTERM: signal.signal(signal.SIGTERM, pass_on), signal.SIGHUP: signal.signal(signal.SIGHUP, pass_on),
              signal.SIGINT: signal.signal(signal.SIGINT, lambda _number, _frame: None)}
    try:
        yield
    finally:
        for number, handler in before.items():
            signal.signal(number, handler)


def end(child, patience=5):
    """Ends one child, politely first."""
    if child.poll() is not None:
        return
    child.terminate()
    try:
        child.wait(patience)
    except subprocess.TimeoutExpired:
        child.kill()
        child.wait()


def _children_of(pid):
    children = []
    for task in Path(f"/proc/{pid}/task").glob("*/children"):
        with contextlib.suppress(OSError):
            children += [int(number) for number in task.read_text().split()]
    return children


def _children_by_scan(pid):
    """For kernels without /proc/<pid>/task/<tid>/children."""
    children = []
    for stat in Path("/proc").glob("[0-9]*/stat"):
        with contextlib.suppress(OSError, ValueError, IndexError):
            fields = stat.read_text().rpartition(")")[2].split()
            if int(fields[1]) == pid:
                children.append(int(stat.parent.name))
    return children


def descendants():
    find = _children_of if Path("/proc/self/task", str(os.getpid()), "children").exists() else _children_by_scan
    found, look_at = [], [os.getpid()]
    while look_at:
        children = [pid for pid in find(look_at.pop()) if pid not in found]
        found += children
        look_at += children
    return found


def _reap():
    with contextlib.suppress(ChildProcessError):
        while os.waitpid(-1, os.WNOHANG)[0]:
            pass


def end_descendants(patience=10):
    """Kills whatever is left below us, and waits until it is gone."""
    deadline = time.monotonic() + patience
    _reap()
    while left := descendants():
        for pid in left:
            with contextlib.suppress(ProcessLookupError):
                os.kill(pid, signal.SIGKILL)
        if time.monotonic() > deadline:
            print(f"testenv: these processes do not end: {left}", file=sys.stderr)
            return
        time.sleep(0.02)
        _reap()
