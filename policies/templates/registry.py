"""Registry data: a sample file, and what Windows writes when an administrator sets a policy of a template."""
import xml.etree.ElementTree as ET

from . import adml
from .xmlfile import NAMESPACE

_NS = {"p": NAMESPACE}


def _quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def _line(name, value):
    return f"{_quoted(name)}=" + (f"dword:{value:08x}" if isinstance(value, int) else _quoted(value))


def make_sample(data, texts):
    """A .reg file with every value as it is without policy, to be edited before it is imported."""
    lines = ["Windows Registry Editor Version 5.00", "", f"; {texts['sample']}"]
    for name, key in data["keys"].items():
        lines += ["", f"; {texts['firstKey' if name == 'messages' else 'subKey']}", f"[HKEY_LOCAL_MACHINE\\{key}]"]
        for policy in data["policies"]:
            if policy["key"] == name:
                own = texts["policies"][policy["value"]]
                lines += ["", f"; {own['name']}: {adml.shown_data(policy, texts)}",
                          f"; {texts['effect'][policy['effect']]}", _line(policy["value"], policy["default"])]
    return ("\r\n".join(lines) + "\r\n").encode("utf-16")


def _data(value):
    """("REG_SZ", text) or ("REG_DWORD", number) of an element that holds a value."""
    child = value[0]
    if child.tag == f"{{{NAMESPACE}}}decimal":
        return "REG_DWORD", int(child.get("value"))
    if child.tag == f"{{{NAMESPACE}}}string":
        return "REG_SZ", child.text or ""
    raise ValueError(f"{child.tag} is not used here")


def _write_of_element(element, chosen):
    if element.tag == f"{{{NAMESPACE}}}decimal":
        if not int(element.get("minValue", "0")) <= chosen <= int(element.get("maxValue", "9999")):
            raise ValueError(f"{chosen} is outside the limits of {element.get('id')}")
        return "REG_DWORD", chosen
    for item in element.findall("p:item/p:value", _NS):
        if _data(item)[1] == chosen:
            return _data(item)
    raise ValueError(f"{element.get('id')} has no item {chosen!r}")


def writes(template, name, state, chosen=None):
    """What Windows writes for a policy of a template (bytes) in the state "enabled" or "disabled".

    A list of {"key", "name", "data", "type"}; data None: the value is removed. chosen: the item or the number that an
    administrator gives. Raises ValueError for what the template does not let him give.
    """
    policy = ET.fromstring(template).find(f"p:policies/p:policy[@name='{name}']", _NS)
    if policy is None:
        raise ValueError(f"the template has no policy {name}")
    found = []

    def write(element, kind, data):
        value = {"key": element.get("key", policy.get("key")), "name": element.get("valueName"), "data": data}
        found.append(value if data is None else {**value, "type": kind})

    if policy.get("valueName"):
        write(policy, *_data(policy.find(f"p:{state}Value", _NS)))
    for element in policy.findall("p:elements/*", _NS):
        write(element, *(_write_of_element(element, chosen) if state == "enabled" else (None, None)))
    return found
