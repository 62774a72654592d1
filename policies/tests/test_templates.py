"""Data that does not hold together is refused, and what is made of it is what Windows is to write."""
import copy
import json
import tempfile
import unittest
from pathlib import Path

from made import ADML, ENGLISH, FILES, POLICIES, ROOT, TEMPLATE, make, policy, write
from templates import adml, data, guide, registry

MESSAGES = r"SOFTWARE\Policies\Orvik\Orvik Notifications"
LOG = r"SOFTWARE\Policies\Orvik\OrvikNotifications Application"


class Data(unittest.TestCase):
    def refused(self, change, read=None):
        changed = copy.deepcopy(POLICIES if read is None else ENGLISH)
        change(changed)
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder, "en-US.json")
            path.write_text(json.dumps(changed), encoding="utf-8")
            with self.assertRaises(data.DataError) as caught:
                data.read_policies(path) if read is None else data.read_texts(path, POLICIES)
        return str(caught.exception)

    def refused_policy(self, index, **changes):
        return self.refused(lambda changed: changed["policies"][index].update(changes))

    def test_policy_that_stands_twice_is_refused(self):
        self.assertIn("stands twice", self.refused(lambda changed: changed["policies"].append(changed["policies"][0])))

    def test_policy_that_does_not_hold_together_is_refused(self):
        self.assertIn("no kind 'list'", self.refused_policy(0, kind="list"))
        self.assertIn("has the keys", self.refused_policy(0, minimum=1))
        self.assertIn("no key 'other'", self.refused_policy(0, key="other"))
        self.assertIn("no category 'Other'", self.refused_policy(0, category="Other"))
        self.assertIn("no type 'REG_BINARY'", self.refused_policy(0, type="REG_BINARY"))
        self.assertIn("no effect 'never'", self.refused_policy(0, effect="never"))
        self.assertIn("is no REG_SZ", self.refused_policy(0, on=1))
        self.assertIn("none of its values", self.refused_policy(0, default="on"))
        self.assertIn("a value stands twice", self.refused_policy(0, on="false"))
        self.assertIn("reads 63 characters", self.refused_policy(7, choices=["EVENT", "E" * 64]))
        self.assertIn("outside its limits", self.refused_policy(10, default=0))
        self.assertIn("does not fit", self.refused_policy(10, maximum=1 << 32))

    def test_revision_is_two_numbers(self):
        self.assertIn("revision", self.refused(lambda changed: changed.update(revision="1")))

    def test_texts_that_are_not_whole_are_refused(self):
        def texts(change):
            return self.refused(change, "texts")

        self.assertIn("missing ['QueuedWrites']", texts(lambda changed: changed["policies"].pop("QueuedWrites")))
        self.assertIn("unknown ['Extra']", texts(lambda changed: changed["choices"].update(Extra="x")))
        self.assertIn("missing ['label']", texts(lambda changed: changed["policies"]["MaxLogSize"].pop("label")))
        self.assertIn("is empty", texts(lambda changed: changed["policies"]["MaxLogSize"].update(explain=" ")))
        self.assertIn("place names", texts(lambda changed: changed.update(place="{key}")))
        self.assertIn("missing ['sample']", texts(lambda changed: changed.pop("sample")))

    def test_key_that_stands_twice_in_a_file_is_refused(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder, "x.json")
            path.write_text('{"a": 1, "a": 2}', encoding="utf-8")
            with self.assertRaisesRegex(data.DataError, "a: stands twice"):
                data.read_json(path)


class Templates(unittest.TestCase):
    def test_explanation_says_what_default_when_and_where(self):
        for one in POLICIES["policies"]:
            text = adml.explanation(POLICIES, one, ENGLISH)
            for part in ("If you enable this policy setting", "If you disable this policy setting or do not configure it",
                         "Without this setting: ", "Takes effect ", f"HKEY_LOCAL_MACHINE\\{POLICIES['keys'][one['key']]}",
                         f"value {one['value']}, {one['type']}"):
                self.assertIn(part, text, one["value"])

    def test_when_it_takes_effect_is_that_of_its_key(self):
        for one in POLICIES["policies"]:
            self.assertEqual(one["effect"], {"messages": "event", "log": "start"}[one["key"]], one["value"])

    def test_each_language_with_texts_gets_a_file(self):
        files = make.files(POLICIES, {"en-US": ENGLISH, "xx-XX": ENGLISH})
        self.assertEqual(files["xx-XX/OrvikNotifications.adml"], files[ADML])

    def test_made_twice_is_the_same(self):
        self.assertEqual(make.files(*make.read()), FILES)

    def test_files_have_windows_line_ends(self):
        for name in (ADML, "OrvikNotifications.admx"):
            self.assertEqual(FILES[name].count(b"\n"), FILES[name].count(b"\r\n"), name)

    def test_command_writes_all_files(self):
        with tempfile.TemporaryDirectory() as folder:
            self.assertEqual(make.main(["templates", folder]), 0)
            for name, content in FILES.items():
                self.assertEqual(Path(folder, name).read_bytes(), content)


class Registry(unittest.TestCase):
    def test_switch_writes_its_text(self):
        value = {"key": MESSAGES, "name": "SuppressAllLoggings"}
        self.assertEqual(registry.writes(TEMPLATE, "SuppressAllLoggings", "enabled"),
                         [{**value, "data": "true", "type": "REG_SZ"}])
        self.assertEqual(registry.writes(TEMPLATE, "SuppressAllLoggings", "disabled"),
                         [{**value, "data": "false", "type": "REG_SZ"}])

    def test_choice_writes_the_item_and_disabled_removes_it(self):
        value = {"key": LOG, "name": "LoggingType"}
        self.assertEqual(registry.writes(TEMPLATE, "LoggingType", "enabled", "EVENT;FILE"),
                         [{**value, "data": "EVENT;FILE", "type": "REG_SZ"}])
        self.assertEqual(registry.writes(TEMPLATE, "LoggingType", "disabled"), [{**value, "data": None}])

    def test_number_writes_what_its_limits_let_in(self):
        self.assertEqual(registry.writes(TEMPLATE, "MaxLogSize", "enabled", 4194303),
                         [{"key": LOG, "name": "MaxLogSize", "data": 4194303, "type": "REG_DWORD"}])
        for number in (0, 4194304):
            with self.assertRaises(ValueError):
                registry.writes(TEMPLATE, "MaxLogSize", "enabled", number)

    def test_what_the_template_lacks_is_refused(self):
        with self.assertRaises(ValueError):
            registry.writes(TEMPLATE, "LoggingType", "enabled", "PAPER")
        with self.assertRaises(ValueError):
            registry.writes(TEMPLATE, "SuppressEverything", "enabled")

    def test_template_writes_all_that_the_data_says_and_nothing_else(self):
        for one in POLICIES["policies"]:
            for chosen in data.values_of(one):
                state = "disabled" if one["kind"] == "switch" and chosen == one["off"] else "enabled"
                self.assertEqual(
                    registry.writes(TEMPLATE, one["value"], state, chosen),
                    [{"key": POLICIES["keys"][one["key"]], "name": one["value"], "data": chosen, "type": one["type"]}])

    def test_sample_holds_every_value_as_without_policy(self):
        sample = FILES["OrvikNotifications.reg"].decode("utf-16")
        self.assertTrue(sample.startswith("Windows Registry Editor Version 5.00\r\n"))
        for key in (MESSAGES, LOG):
            self.assertEqual(sample.count(f"[HKEY_LOCAL_MACHINE\\{key}]\r\n"), 1)
        self.assertIn("; As soon as this key exists", sample)
        self.assertEqual(sample.count("=\"false\"\r\n"), 7)
        for line in ('"LoggingType"="EVENT"', '"MaxLogSize"=dword:00000800', '"QueuedWrites"=dword:00000000'):
            self.assertIn(line + "\r\n", sample)


class Guide(unittest.TestCase):
    TABLES = guide.tables(POLICIES, ENGLISH)

    def test_tables_name_every_value_with_its_data(self):
        for one in POLICIES["policies"]:
            row = next(line for line in self.TABLES.splitlines() if line.startswith(f"| `{one['value']}` |"))
            self.assertIn(f"| {one['type']} |", row)
            self.assertEqual(row.count("|"), 6, row)
        self.assertIn("1 to 4194303", self.TABLES)

    def test_block_is_replaced_and_the_rest_stays(self):
        text = f"before\n{guide.BEGIN}\nold\n{guide.END}\nafter\n"
        new = guide.replace(text, "new")
        self.assertEqual(new, f"before\n{guide.BEGIN}\nnew\n{guide.END}\nafter\n")
        self.assertEqual(guide.block(guide.replace(new, self.TABLES)), self.TABLES)

    def test_guide_without_its_marks_is_refused(self):
        for text in ("", guide.BEGIN, guide.END + guide.BEGIN, guide.BEGIN + guide.END + guide.END):
            with self.assertRaises(guide.GuideError):
                guide.block(text)

    def test_administrators_guide_holds_the_tables(self):
        path = ROOT / "docs" / "administrators.md"
        self.assertEqual(guide.block(path.read_text(encoding="utf-8")), self.TABLES, "run policies/make.py guide")

    def test_other_documents_name_the_same_values(self):
        text = (ROOT / "docs" / "log.md").read_text(encoding="utf-8")
        for one in POLICIES["policies"]:
            if one["key"] == "log":
                self.assertIn(f"`{one['value']}`", text)

    def test_command_writes_the_guide(self):
        with tempfile.TemporaryDirectory() as folder:
            write(folder, {"guide.md": f"{guide.BEGIN}\n{guide.END}\n".encode()})
            path = Path(folder, "guide.md")
            self.assertEqual(make.main(["guide", str(path)]), 0)
            self.assertEqual(guide.block(path.read_text(encoding="utf-8")), self.TABLES)


class Texts(unittest.TestCase):
    def test_limit_in_the_texts_is_that_of_the_data(self):
        self.assertIn(f"{policy('MaxLogSize')['default']} KB", ENGLISH["policies"]["MaxLogSize"]["explain"])
        self.assertEqual(ENGLISH["policies"]["MaxLogSize"]["off"], str(policy("MaxLogSize")["default"]))


if __name__ == "__main__":
    unittest.main()
