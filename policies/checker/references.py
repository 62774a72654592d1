"""What the schema cannot say: names that stand twice, references to nothing, controls that do not fit their data."""
import re

from .finding import Finding, label, local
from .schema import NAMESPACE

_NS = {"p": NAMESPACE}
_CONTROLS = {"boolean": ("checkBox",), "decimal": ("decimalTextBox",), "text": ("textBox", "comboBox"),
             "enum": ("dropdownList",), "list": ("listBox",), "longDecimal": ("longDecimalTextBox",),
             "multiText": ("multiTextBox",)}
_POLICY_KEY = re.compile(r"software\\policies\\[^\\]+\\?", re.IGNORECASE)


def _number(text):
    return tuple(int(part) for part in re.findall(r"[0-9]+", text or ""))


def _duplicates(names):
    """Windows compares names without case."""
    lower = [name.lower() for name in names if name]
    return sorted({name for name in names if name and lower.count(name.lower()) > 1})


def key_faults(key):
    """What is wrong with a registry key of a template."""
    if re.match(r"(hk|hkey_)", key, re.IGNORECASE):
        yield f"the key {key} names a hive"
    if not key or any(not part for part in key.split("\\")):
        yield f"the key \"{key}\" has an empty part"
    elif not _POLICY_KEY.match(key + "\\"):
        yield f"the key {key} is not below Software\\Policies: its values stay when the policy goes"


class References:
    """One template with its texts by language."""

    def __init__(self, file, template, languages):
        self._file = file
        self._template = template
        self._languages = languages
        self._categories = template.findall("p:categories/p:category", _NS)
        self._policies = template.findall("p:policies/p:policy", _NS)
        self._targets = [element.get("prefix") for element in template.findall("p:policyNamespaces/p:target", _NS)]
        self._using = [element.get("prefix") for element in template.findall("p:policyNamespaces/p:using", _NS)]

    def check(self):
        """The findings."""
        yield from self._names()
        yield from self._categories_and_supports()
        for policy in self._policies:
            for text in (*self._policy(policy), *self._values(policy)):
                yield Finding(self._file, label(policy), text)
        yield from self._places()
        for file, root in self._languages:
            yield from self._language(file, root)

    def _names(self):
        supports = self._template.findall("p:supportedOn/p:definitions/p:definition", _NS)
        products = self._template.findall("p:supportedOn/p:products/p:product", _NS)
        for what, elements in (("categories", self._categories), ("policies", self._policies),
                               ("supportedOn", supports + products)):
            for name in _duplicates([element.get("name") for element in elements]):
                yield Finding(self._file, what, f"{name} stands twice")
        for prefix in _duplicates([*self._targets, *self._using]):
            yield Finding(self._file, "policyNamespaces", f"the prefix {prefix} stands twice")

    def _is_known(self, reference, elements):
        prefix, colon, name = (reference or "").rpartition(":")
        if colon and prefix in self._using:
            return True
        if colon and prefix not in self._targets:
            return False
        return name.lower() in {(element.get("name") or "").lower() for element in elements}

    def _categories_and_supports(self):
        parents = {}
        for category in self._categories:
            parent = category.find("p:parentCategory", _NS)
            if parent is None:
                continue
            parents[category.get("name")] = parent.get("ref")
            if not self._is_known(parent.get("ref"), self._categories):
                yield Finding(self._file, label(category), f"there is no category {parent.get('ref')}")
        for name in parents:
            seen, place = set(), name
            while place in parents and place not in seen:
                seen.add(place)
                place = parents[place]
            if place in seen:
                yield Finding(self._file, f"category[{name}]", "is its own ancestor")

    def _policy(self, policy):
        parent = policy.find("p:parentCategory", _NS)
        if parent is None:
            yield "the element parentCategory is missing: the policy stands nowhere"
        elif not self._is_known(parent.get("ref"), self._categories):
            yield f"there is no category {parent.get('ref')}"
        support = policy.find("p:supportedOn", _NS)
        known = self._template.findall("p:supportedOn/*/*", _NS)
        if support is not None and not self._is_known(support.get("ref"), known):
            yield f"there is no supportedOn definition {support.get('ref')}"
        if not policy.get("explainText"):
            yield "the attribute explainText is missing"
        if policy.find("p:elements", _NS) is not None and not policy.get("presentation"):
            yield "the attribute presentation is missing: nobody can set its elements"
        for name in _duplicates([element.get("id") for element in policy.findall("p:elements/*", _NS)]):
            yield f"the element {name} stands twice"

    @staticmethod
    def _values(policy):
        states = [policy.find(f"p:{state}Value", _NS) is not None for state in ("enabled", "disabled")]
        if policy.get("valueName") and states != [True, True]:
            yield "a policy with a valueName has an enabledValue and a disabledValue"
        if not policy.get("valueName") and any(states):
            yield "enabledValue and disabledValue need a valueName"
        if not policy.get("valueName") and not policy.findall("p:elements/*", _NS):
            yield "it writes nothing"
        for element in policy.findall("p:elements/*", _NS):
            if local(element) != "list" and not element.get("valueName"):
                yield f"the element {element.get('id')} has no valueName"
            least, most = _number(element.get("minValue", "0")), _number(element.get("maxValue", "9999"))
            if local(element) in ("decimal", "longDecimal") and least > most:
                yield f"the element {element.get('id')} has a minValue above its maxValue"
            items = [tuple((value.tag, value.get("value"), value.text) for value in item.iter())[2:]
                     for item in element.findall("p:item", _NS)]
            if local(element) == "enum" and (len(items) < 2 or len(set(items)) < len(items)):
                yield f"the element {element.get('id')} has fewer than two different items, or one twice"

    def _places(self):
        seen = {}
        for policy in self._policies:
            for element in (policy, *policy.findall("p:elements/*", _NS)):
                key = element.get("key") or policy.get("key") or ""
                if element is policy or element.get("key"):
                    for text in key_faults(key):
                        yield Finding(self._file, label(policy), text)
                if not element.get("valueName"):
                    continue
                place = (key.lower(), element.get("valueName").lower(), policy.get("class"))
                if place in seen and seen[place] is not policy:
                    yield Finding(self._file, label(policy), f"{seen[place].get('name')} writes the same value")
                seen[place] = policy

    def _language(self, file, root):
        strings = {element.get("id"): element for element in root.findall("p:resources/p:stringTable/p:string", _NS)}
        tables = root.findall("p:resources/p:presentationTable/p:presentation", _NS)
        for name in _duplicates([element.get("id") for element in root.iter(f"{{{NAMESPACE}}}string")]):
            yield Finding(file, "stringTable", f"{name} stands twice")
        for name in _duplicates([element.get("id") for element in tables]):
            yield Finding(file, "presentationTable", f"{name} stands twice")
        for name, element in strings.items():
            if not (element.text or "").strip():
                yield Finding(file, label(element), "is empty")
        yield from self._uses(file, "string", set(strings))
        yield from self._uses(file, "presentation", {element.get("id") for element in tables})
        resources = self._template.find("p:resources", _NS)
        least = _number(resources.get("minRequiredRevision")) if resources is not None else ()
        if _number(root.get("revision")) < least:
            yield Finding(file, "revision", "is below the template's minRequiredRevision")
        for table in tables:
            for text in self._controls(table):
                yield Finding(file, label(table), text)

    def _uses(self, file, table, known):
        used = {name for element in self._template.iter() for text in element.attrib.values()
                for name in re.findall(rf"\$\({table}\.(\w+)\)", text)}
        for name in sorted(used - known):
            yield Finding(file, f"{table}Table", f"{name}, which the template refers to, is missing")
        for name in sorted(known - used):
            yield Finding(file, f"{table}Table", f"nothing refers to {name}")

    def _controls(self, table):
        reference = f"$(presentation.{table.get('id')})"
        elements = {element.get("id"): element for policy in self._policies
                    if policy.get("presentation") == reference for element in policy.findall("p:elements/*", _NS)}
        controls = [control for control in table if local(control) != "text"]
        for name in _duplicates([control.get("refId") for control in controls]):
            yield f"two controls are for {name}"
        for name in sorted(set(elements) - {control.get("refId") for control in controls}):
            yield f"no control is for the element {name}"
        for control in controls:
            element = elements.get(control.get("refId"))
            if element is None:
                yield f"there is no element {control.get('refId')}"
            elif local(control) not in _CONTROLS[local(element)]:
                yield f"a {local(control)} cannot show the {local(element)} {control.get('refId')}"
            else:
                yield from self._default(control, element)

    @staticmethod
    def _default(control, element):
        if local(control) == "dropdownList":
            items = element.findall("p:item", _NS)
            if control.get("defaultItem") and int(control.get("defaultItem")) >= len(items):
                yield f"the defaultItem of {control.get('refId')} is behind the last item"
        if local(control) == "decimalTextBox":
            least, most = (int(element.get(name, usual)) for name, usual in (("minValue", "0"), ("maxValue", "9999")))
            if not least <= int(control.get("defaultValue", "1")) <= most:
                yield f"the defaultValue of {control.get('refId')} is outside its limits"
