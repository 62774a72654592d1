"""The bill of materials (CycloneDX): what is shipped, and what is inside it besides its own code."""
import datetime
import json
import uuid
from urllib.parse import quote

from archive import sha256
from tables import run

_SUPPLIER = {"name": "Orvik"}


def package_facts(name):
    """(version, architecture, source) of an installed Debian package."""
    said = run(["dpkg-query", "-W", "-f", "${Version}\t${Architecture}\t${source:Package}", name]).decode()
    return tuple(said.split("\t"))


def package_url(name):
    version, architecture, _ = package_facts(name)
    return f"pkg:deb/debian/{quote(name, safe='')}@{quote(version, safe='~')}?arch={quote(architecture, safe='')}"


def _component(linked):
    """Of a library from several packages the last one stands for it; all belong to one source."""
    package = linked.packages[-1]
    version, _, source = package_facts(package)
    return {
        "type": "library",
        "bom-ref": linked.library.name,
        "name": linked.library.name,
        "version": version,
        "supplier": {"name": "Debian"},
        "description": f"{linked.library.what}, linked statically",
        "licenses": [{"expression": linked.library.licence}],
        "purl": package_url(package),
        "properties": [{"name": "debian:source", "value": source}],
    }


def _bill(version, files, inside, epoch):
    when = datetime.datetime.fromtimestamp(epoch, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    shipped = [{"type": "file", "bom-ref": name, "name": name, "version": version, "supplier": _SUPPLIER,
                "hashes": [{"alg": "SHA-256", "content": sha256(files[name])}]} for name in sorted(files)]
    agent = "OrvikNotifications.exe"
    return {
        "bomFormat": "CycloneDX",
        "specVersion": "1.5",
        "version": 1,
        "metadata": {
            "timestamp": when,
            "tools": {"components": [{"type": "application", "name": "tools/package/package", "version": version,
                                      "supplier": _SUPPLIER}]},
            "component": {"type": "application", "bom-ref": "orvik-notifications", "name": "Orvik Notifications",
                          "version": version, "supplier": _SUPPLIER},
            "supplier": _SUPPLIER,
        },
        "components": shipped + [_component(linked) for linked in inside],
        "dependencies": [
            {"ref": "orvik-notifications", "dependsOn": sorted(files)},
            {"ref": agent, "dependsOn": sorted(linked.library.name for linked in inside)},
            *({"ref": name, "dependsOn": []} for name in sorted(files) if name != agent),
        ],
    }


def write_bill(target, version, files, inside, epoch):
    """`files` are the shipped program files, name to path; the libraries of `inside` are in the agent, in no other."""
    bill = _bill(version, files, inside, epoch)
    # The number names this document: other contents, another number.
    number = uuid.uuid5(uuid.NAMESPACE_OID, json.dumps(bill, sort_keys=True))
    text = json.dumps({**bill, "serialNumber": f"urn:uuid:{number}"}, indent=2, sort_keys=True)
    target.write_text(text + "\n", encoding="utf-8", newline="\n")
