"""Tables of a Windows Installer database as text, by way of msitools: read, changed, written back."""
import os
import subprocess
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

from faults import PackageFault

_WITH_FILES = ("Binary", "Icon")


def run(command, **options):
    """The output of a tool; what it complains of becomes the fault. Time zone and language of this machine stay out."""
    environment = {**os.environ, "TZ": "UTC", "LC_ALL": "C.UTF-8", **options.pop("environment", {})}
    try:
        done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              stdin=subprocess.DEVNULL, env=environment, check=False, **options)
    except FileNotFoundError as fault:
        raise PackageFault(f"{command[0]} is not installed; run ./dev install package") from fault
    said = done.stderr.decode(errors="replace").strip()
    if done.returncode or "CRITICAL" in said or "WARNING" in said:
        raise PackageFault(f"{command[0]} failed with {done.returncode}: {said or 'it said nothing'}")
    return done.stdout


@dataclass
class Table:
    """Column names, their types, the keys' line, and rows of texts in the order of the columns."""
    name: str
    columns: list
    types: list
    keys: list
    rows: list = field(default_factory=list)

    @classmethod
    def parse(cls, text):
        lines = [line.split("\t") for line in text.replace("\r\n", "\n").split("\n") if line]
        columns, types, keys, *rows = lines
        wrong = [row for row in rows if len(row) != len(columns)]
        if wrong:
            raise PackageFault(f"table {keys[0]}: {wrong[0]} has not {len(columns)} columns.")
        return cls(keys[0], columns, types, keys[1:], rows)

    def text(self):
        lines = [self.columns, self.types, [self.name, *self.keys], *self.rows]
        return "".join("\t".join(line) + "\n" for line in lines)

    def dicts(self):
        return [dict(zip(self.columns, row)) for row in self.rows]

    def update(self, change):
        """`change` takes each row as a dictionary and changes it in place; returning False takes the row out."""
        kept = []
        for row in self.dicts():
            if change(row) is not False:
                kept.append([row[column] for column in self.columns])
        self.rows = kept

    def put(self, other):
        """Takes the rows of the other table; those whose key stands here already are replaced."""
        if other.columns != self.columns:
            raise PackageFault(f"table {self.name} has the columns {self.columns}, not {other.columns}.")
        places = [self.columns.index(key) for key in self.keys]
        new = {tuple(row[place] for place in places): row for row in other.rows}
        self.rows = [row for row in self.rows if tuple(row[place] for place in places) not in new] + list(new.values())


def table_names(database):
    return run(["msiinfo", "tables", database]).decode().split()


def read_table(database, name):
    return Table.parse(run(["msiinfo", "export", database, name]).decode())


def read_all(database):
    """Every table but those that Windows Installer keeps for itself, and those with files inside, which msiinfo would write
    to the current folder."""
    return {name: read_table(database, name) for name in table_names(database)
            if not name.startswith("_") and name not in _WITH_FILES}


def write_tables(database, tables):
    """Each replaces the table of its name, or is new."""
    with tempfile.TemporaryDirectory() as folder:
        for table in tables:
            path = Path(folder, f"{table.name}.idt")
            path.write_text(table.text(), encoding="utf-8", newline="\n")
            run(["msibuild", database, "-i", path])
