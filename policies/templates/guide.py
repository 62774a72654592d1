"""The tables of the administrators' guide, between two marks."""
from . import adml

BEGIN = "<!-- policies: begin -->"
END = "<!-- policies: end -->"


# What the last column says, by key.
_MEANINGS = {"messages": "What \"true\" suppresses", "log": "Meaning"}


class GuideError(Exception):
    """The guide has no place for the tables."""


def _row(*cells):
    return "| " + " | ".join(cells) + " |"


def _shown(policy, texts):
    """Data as code: `true` or `false`."""
    if policy["kind"] == "number":
        return adml.shown_data(policy, texts)
    return ", ".join(f"`{value}`" for value in (policy.get("choices") or [policy["on"], policy["off"]]))


def tables(data, texts):
    """The text between the marks."""
    lines = ["<!-- Made of policies/policies.json: change it there, then run policies/make.py guide. -->"]
    for name, key in data["keys"].items():
        policies = [policy for policy in data["policies"] if policy["key"] == name]
        lines += ["", f"`HKEY_LOCAL_MACHINE\\{key}`", "",
                  texts["effect"][policies[0]["effect"]] + " " + texts["firstKey" if name == "messages" else "subKey"],
                  "", _row("Value", "Type", "Data", "Without it", _MEANINGS[name]), "|---|---|---|---|---|"]
        for policy in policies:
            own = texts["policies"][policy["value"]]
            lines.append(_row(f"`{policy['value']}`", policy["type"], _shown(policy, texts), own["off"], own["short"]))
    return "\n".join(lines)


def block(guide):
    """What stands between the marks of a guide. Raises GuideError."""
    if guide.count(BEGIN) != 1 or guide.count(END) != 1 or guide.index(BEGIN) > guide.index(END):
        raise GuideError(f"the guide has not once {BEGIN} and, behind it, {END}")
    return guide[guide.index(BEGIN) + len(BEGIN):guide.index(END)].strip("\n")


def replace(guide, text):
    """The guide with that text between its marks. Raises GuideError."""
    block(guide)
    head = guide[:guide.index(BEGIN) + len(BEGIN)]
    return f"{head}\n{text}\n{guide[guide.index(END):]}"
