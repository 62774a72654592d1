"""What the guides say of records, keys, commands and files is what the code has; their links lead somewhere."""
import json
import re
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "events"), str(Path(__file__).resolve().parent)]
import event_xpath  # noqa: E402
import source_code  # noqa: E402

PACKED = [Path(name).name for name in json.loads((ROOT / "packaging/contents.json").read_text(encoding="utf-8"))["documents"]]
DOCUMENTS = {path.name: path.read_text(encoding="utf-8") for path in sorted((ROOT / "docs").glob("*.md"))}
GUIDES = {name.removesuffix(".md"): DOCUMENTS[name] for name in PACKED}
CODE = source_code.Code(ROOT / "src")
COMMAND = r"(?:Platform|SmartAdapter|EmbeddedController|F10Setting)\.[A-Za-z.]+[A-Za-z]"


def rows(guide, heading):
    """Cells of the rows of each table with that cell in its head."""
    found, inside = [], False
    for line in guide.splitlines():
        cells = [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]] if line.startswith("|") else []
        if heading in cells:
            inside, column = True, cells.index(heading)
        elif not cells:
            inside = False
        elif inside and not set(line) <= set("|- "):
            found.append(cells[column])
    return found


def quoted(cells):
    return [text.replace(r"\|", "|") for cell in cells for text in re.findall(r"`([^`]+)`", cell)]


def is_written(text):
    """Whether a record can hold that piece: "function|message", a message, a function's name or a command's."""
    function, _, message = text.rpartition("|")
    if re.fullmatch(COMMAND, message):
        return message in CODE.texts()
    message = re.sub(r"0x\w*\.*", "", re.sub(COMMAND, "%s", message))
    message = re.sub(r"(?<=: )\d+$", "%d", message).strip(" .")
    # What a function returns is written by its trace.
    if message == "hr:":
        return "trace.Exit(" in CODE.bodies(function)
    return source_code.holds(CODE.texts(function), message) or (not function and bool(CODE.bodies(message)))


def slug(heading):
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


class Records(unittest.TestCase):
    def test_texts_of_the_log_are_written_by_the_code(self):
        texts = quoted(rows(GUIDES["administrators"], "The log says"))
        self.assertGreater(len(texts), 15)
        for text in texts + ["VR Log Data:", "Loggings are suppressed.", "ReportEvent failed, GatLastError() return: hr = "]:
            self.assertTrue(is_written(text), text)

    def test_texts_that_are_not_written_are_told_from_those_that_are(self):
        for text in ("Toast Notifier Shown", "DesktopToast::DisplayToast|hr: 0x8007007E", "DisplayToast|hr: 0x", "SmartAdapterData: 7"):
            self.assertTrue(is_written(text), text)
        # Of no function, of another one, half a word, of a comment, of two texts, of a function without result.
        for text in ("Toast Notifier Hidden", "DisplayToast|SmartAdapterData: 7", "oast Notifier Shown",
                     "The result is in the handler's own records", "Text: Title:", "ProcessSmartAdapterEvent|hr: 0x", "NoFunction"):
            self.assertFalse(is_written(text), text)

    def test_errors_of_the_guide_are_all_that_the_code_writes(self):
        written = {text.split("0x")[0] for text in re.findall(r'(?:\.Error\(|Level::Error, \w+,\s*)L"([^"]+)"', CODE.text)}
        self.assertGreater(len(written), 3)
        self.assertEqual({text.split("0x")[0] for text in quoted(rows(GUIDES["administrators"], "Message"))}, written)

    def test_queries_are_taken_by_windows(self):
        queries = [query for guide in GUIDES.values() for query in re.findall(r"\*\[System\[[^\n`\"]*\]\]", guide)]
        self.assertGreater(len(queries), 2)
        for query in queries:
            event_xpath.parse(query)


class Settings(unittest.TestCase):
    def test_values_of_the_guide_are_those_of_the_code(self):
        # The block of the policies has tests of its own.
        text = re.sub(r"<!-- policies: begin -->.*<!-- policies: end -->", "", "\n".join(GUIDES.values()), flags=re.S)
        in_code = set(re.findall(r'L"(Suppress\w+)"', CODE.text))
        self.assertEqual(set(re.findall(r"Suppress\w+", text)), in_code)

    def test_keys_are_those_of_the_code(self):
        keys = re.findall(r"^\d\. `HKLM\\([^`]+)`$", GUIDES["administrators"], re.M)
        self.assertEqual(keys, re.findall(r'\{L"(SOFTWARE\\[^"]+)", (?:nullptr|L)', CODE.text.replace("\\\\", "\\")))
        self.assertIn(r'L"Software\\Policies\\Orvik\\" + productName', CODE.text)
        self.assertIn('VALUE "ProductName", "OrvikNotifications Application"',
                      (ROOT / "res/OrvikNotifications.rc").read_text(encoding="utf-8"))

    def test_commands_to_the_platform_are_those_of_the_code(self):
        row = next(line for line in GUIDES["privacy"].splitlines() if line.startswith("| platform library | commands"))
        self.assertEqual(set(re.findall(COMMAND, row)), {text for text in CODE.texts() if re.fullmatch(COMMAND, text)})

    def test_files_and_places_are_those_of_the_code(self):
        for name in ("Toaster Message.lnk", "Orvik.ico", "IgnoreLumbraDialog.txt", "orvikLog", "toastImageAndText.png",
                     r"C:\Program Files (x86)\Orvik\Orvik Notifications\orvikSmartAdapterHelp.exe"):
            self.assertIn(name, "\n".join(GUIDES.values()))
            self.assertTrue(any(name in text for text in CODE.texts()), name)


class Package(unittest.TestCase):
    SOURCE = (ROOT / "packaging/OrvikNotifications.wxs").read_text(encoding="utf-8")

    def test_features_are_those_of_the_package(self):
        features = set(re.findall(r'<Feature Id="(\w+)"', self.SOURCE))
        self.assertEqual({cell.strip("`") for cell in rows(GUIDES["administrators"], "Feature")}, features)
        for names in re.findall(r"(?:ADDLOCAL|REMOVE)=([\w,]+)", "\n".join(GUIDES.values())):
            self.assertLessEqual(set(names.split(",")), features)

    def test_upgrade_code_is_that_of_the_package(self):
        code = re.search(r'UpgradeCode="([^"]+)"', self.SOURCE)[1]
        self.assertEqual(re.findall(r"\{[0-9A-F-]{36}\}", "\n".join(GUIDES.values())), [f"{{{code}}}"])

    def test_settings_are_removed_and_collected_from_each_key(self):
        keys = set(re.findall(r"^\d\. `(HKLM\\[^`]+)`$", GUIDES["administrators"], re.M))
        self.assertLessEqual(keys, set(re.findall(r'^reg delete "([^"]+)" /f$', GUIDES["administrators"], re.M)))
        self.assertEqual({key.rpartition("\\")[0] for key in keys},
                         set(re.findall(r'^ *reg query "([^"]+)" /s$', GUIDES["support"], re.M)))


class Links(unittest.TestCase):
    def test_links_lead_to_a_file_and_a_heading(self):
        for name, document in DOCUMENTS.items():
            for file, anchor in re.findall(r"\]\(([^)#\s]*)(?:#([^)\s]+))?\)", document):
                target = ROOT / "docs" / (file or name)
                self.assertTrue(target.is_file(), f"{name}: {file}")
                if anchor:
                    headings = re.findall(r"^#+ (.+)$", target.read_text(encoding="utf-8"), re.M)
                    self.assertIn(anchor, [slug(heading) for heading in headings], name)

    def test_links_of_packed_documents_stay_within_the_package(self):
        for name, guide in GUIDES.items():
            for file in re.findall(r"\]\(([^)#\s]+)", guide):
                self.assertIn(file, PACKED, f"{name}.md")


if __name__ == "__main__":
    unittest.main()
