"""All files of a release, made of a build: installer, zip, symbols, bill of materials, notices, checksums."""
import shutil
import tempfile
from pathlib import Path

import archive
import contents
import linked
import msi
import notices
import sbom
import signing
from faults import PackageFault

NAME = "OrvikNotifications"
NOTICES = "THIRD-PARTY-NOTICES.txt"
CHECKSUMS = "SHA256SUMS"


def check_output(output):
    """A folder is replaced that is empty or holds a release and nothing else."""
    if output.name in ("", ".."):
        raise PackageFault(f"{output} is no name for a new folder: --output FOLDER")
    if not output.exists() and not output.is_symlink():
        return
    if not output.is_dir() or output.is_symlink():
        raise PackageFault(f"{output} is there and is no folder; name another one: --output FOLDER")
    names = {path.name for path in output.iterdir()}
    files = {path.name for path in output.iterdir() if path.is_file()}
    ours = {CHECKSUMS, *archive.read_checksums(output / CHECKSUMS)} & files if CHECKSUMS in files else set()
    if names and (names - ours or not any(name.startswith(NAME) for name in ours)):
        raise PackageFault(f"{output} holds other things than a release; name another folder, or empty it: --output FOLDER")


def _stage(found, work, inside, command, epoch):
    """The files as they will be installed, programs signed, and the notices; by their names."""
    files = work / "files"
    for item in found.items:
        archive.copy_in(item.source, files / item.name, epoch)
        if command and item.program:
            signing.sign(files / item.name, command, epoch)
    notices.write(files / NOTICES, inside)
    archive.settle(files / NOTICES, epoch)
    archive.copy_in(found.icon, work / "orvik.ico", epoch)
    return {name: files / name for name in (NOTICES, *(item.name for item in found.items))}


def _write_archives(base, staged, found, bill, epoch):
    everything = {**staged, bill.name: bill, **{path.name: path for path in found.beside},
                  **{f"docs/{path.name}": path for path in found.documents}}
    archive.write_zip(base.with_name(f"{base.name}-x64.zip"), everything, epoch)
    archive.write_zip(base.with_name(f"{base.name}-x64-symbols.zip"), {found.symbols.name: found.symbols}, epoch)


def _make(found, work, target, command, epoch, version):
    inside = linked.libraries(found.map)
    staged = _stage(found, work, inside, command, epoch)
    base = target / f"{NAME}-{version}"
    shutil.copyfile(staged[NOTICES], target / NOTICES)
    bill = target / f"{base.name}.cdx.json"
    sbom.write_bill(bill, version, {item.name: staged[item.name] for item in found.items if item.program}, inside, epoch)
    installer = msi.build(target / f"{base.name}-x64.msi", work, found, version, epoch)
    if command:
        signing.sign(installer, command, epoch)
    _write_archives(base, staged, found, bill, epoch)
    archive.write_checksums(target / CHECKSUMS, list(target.iterdir()))


def _replace(output, release, old):
    """The release takes the place of what is in the output folder, or everything stays as it is."""
    try:
        if not output.exists():
            release.rename(output)
            return
        output.rename(old)
        try:
            # Something may have come into it while the release was made.
            check_output(old)
            release.rename(output)
        except (OSError, PackageFault):
            old.rename(output)
            raise
    except OSError as fault:
        raise PackageFault(f"{output} cannot be replaced: {fault.strerror}") from fault


def make(build, output, command, epoch, version):
    """Replaces the output folder by a release, only when everything went well; returns its files. `command` signs, or is
    None."""
    output = Path(output).absolute()
    check_output(output)
    found = contents.read(Path(build).absolute())
    contents.check_programs(found.items, version)
    output.parent.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix=f".{output.name}-", dir=output.parent) as folder:
        work, target = Path(folder, "work"), Path(folder, "release")
        (work / "files").mkdir(parents=True)
        target.mkdir()
        _make(found, work, target, command, epoch, version)
        _replace(output, target, Path(folder, "old"))
    return sorted(output.iterdir())
