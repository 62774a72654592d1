"""The template's texts in one language."""
from . import admx, xmlfile


def _shown(value, texts):
    return str(value) if isinstance(value, int) else texts["quote"].format(text=value)


def shown_data(policy, texts):
    """What may stand in the registry, for people: "true" or "false"."""
    if policy["kind"] == "number":
        return texts["range"].format(minimum=policy["minimum"], maximum=policy["maximum"])
    if policy["kind"] == "switch":
        values = [policy["on"], policy["off"]]
    else:
        values = policy["choices"]
    shown = [_shown(value, texts) for value in values]
    return texts["or"].join((texts["list"].join(shown[:-1]), shown[-1]))


def explanation(data, policy, texts):
    """What the policy does, what holds without it, when it takes effect, where the value is."""
    own = texts["policies"][policy["value"]]
    place = texts["place"].format(key=data["keys"][policy["key"]], value=policy["value"], type=policy["type"],
                                  data=shown_data(policy, texts))
    others = texts["firstKey" if policy["key"] == "messages" else "subKey"]
    return "\n\n".join((own["explain"], texts["default"].format(default=own["off"]), texts["effect"][policy["effect"]],
                        place + texts["sentence"] + others))


def _add_strings(table, data, texts):
    def add(name, text):
        xmlfile.add(table, "string", text, id=name)

    add(admx.SUPPORTED, texts["supported"])
    for name in [data["root"], *data["categories"]]:
        add("Category_" + name, texts["categories"][name])
    for policy in data["policies"]:
        add(policy["value"], texts["policies"][policy["value"]]["name"])
        add(policy["value"] + "_Explain", explanation(data, policy, texts))
    for choice in dict.fromkeys(choice for policy in data["policies"] for choice in policy.get("choices", ())):
        add(admx.identifier(choice), texts["choices"][choice])


def _add_presentation(table, policy, texts):
    name = policy["value"]
    presentation = xmlfile.add(table, "presentation", id=name)
    label = texts["policies"][name]["label"]
    if policy["kind"] == "number":
        xmlfile.add(presentation, "decimalTextBox", label, refId=name, defaultValue=policy["default"], spinStep=1024)
    else:
        # In the order of the template: levels from low to high.
        xmlfile.add(presentation, "dropdownList", label, refId=name, noSort="true",
                    defaultItem=policy["choices"].index(policy["default"]))


def make(data, texts):
    """The file's bytes."""
    root = xmlfile.root("policyDefinitionResources", data["revision"])
    xmlfile.add(root, "displayName", texts["displayName"])
    xmlfile.add(root, "description", texts["description"])
    resources = xmlfile.add(root, "resources")
    _add_strings(xmlfile.add(resources, "stringTable"), data, texts)
    presentations = xmlfile.add(resources, "presentationTable")
    for policy in data["policies"]:
        if policy["kind"] != "switch":
            _add_presentation(presentations, policy, texts)
    return xmlfile.to_bytes(root)
