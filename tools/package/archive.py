"""Files of the release whose bytes depend on nothing but their contents: stages, zips, checksums."""
import calendar
import hashlib
import os
import shutil
import time
import zipfile

_ZIP_BEGINS = calendar.timegm((1980, 1, 1, 0, 0, 0))


def copy_in(source, target, epoch):
    """A copy with the time and the rights that every file of the package has."""
    target.parent.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(source, target)
    settle(target, epoch)


def settle(path, epoch):
    path.chmod(0o644)
    os.utime(path, (epoch, epoch))


def write_zip(target, files, epoch):
    """`files` maps the name inside to the path; sorted, without owner, rights or local time."""
    when = time.gmtime(max(epoch, _ZIP_BEGINS))[:6]
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for name in sorted(files):
            entry = zipfile.ZipInfo(name, when)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 0
            entry.external_attr = 0
            archive.writestr(entry, files[name].read_bytes())


def sha256(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def write_checksums(target, paths):
    """The format of sha256sum, which also checks it."""
    lines = [f"{sha256(path)}  {path.name}\n" for path in sorted(paths)]
    target.write_text("".join(lines), encoding="utf-8", newline="\n")


def read_checksums(path):
    """The names that stand there; none in a file of another format."""
    lines = [line.partition("  ") for line in path.read_text(encoding="utf-8", errors="replace").splitlines()]
    return {name for digest, _, name in lines if len(digest) == 64}
