#!/usr/bin/env python3
"""Checks the house rules and prints what breaks them, one finding a line; exit code 1 when there is one.

A line may be excused, on itself or on the line above, by the comment NOCHECK(rule): reason. An excuse without a reason,
for a rule that does not exist or that excuses nothing breaks the rule `excuse`.

    tools/check/house_rules.py [root]
"""
import re
import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
from house import code, includes, lengths, words  # noqa: E402
from house.tree import Finding, Tree  # noqa: E402

RULES = {**includes.RULES, **lengths.RULES, **code.RULES, **words.RULES}
_EXCUSE = re.compile(r"NOCHECK\(([\w-]+)\)(?::[ \t]*(\S.*))?")


def excuses_of(tree):
    """(path, line) -> (rule, reason) for the sources; documents may speak of excuses."""
    found = {}
    for file in tree.files.values():
        if file.is_cpp or file.path.endswith((".sh", ".cmake", "CMakeLists.txt")):
            for number, line in enumerate(file.lines, 1):
                if match := _EXCUSE.search(line):
                    found[file.path, number] = match.groups()
    return found


def check(tree):
    """All findings that are not excused, and the faults of the excuses themselves."""
    excuses, used, findings = excuses_of(tree), set(), []
    for rule in RULES.values():
        for finding in rule(tree):
            places = [(finding.path, finding.line), (finding.path, finding.line - 1)]
            place = next((place for place in places if excuses.get(place, ("",))[0] == finding.rule), None)
            if place:
                used.add(place)
            else:
                findings.append(finding)
    for (path, line), (rule, reason) in excuses.items():
        if rule not in RULES:
            findings.append(Finding("excuse", path, line, f"there is no rule {rule}"))
        elif not reason:
            findings.append(Finding("excuse", path, line, "an excuse has a reason: NOCHECK(rule): reason"))
        elif (path, line) not in used:
            findings.append(Finding("excuse", path, line, f"excuses nothing from {rule}"))
    return sorted(findings, key=lambda finding: (finding.path, finding.line, finding.rule))


def main(arguments):
    root = Path(arguments[0]) if arguments else Path(__file__).resolve().parents[2]
    tree = Tree.read(root)
    findings = check(tree)
    for finding in findings:
        print(f"{finding.path}:{finding.line}: {finding.text} [{finding.rule}]")
    print(f"{len(RULES)} house rules over {len(tree.files)} files: {len(findings)} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
