"""The data holds the policies that the agent's code asks for: these, at these places, and no others."""
import re
import unittest

from made import POLICIES, ROOT

SOURCE = ROOT / "src"
# How the code asks: a switch, a text or number of the log's policy, the name of the lowest level.
_ASKS = (re.compile(r"GetRegistrySetting\(\s*L\"(\w+)\""), re.compile(r"policy\.(?:Text|Number)\(\s*L\"(\w+)\""),
         re.compile(r"minLevelName\s*=\s*L\"(\w+)\""))
_ANY_ASK = re.compile(r"(GetRegistrySetting|policy\.(?:Text|Number))\(\s*([^,)]*)")
# Asks whose name is handed on: the declaration and the definition, and the level whose name the third pattern finds.
_HANDED_ON = {"const wchar_t* valueName", "minLevelName"}


def code():
    return "\n".join(path.read_text(encoding="utf-8") for path in sorted(SOURCE.rglob("*"))
                     if path.suffix in (".cpp", ".h"))


def names_asked(text):
    return {name for pattern in _ASKS for name in pattern.findall(text)}


class Source(unittest.TestCase):
    def test_code_asks_for_the_policies_of_the_data(self):
        self.assertEqual(names_asked(code()), {policy["value"] for policy in POLICIES["policies"]})

    def test_no_name_escapes_the_search(self):
        for function, name in _ANY_ASK.findall(code()):
            self.assertTrue(name.startswith('L"') or name in _HANDED_ON, f"{function}({name}")

    def test_every_suppress_text_of_the_code_is_a_policy(self):
        names = set(re.findall(r"L\"(Suppress\w+)\"", code()))
        self.assertEqual(names, {policy["value"] for policy in POLICIES["policies"] if policy["key"] == "messages"})

    def test_another_name_would_be_noticed(self):
        self.assertIn("SuppressNew", names_asked('CSettingsControl::GetRegistrySetting(L"SuppressNew")'))
        self.assertIn("NewSize", names_asked('policy.Number(L"NewSize", 1)'))

    def test_keys_stand_in_the_code(self):
        text = code()
        self.assertIn('L"' + POLICIES["keys"]["messages"].replace("\\", "\\\\") + '"', text)
        prefix, _, product = POLICIES["keys"]["log"].rpartition("\\")
        self.assertIn('L"' + prefix.replace("SOFTWARE", "Software").replace("\\", "\\\\") + '\\\\"', text)
        resources = (ROOT / "res" / "OrvikNotifications.rc").read_text(encoding="utf-8")
        self.assertRegex(resources, rf'"ProductName",\s*"{product}"')


if __name__ == "__main__":
    unittest.main()
