"""The end-to-end scenarios set what the templates write, and each policy in each of its states is set by one."""
import json
import re
import unittest

from made import POLICIES, ROOT, TEMPLATE
from templates import registry

SCENARIOS = sorted((ROOT / "simulator" / "scenarios").glob("policy-template-*.json"))


def filled(node, values):
    """A part of a scenario with the values of a case."""
    if isinstance(node, list):
        return [filled(child, values) for child in node]
    if isinstance(node, dict):
        return {filled(key, values): filled(child, values) for key, child in node.items()}
    if not isinstance(node, str):
        return node
    if match := re.fullmatch(r"\$\{([^}]*)\}", node):
        return values[match[1]]
    return re.sub(r"\$\{([^}]*)\}", lambda found: str(values[found[1]]), node)


def registry_values(path):
    """What a scenario does to the registry, in all its cases."""
    text = "\n".join(line for line in path.read_text(encoding="utf-8").splitlines() if not line.lstrip().startswith("//"))
    scenario = json.loads(text)
    found = []
    for case in scenario.pop("cases", [{"with": {}}]):
        one = filled(scenario, case.get("with", {}))
        for part in (one, *one["steps"]):
            found += part.get("registry", [])
    return found


def states(policy):
    """(state, what is chosen) of a policy; of a number any that its limits let in."""
    enabled = policy.get("choices") or ([None] if policy["kind"] == "switch" else
                                        [policy["minimum"], policy["maximum"]])
    return [*(("enabled", chosen) for chosen in enabled), ("disabled", None)]


def templates_write():
    """name of the policy and its state -> the values that Windows writes."""
    return {(policy["value"], *state): registry.writes(TEMPLATE, policy["value"], *state)
            for policy in POLICIES["policies"] for state in states(policy)}


class Scenarios(unittest.TestCase):
    def setUp(self):
        self.assertTrue(SCENARIOS)
        self.set = [value for path in SCENARIOS for value in registry_values(path)]

    def test_every_state_of_every_policy_is_set(self):
        for state, values in templates_write().items():
            for value in values:
                self.assertIn(value, self.set, state)

    def test_every_switch_is_also_taken_away(self):
        for policy in POLICIES["policies"]:
            if policy["kind"] == "switch":
                value = {"key": POLICIES["keys"][policy["key"]], "name": policy["value"], "data": None}
                self.assertIn(value, self.set)

    def test_nothing_is_set_that_the_templates_do_not_write(self):
        known = [value for values in templates_write().values() for value in values]
        known += [{"key": value["key"], "name": value["name"], "data": None} for value in known]
        for value in self.set:
            self.assertIn(value, known)

    def test_no_scenario_helps_itself_to_policies_by_another_way(self):
        for path in SCENARIOS:
            text = path.read_text(encoding="utf-8")
            self.assertNotIn('"policies"', text, path.name)
            for setting in re.findall(r'"logging": (.*),', text):
                self.assertEqual(setting, "{}", path.name)


if __name__ == "__main__":
    unittest.main()
