"""What wixl leaves out or does wrong, put right in the tables of the finished package; what it cannot say is added."""
import hashlib
from pathlib import PurePosixPath

import tables
from contents import PACKAGING
from languages import NAMESPACE
from pefile import file_version

EXTRA_TABLES = tuple(sorted((PACKAGING / "tables").glob("*.idt")))
_FEATURE_FLAGS = {("Absent", "disallow"): 16, ("AllowAdvertise", "no"): 8}
_SHORT_LETTERS = "0123456789abcdefghijklmnopqrstuvwxyz"


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


def _put_names(found):
    for name, column in (("File", "FileName"), ("Directory", "DefaultDir"), ("Shortcut", "Name")):
        found[name].update(lambda row, column=column: row.update({column: with_short_name(row[column])}))


def _put_versions(found, wxs, stage):
    """A file with a version is replaced by a higher one; without the column it would be compared as an unversioned one."""
    sources = {file.get("Id"): PurePosixPath(file.get("Source")).relative_to("files") for file in wxs.iter(NAMESPACE + "File")}
    versioned = set()

    def put(row):
        if said := file_version(stage / sources[row["File"]]):
            row["Version"], row["Language"] = said[0], str(said[1])
            versioned.add(row["File"])
    found["File"].update(put)
    found["MsiFileHash"].update(lambda row: row["File_"] not in versioned)


def _put_registry(registry, wxs):
    """Keys end without a backslash, and what is to be expanded says so."""
    expandable = {(key.get("Key"), value.get("Name")) for key in wxs.iter(NAMESPACE + "RegistryKey")
                  for value in key.iter(NAMESPACE + "RegistryValue") if value.get("Type") == "expandable"}

    def put(row):
        row["Key"] = row["Key"].rstrip("\\")
        if (row["Key"], row["Name"]) in expandable and not row["Value"].startswith("#%"):
            row["Value"] = "#%" + row["Value"]
    registry.update(put)


def _put_features(features, wxs):
    flags = {feature.get("Id"): sum(flag for (name, value), flag in _FEATURE_FLAGS.items() if feature.get(name) == value)
             for feature in wxs.iter(NAMESPACE + "Feature")}
    features.update(lambda row: row.update(Attributes=str(flags[row["Feature"]])))


def correct(database, wxs, stage):
    """`wxs` is the source that the database was made of, `stage` the folder of its files."""
    found = tables.read_all(database)
    _put_names(found)
    _put_versions(found, wxs, stage)
    _put_registry(found["Registry"], wxs)
    _put_features(found["Feature"], wxs)
    changed = {"File", "Directory", "Shortcut", "MsiFileHash", "Registry", "Feature"}
    for path in EXTRA_TABLES:
        extra = tables.Table.parse(path.read_text(encoding="utf-8"))
        if extra.name in found:
            found[extra.name].put(extra)
        else:
            found[extra.name] = extra
        changed.add(extra.name)
    tables.write_tables(database, [found[name] for name in sorted(changed)])
