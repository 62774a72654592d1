"""XML files as Windows writes them: UTF-8, CRLF, one element a line."""
import xml.etree.ElementTree as ET

NAMESPACE = "http://www.microsoft.com/GroupPolicy/PolicyDefinitions"


def add(parent, tag, text=None, **attributes):
    """A new element below parent."""
    element = ET.SubElement(parent, tag, {name: str(value) for name, value in attributes.items()})
    element.text = text
    return element


def root(tag, revision):
    """The first element of a template or of its texts."""
    return ET.Element(tag, {"xmlns": NAMESPACE, "revision": revision, "schemaVersion": "1.0"})


def to_bytes(element):
    """The whole file."""
    ET.indent(element, "    ")
    text = '<?xml version="1.0" encoding="utf-8"?>\n' + ET.tostring(element, encoding="unicode") + "\n"
    return text.replace("\n", "\r\n").encode("utf-8")
