"""The rules of Windows' schema for policy templates, version 1.0, as far as elements, attributes and simple types go.

Written anew from its published description; one table row is one complex type of the schema.
"""
from dataclasses import dataclass, field

from . import simple
from .finding import Finding, label, local

_MANY = 1 << 30
NAMESPACE = "http://www.microsoft.com/GroupPolicy/PolicyDefinitions"


@dataclass(frozen=True)
class Type:
    """Attributes: name -> simple type, with "!" in front where it is required. Children: rows of (element, type, least,
    most), in order; in any order when is_choice. Text: the simple type of the content; without it only children may be
    there. is_open: what is inside is the author's own."""
    attributes: dict = field(default_factory=dict)
    children: tuple = ()
    text: str = ""
    is_choice: bool = False
    is_open: bool = False


def _one(name, kind):
    return name, kind, 1, 1


def _maybe(name, kind):
    return name, kind, 0, 1


def _any(name, kind, least=0):
    return name, kind, least, _MANY


_DESCRIPTION = (_any("annotation", "Annotation"), _maybe("parentCategory", "Reference"), _any("seeAlso", "Text"),
                _maybe("keywords", "Text"))
_DESCRIBED = {"name": "!name", "displayName": "!text reference", "explainText": "text reference"}
_ELEMENT = {"id": "!string", "clientExtension": "guid", "key": "string", "valueName": "string"}
_NUMBER = {**_ELEMENT, "required": "boolean", "storeAsText": "boolean", "soft": "boolean"}
_FILE = {"revision": "!version", "schemaVersion": "!version"}
_SPIN = {"refId": "!string", "defaultValue": "number", "spin": "boolean", "spinStep": "number"}
_CONDITION = (_any("range", "Range"), _any("reference", "Reference"))
_VERSION = {"name": "!name", "displayName": "!text reference", "versionIndex": "!number"}

TYPES = {
    "Text": Type(text="string"),
    "ShortText": Type(text="string of 255"),
    "Empty": Type(),
    "Annotation": Type({"application": "!string"}, is_open=True),
    "Reference": Type({"ref": "!reference"}),
    "PolicyDefinitions": Type(_FILE, (
        _one("policyNamespaces", "Namespaces"), _any("supersededAdm", "FileReference"), _any("annotation", "Annotation"),
        _one("resources", "Resources"), _maybe("supportedOn", "SupportedOn"), _maybe("categories", "Categories"),
        _maybe("policies", "Policies"))),
    "Namespaces": Type({}, (_one("target", "Namespace"), _any("using", "Namespace"))),
    "Namespace": Type({"prefix": "!name", "namespace": "!URI"}),
    "FileReference": Type({"fileName": "!string"}),
    "Resources": Type({"minRequiredRevision": "!version", "fallbackCulture": "language"}),
    "Categories": Type({}, (_any("category", "Category", 1),)),
    "Category": Type(_DESCRIBED, _DESCRIPTION),
    "Policies": Type({}, (_any("policy", "Policy", 1),)),
    "Policy": Type(
        {**_DESCRIBED, "class": "!class", "presentation": "presentation reference", "key": "!string",
         "valueName": "string"},
        (*_DESCRIPTION, _one("supportedOn", "Reference"), _maybe("enabledValue", "Value"),
         _maybe("disabledValue", "Value"), _maybe("enabledList", "ValueList"), _maybe("disabledList", "ValueList"),
         _maybe("elements", "Elements"))),
    "Value": Type({}, (_maybe("delete", "Empty"), _maybe("decimal", "Decimal"), _maybe("longDecimal", "LongDecimal"),
                       _maybe("string", "ShortText")), is_choice=True),
    "Decimal": Type({"value": "!number"}),
    "LongDecimal": Type({"value": "!long number"}),
    "ValueList": Type({"defaultKey": "string"}, (_any("item", "ValueItem", 1),)),
    "ValueItem": Type({"key": "string", "valueName": "!string"}, (_one("value", "Value"),)),
    "Elements": Type({}, (
        _any("boolean", "BooleanElement"), _any("decimal", "DecimalElement"), _any("text", "TextElement"),
        _any("enum", "EnumElement"), _any("list", "ListElement"), _any("longDecimal", "LongDecimalElement"),
        _any("multiText", "MultiTextElement")), is_choice=True),
    "BooleanElement": Type(_ELEMENT, (_maybe("trueValue", "Value"), _maybe("falseValue", "Value"),
                                      _maybe("trueList", "ValueList"), _maybe("falseList", "ValueList"))),
    "DecimalElement": Type({**_NUMBER, "minValue": "number", "maxValue": "number"}),
    "LongDecimalElement": Type({**_NUMBER, "minValue": "long number", "maxValue": "long number"}),
    "TextElement": Type({**_ELEMENT, "required": "boolean", "maxLength": "number", "expandable": "boolean",
                         "soft": "boolean"}),
    "MultiTextElement": Type({**_ELEMENT, "required": "boolean", "maxLength": "number", "maxStrings": "number",
                              "soft": "boolean"}),
    "EnumElement": Type({**_ELEMENT, "required": "boolean"}, (_any("item", "EnumItem"),)),
    "EnumItem": Type({"displayName": "!text reference"}, (_one("value", "Value"), _maybe("valueList", "ValueList"))),
    "ListElement": Type({"id": "!string", "clientExtension": "guid", "key": "string", "valuePrefix": "string",
                         "additive": "boolean", "expandable": "boolean", "explicitValue": "boolean"}),
    "SupportedOn": Type({}, (_maybe("products", "Products"), _maybe("definitions", "Definitions"))),
    "Products": Type({}, (_any("product", "Product", 1),)),
    "Product": Type({"name": "!name", "displayName": "!text reference"}, (_any("majorVersion", "MajorVersion"),)),
    "MajorVersion": Type(_VERSION, (_any("minorVersion", "MinorVersion"),)),
    "MinorVersion": Type(_VERSION),
    "Definitions": Type({}, (_any("definition", "Definition", 1),)),
    "Definition": Type({"name": "!name", "displayName": "!text reference"},
                       (_maybe("or", "Condition"), _maybe("and", "Condition"))),
    "Condition": Type({}, _CONDITION, is_choice=True),
    "Range": Type({"ref": "!reference", "minVersionIndex": "number", "maxVersionIndex": "number"}),
    "PolicyDefinitionResources": Type(_FILE, (
        _one("displayName", "Text"), _one("description", "Text"), _any("annotation", "Annotation"),
        _one("resources", "Localization"))),
    "Localization": Type({}, (_maybe("stringTable", "Strings"), _maybe("presentationTable", "Presentations"))),
    "Strings": Type({}, (_any("string", "String", 1),)),
    "String": Type({"id": "!name"}, text="string"),
    "Presentations": Type({}, (_any("presentation", "Presentation", 1),)),
    "Presentation": Type({"id": "!name"}, (
        _any("text", "Text"), _any("decimalTextBox", "DecimalTextBox"), _any("textBox", "TextBox"),
        _any("checkBox", "CheckBox"), _any("comboBox", "ComboBox"), _any("dropdownList", "DropdownList"),
        _any("listBox", "ListBox"), _any("longDecimalTextBox", "DecimalTextBox"),
        _any("multiTextBox", "MultiTextBox")), is_choice=True),
    "DecimalTextBox": Type(_SPIN, text="string"),
    "TextBox": Type({"refId": "!string"}, (_one("label", "Text"), _maybe("defaultValue", "Text"))),
    "CheckBox": Type({"refId": "!string", "defaultChecked": "boolean"}, text="string"),
    "ComboBox": Type({"refId": "!string", "noSort": "boolean"},
                     (_one("label", "Text"), _maybe("default", "Text"), _any("suggestion", "Text"))),
    "DropdownList": Type({"refId": "!string", "noSort": "boolean", "defaultItem": "number"}, text="string"),
    "ListBox": Type({"refId": "!string"}, text="string"),
    "MultiTextBox": Type({"refId": "!string", "showAsDialog": "boolean", "defaultHeight": "number"}),
}
ROOTS = {"policyDefinitions": "PolicyDefinitions", "policyDefinitionResources": "PolicyDefinitionResources"}
# Choices of which there must be something; of a value there is one.
_FILLED = {"Value": 1, "Elements": _MANY, "Condition": _MANY}
_CLASSES = ("Machine", "User", "Both")


def _attributes(element, kind):
    for name, text in element.attrib.items():
        wanted = kind.attributes.get(name, "").lstrip("!")
        if not wanted:
            yield f"has no attribute {name}"
        elif not (text in _CLASSES if wanted == "class" else simple.fits(wanted, text)):
            yield f"{name}=\"{text}\" is no {wanted}"
    for name, wanted in kind.attributes.items():
        if wanted.startswith("!") and name not in element.attrib:
            yield f"the attribute {name} is missing"


def _ordered(names, kind):
    position = 0
    for name, _, least, most in kind.children:
        count = 0
        while position < len(names) and names[position] == name and count < most:
            position, count = position + 1, count + 1
        if count < least:
            yield f"the element {name} is missing at its place"
    if position < len(names):
        yield f"the element {names[position]} does not belong here"


def _chosen(names, kind, most):
    known = {row[0] for row in kind.children}
    for name in names:
        if name not in known:
            yield f"the element {name} does not belong here"
    if not names and most:
        yield "is empty"
    if most and len(names) > most:
        yield f"holds {len(names)} elements, {most} may be there"


def _content(element, type_name, kind):
    if not kind.text:
        texts = [element.text, *(child.tail for child in element)]
        if any(text and text.strip() for text in texts):
            yield "holds text where only elements may be"
    elif not len(element) and not simple.fits(kind.text, element.text or ""):
        yield f"its text is no {kind.text}"
    names = [local(child) for child in element]
    yield from _chosen(names, kind, _FILLED.get(type_name, 0)) if kind.is_choice else _ordered(names, kind)


def _check(file, element, type_name, place):
    kind = TYPES[type_name]
    if not element.tag.startswith(f"{{{NAMESPACE}}}"):
        yield Finding(file, place, "is not in the namespace of policy templates")
    if kind.is_open:
        return
    for text in (*_attributes(element, kind), *_content(element, type_name, kind)):
        yield Finding(file, place, text)
    kinds = {row[0]: row[1] for row in kind.children}
    for child in element:
        if local(child) in kinds:
            yield from _check(file, child, kinds[local(child)], f"{place}/{label(child)}")


def check(file, root, wanted):
    """The findings for one file; wanted: the name of its first element."""
    if local(root) != wanted:
        yield Finding(file, label(root), f"the first element is not {wanted}")
        return
    yield from _check(file, root, ROOTS[wanted], wanted)
