"""What the guides say of records, keys, commands and files is what the code has; their links lead somewhere."""
import re
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "events"))
import event_xpath  # noqa: E402

GUIDES = {name: (ROOT / "docs" / f"{name}.md").read_text(encoding="utf-8") for name in ("administrators", "privacy", "support")}
CODE = "\n".join(path.read_text(encoding="utf-8") for path in sorted((ROOT / "src").rglob("*"))
                 if path.suffix in (".cpp", ".h")).replace("\\\\", "\\")
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


def as_written(text):
    """The pieces of a record's text as the code writes them."""
    text = re.sub(r"0x\w*\.*", "", re.sub(COMMAND, "%s", text))
    text = re.sub(r"(?<=: )\d+$", "%d", text)
    return [piece.strip(" .()") for piece in text.split("|") if piece.strip(" .()")]


def slug(heading):
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


class Records(unittest.TestCase):
    def test_texts_of_the_log_are_written_by_the_code(self):
        texts = quoted(rows(GUIDES["administrators"], "The log says"))
        self.assertGreater(len(texts), 15)
        for text in texts + ["VR Log Data:", "Loggings are suppressed.", "ReportEvent failed, GatLastError() return: hr = "]:
            for piece in as_written(text):
                self.assertIn(piece, CODE, text)

    def test_errors_of_the_guide_are_all_that_the_code_writes(self):
        written = {text.split("0x")[0] for text in re.findall(r'(?:\.Error\(|Level::Error, \w+,\s*)L"([^"]+)"', CODE)}
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
        in_code = set(re.findall(r'L"(Suppress\w+)"', CODE))
        self.assertEqual(set(re.findall(r"Suppress\w+", text)), in_code)

    def test_keys_are_those_of_the_code(self):
        keys = re.findall(r"^\d\. `HKLM\\([^`]+)`$", GUIDES["administrators"], re.M)
        self.assertEqual(keys, re.findall(r'\{L"(SOFTWARE\\[^"]+)", (?:nullptr|L)', CODE))
        self.assertIn(r'L"Software\Policies\Orvik\" + productName', CODE)
        self.assertIn('VALUE "ProductName", "OrvikNotifications Application"',
                      (ROOT / "res/OrvikNotifications.rc").read_text(encoding="utf-8"))

    def test_commands_to_the_platform_are_those_of_the_code(self):
        row = next(line for line in GUIDES["privacy"].splitlines() if line.startswith("| platform library | commands"))
        self.assertEqual(set(re.findall(COMMAND, row)), set(re.findall(f'L"({COMMAND})"', CODE)))

    def test_files_and_places_are_those_of_the_code(self):
        for name in ("Toaster Message.lnk", "Orvik.ico", "IgnoreLumbraDialog.txt", "orvikLog", "toastImageAndText.png",
                     r"C:\Program Files (x86)\Orvik\Orvik Notifications\orvikSmartAdapterHelp.exe"):
            self.assertIn(name, "\n".join(GUIDES.values()))
            self.assertIn(name, CODE)


class Links(unittest.TestCase):
    def test_links_lead_to_a_file_and_a_heading(self):
        for name, guide in GUIDES.items():
            for file, anchor in re.findall(r"\]\(([^)#\s]*)(?:#([^)\s]+))?\)", guide):
                target = ROOT / "docs" / (file or f"{name}.md")
                self.assertTrue(target.is_file(), f"{name}: {file}")
                headings = [slug(match) for match in re.findall(r"^#+ (.+)$", target.read_text(encoding="utf-8"), re.M)]
                self.assertTrue(not anchor or anchor in headings, f"{name}: #{anchor}")


if __name__ == "__main__":
    unittest.main()
