"""Signing by a command that the releaser names: it is run once for each file and signs it in place."""
import shlex
import subprocess

from faults import PackageFault
from archive import settle

PLACE = "{file}"


def check(command):
    if PLACE not in command:
        raise PackageFault(f"The signing command must say where the file's name goes, for instance: --sign 'sign.sh {PLACE}'")
    try:
        shlex.split(command)
    except ValueError as fault:
        raise PackageFault(f"The signing command is not whole: {fault}") from fault


def sign(path, command, epoch):
    """Runs the command with the path put in; a file that is as it was before was not signed."""
    before = path.read_bytes()
    words = [word.replace(PLACE, str(path)) for word in shlex.split(command)]
    try:
        done = subprocess.run(words, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              check=False)
    except OSError as fault:
        raise PackageFault(f"The signing command cannot be started ({fault.strerror}): {words[0]}") from fault
    if done.returncode:
        raise PackageFault(f"The signing command failed with {done.returncode} for {path.name}: {done.stdout.strip()}")
    if path.read_bytes() == before:
        raise PackageFault(f"The signing command ended well and left {path.name} as it was. It said: {done.stdout.strip()}")
    settle(path, epoch)
