#!/usr/bin/env python3
"""Checks a policy template and its texts and prints what Windows or Intune would refuse; exit code 1 when there is some.

    policies/check.py FOLDER      a folder with one .admx file and, in a folder per language, one .adml file of its name
"""
import sys
import xml.etree.ElementTree as ET
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
from checker import intune, schema  # noqa: E402
from checker.finding import Finding  # noqa: E402
from checker.references import References  # noqa: E402
from checker.simple import fits  # noqa: E402


def _parse(path, findings):
    try:
        return ET.parse(path).getroot()
    except (ET.ParseError, OSError) as error:
        findings.append(Finding(path.name, "file", f"is not XML that can be read: {error}"))
        return None


def _languages(folder, template, findings):
    """tag -> (file, first element) of the texts that stand where Windows looks for them."""
    found = {}
    for path in sorted(folder.glob("*/*.adml")):
        name = f"{path.parent.name}/{path.name}"
        if path.stem.lower() != template.stem.lower():
            findings.append(Finding(name, "file", f"there is no template {path.stem}.admx"))
        elif not fits("language", path.parent.name):
            findings.append(Finding(name, "file", f"{path.parent.name} is no language"))
        elif (root := _parse(path, findings)) is not None:
            found[path.parent.name] = (name, root)
    return found


def check(folder):
    """All findings for a folder of templates. Checks build on each other: what breaks the schema is not looked at more."""
    folder, findings = Path(folder), []
    templates = sorted(folder.glob("*.admx"))
    if len(templates) != 1:
        return [Finding(str(folder), "folder", f"holds {len(templates)} templates, one is expected")]
    path = templates[0]
    template = _parse(path, findings)
    languages = _languages(folder, path, findings)
    if template is None:
        return findings
    findings += schema.check(path.name, template, "policyDefinitions")
    for name, root in languages.values():
        findings += schema.check(name, root, "policyDefinitionResources")
    if findings:
        return findings
    findings += References(path.name, template, list(languages.values())).check()
    sizes = {path.name: path.stat().st_size}
    sizes |= {name: (folder / name).stat().st_size for name, _ in languages.values()}
    return findings + list(intune.check(path.name, template, languages, sizes))


def main(arguments):
    if len(arguments) != 1:
        print(__doc__, file=sys.stderr)
        return 2
    findings = check(arguments[0])
    for finding in findings:
        print(finding)
    print(f"policy templates in {arguments[0]}: {len(findings)} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
