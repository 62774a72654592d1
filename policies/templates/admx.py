"""The policy template, the same for every language."""
from . import xmlfile

SUPPORTED = "SUPPORTED_OrvikNotifications"


def identifier(choice):
    """The name of a choice's text: EVENT;FILE is Choice_EVENT_FILE."""
    return "Choice_" + choice.replace(";", "_")


def _reference(table, name):
    return f"$({table}.{name})"


def _add_value(parent, value):
    if isinstance(value, int):
        xmlfile.add(parent, "decimal", value=value)
    else:
        xmlfile.add(parent, "string", value)


def _add_elements(parent, policy):
    name = policy["value"]
    elements = xmlfile.add(parent, "elements")
    if policy["kind"] == "number":
        xmlfile.add(elements, "decimal", id=name, valueName=name, required="true", minValue=policy["minimum"],
                    maxValue=policy["maximum"])
        return
    choices = xmlfile.add(elements, "enum", id=name, valueName=name, required="true")
    for choice in policy["choices"]:
        item = xmlfile.add(choices, "item", displayName=_reference("string", identifier(choice)))
        _add_value(xmlfile.add(item, "value"), choice)


def _add_policy(parent, data, policy):
    name = policy["value"]
    attributes = {"name": name, "class": "Machine", "displayName": _reference("string", name),
                  "explainText": _reference("string", name + "_Explain"), "key": data["keys"][policy["key"]]}
    if policy["kind"] == "switch":
        attributes["valueName"] = name
    else:
        attributes["presentation"] = _reference("presentation", name)
    element = xmlfile.add(parent, "policy", **attributes)
    xmlfile.add(element, "parentCategory", ref=policy["category"])
    xmlfile.add(element, "supportedOn", ref=SUPPORTED)
    if policy["kind"] != "switch":
        _add_elements(element, policy)
        return
    _add_value(xmlfile.add(element, "enabledValue"), policy["on"])
    _add_value(xmlfile.add(element, "disabledValue"), policy["off"])


def make(data):
    """The file's bytes. It uses no other namespace: Intune refuses one whose file was not imported before."""
    root = xmlfile.root("policyDefinitions", data["revision"])
    namespaces = xmlfile.add(root, "policyNamespaces")
    xmlfile.add(namespaces, "target", prefix=data["prefix"], namespace=data["namespace"])
    xmlfile.add(root, "resources", minRequiredRevision=data["revision"])
    definitions = xmlfile.add(xmlfile.add(root, "supportedOn"), "definitions")
    xmlfile.add(definitions, "definition", name=SUPPORTED, displayName=_reference("string", SUPPORTED))
    categories = xmlfile.add(root, "categories")
    for name in [data["root"], *data["categories"]]:
        category = xmlfile.add(categories, "category", name=name, displayName=_reference("string", "Category_" + name))
        if name != data["root"]:
            xmlfile.add(category, "parentCategory", ref=data["root"])
    policies = xmlfile.add(root, "policies")
    for policy in data["policies"]:
        _add_policy(policies, data, policy)
    return xmlfile.to_bytes(root)
