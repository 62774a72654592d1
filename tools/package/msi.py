"""The installer: wixl makes it from packaging/OrvikNotifications.wxs; what wixl leaves out or does wrong is put right in
its tables."""
import hashlib
import shutil
import uuid
import xml.etree.ElementTree as ElementTree

import summary
import tables
from contents import PACKAGING
from faults import PackageFault
from pefile import file_version

WXS = PACKAGING / "OrvikNotifications.wxs"
_NAMESPACE = "{http://schemas.microsoft.com/wix/2006/wi}"
# Codes that change with each version or each package are derived from this one.
_CODES = uuid.UUID("5d0f3c61-8b57-4c0e-9a43-2e9b7c4f1d26")
_FEATURE_FLAGS = {("Absent", "disallow"): 16, ("AllowAdvertise", "no"): 8}
_SHORT_LETTERS = "0123456789abcdefghijklmnopqrstuvwxyz"


def _code(text):
    return f"{{{str(uuid.uuid5(_CODES, text)).upper()}}}"


def product_code(version):
    """Each version is a product of its own: an upgrade removes the one and installs the other."""
    return _code(f"product {version}")


def package_code(version, paths):
    """The same for the same contents, another one for any other: Windows takes two packages of one code for one."""
    digest = hashlib.sha256()
    for path in paths:
        digest.update(path.name.encode() + b"\0" + hashlib.sha256(path.read_bytes()).digest())
    return _code(f"package {version} {digest.hexdigest()}")


def with_short_name(name):
    """SHORT|long: wixl leaves the short name out, which only names that are short already may do."""
    stem, dot, extension = name.rpartition(".") if "." in name else (name, "", "")
    if "|" in name or name in (".", "SourceDir") or (len(stem) <= 8 and len(extension) <= 3 and " " not in name):
        return name
    number = int.from_bytes(hashlib.sha256(name.lower().encode()).digest()[:6], "big")
    short = ""
    while len(short) < 8:
        number, place = divmod(number, 36)
        short += _SHORT_LETTERS[place]
    return f"{short}{dot}{extension[:3]}|{name}"


def _put_names(tables_by_name):
    for name, column in (("File", "FileName"), ("Directory", "DefaultDir"), ("Shortcut", "Name")):
        tables_by_name[name].update(lambda row, column=column: row.update({column: with_short_name(row[column])}))


def _put_versions(tables_by_name, stage):
    """A file with a version is replaced by a higher one; without the column it would be compared as an unversioned one."""
    versioned = set()

    def put(row):
        found = file_version(stage / _staged_name(row, tables_by_name))
        if found:
            row["Version"], row["Language"] = found[0], str(found[1])
            versioned.add(row["File"])
    tables_by_name["File"].update(put)
    tables_by_name["MsiFileHash"].update(lambda row: row["File_"] not in versioned)


def _staged_name(row, tables_by_name):
    """Policy texts lie in a folder named after their language, in the stage as in Windows."""
    long_name = row["FileName"].rpartition("|")[2]
    component = next(one for one in tables_by_name["Component"].dicts() if one["Component"] == row["Component_"])
    folder = next(one for one in tables_by_name["Directory"].dicts() if one["Directory"] == component["Directory_"])
    if folder["Directory_Parent"] == "PolicyFolder":
        return f"{folder['DefaultDir'].rpartition('|')[2]}/{long_name}"
    return long_name


def _put_registry(registry, wxs):
    """Keys end without a backslash, and what is to be expanded says so."""
    expandable = {(key.get("Key"), value.get("Name")) for key in wxs.iter(_NAMESPACE + "RegistryKey")
                  for value in key.iter(_NAMESPACE + "RegistryValue") if value.get("Type") == "expandable"}

    def put(row):
        row["Key"] = row["Key"].rstrip("\\")
        if (row["Key"], row["Name"]) in expandable and not row["Value"].startswith("#%"):
            row["Value"] = "#%" + row["Value"]
    registry.update(put)


def _put_features(features, wxs):
    flags = {feature.get("Id"): sum(flag for (name, value), flag in _FEATURE_FLAGS.items() if feature.get(name) == value)
             for feature in wxs.iter(_NAMESPACE + "Feature")}
    features.update(lambda row: row.update(Attributes=str(flags[row["Feature"]])))


def _correct(database, stage):
    found = tables.read_all(database)
    wxs = ElementTree.parse(WXS)
    _put_names(found)
    _put_versions(found, stage)
    _put_registry(found["Registry"], wxs)
    _put_features(found["Feature"], wxs)
    changed = {"File", "Directory", "Shortcut", "MsiFileHash", "Registry", "Feature"}
    for path in sorted((PACKAGING / "tables").glob("*.idt")):
        extra = tables.Table.parse(path.read_text(encoding="utf-8"))
        if extra.name in found:
            found[extra.name].put(extra)
        else:
            found[extra.name] = extra
        changed.add(extra.name)
    tables.write_tables(database, [found[name] for name in sorted(changed)])


def build(target, stage, contents, version, epoch):
    """The installer of the files in `stage`, whose parent is the work folder with the icon. The same files and the same version make the same bytes."""
    target.unlink(missing_ok=True)
    defines = {"Version": version, "ProductCode": product_code(version).strip("{}"),
               **{part: "yes" if contents.has(part) else "no" for part in ("Events", "Policies")}}
    # wixl takes no absolute path, and looks for files beside the source that names them.
    work = stage.parent
    shutil.copyfile(WXS, work / WXS.name)
    command = ["wixl", "-a", "x64", "-o", target]
    for name, value in defines.items():
        command += ["-D", f"{name}={value}"]
    tables.run([*command, WXS.name], cwd=work)
    if not target.is_file():
        raise PackageFault("wixl made no package and said nothing.")
    _correct(target, stage)
    inputs = [WXS, *sorted((PACKAGING / "tables").glob("*.idt")), *(stage / item.name for item in contents.items)]
    summary.settle(target, package_code(version, inputs), epoch)
    return target

