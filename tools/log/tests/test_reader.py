"""What a support engineer sees of a log file."""
import io
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
import reader  # noqa: E402

TOOL = Path(__file__).resolve().parents[1] / "reader.py"
START = "2024/03/05 14:07:09.042|00001A2C|TraceIn    |Ns::CThing::Start|"
BEGUN = "2024/03/05 14:07:09.043|00001A2C|Verbose    |Ns::CThing::Start|begun – 1 µs"
FAILED = "2024/03/05 14:07:09.050|00000B00|Error      |Other::Read|failed with 0x5."


class LogFile(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.file = Path(folder.name) / "OrvikNotifications.log"

    def write(self, *lines):
        self.file.write_bytes(b"\xef\xbb\xbf" + "".join(line + "\r\n" for line in lines).encode())

    def append(self, text):
        with open(self.file, "ab") as file:
            file.write(text.encode())

    def shown(self, *arguments):
        out = io.StringIO()
        self.assertEqual(reader.main([str(self.file), *arguments], out), 0)
        return out.getvalue().splitlines()


class Reading(LogFile):
    def test_everything_is_shown_without_mark_and_carriage_returns(self):
        self.write(START, BEGUN, FAILED)
        self.assertEqual(self.shown(), [START, BEGUN, FAILED])

    def test_level_is_the_least_one(self):
        self.write(START, BEGUN, FAILED)
        self.assertEqual(self.shown("--level", "Verbose"), [BEGUN, FAILED])
        self.assertEqual(self.shown("--level", "Error"), [FAILED])
        self.assertEqual(self.shown("--level", "Diag"), [])

    def test_function_thread_and_text_are_parts_in_any_case(self):
        self.write(START, BEGUN, FAILED)
        self.assertEqual(self.shown("--function", "cthing::"), [START, BEGUN])
        self.assertEqual(self.shown("--thread", "b00"), [FAILED])
        self.assertEqual(self.shown("--text", "BEGUN"), [BEGUN])
        self.assertEqual(self.shown("--function", "CThing", "--level", "Information"), [])

    def test_further_lines_belong_to_their_record(self):
        self.write(BEGUN, "<xml>", "</xml>", FAILED)
        self.assertEqual(self.shown("--function", "CThing"), [BEGUN, "<xml>", "</xml>"])
        self.assertEqual(self.shown("--level", "Error"), [FAILED])

    def test_what_is_no_log_is_shown_as_it_is(self):
        self.write("notes")
        self.assertEqual(self.shown(), ["notes"])

    def test_broken_bytes_and_an_empty_file_are_no_failure(self):
        self.file.write_bytes(START.encode() + b"\xff\xfe\r\n")
        self.assertEqual(self.shown(), [START + "\ufffd\ufffd"])
        self.file.write_bytes(b"\xef\xbb\xbf")
        self.assertEqual(self.shown(), [])

    def test_a_missing_file_is_told_in_one_line(self):
        told = subprocess.run([sys.executable, "-B", TOOL, self.file], capture_output=True, text=True, check=False)
        self.assertEqual((told.returncode, told.stdout), (1, ""))
        self.assertEqual(told.stderr, f"log: {self.file}: No such file or directory\n")


class Following(LogFile):
    def start(self, *arguments):
        process = subprocess.Popen([sys.executable, "-B", TOOL, self.file, "--follow", *arguments],
                                   stdout=subprocess.PIPE, text=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        return process.stdout

    def test_what_is_added_is_shown_once_its_line_is_whole(self):
        self.write(START)
        shown = self.start("--level", "Verbose")
        self.append(BEGUN[:40])
        time.sleep(2 * reader.PAUSE)
        self.append(BEGUN[40:] + "\r\n" + FAILED + "\r\n")
        self.assertEqual([shown.readline(), shown.readline()], [BEGUN + "\n", FAILED + "\n"])

    def test_a_rotated_file_is_followed_into_its_successor(self):
        self.write(START)
        shown = self.start()
        self.assertEqual(shown.readline(), START + "\n")
        self.append(BEGUN + "\r\n")
        self.file.rename(self.file.with_name("OrvikNotifications_0001.log"))
        self.write(FAILED)
        self.assertEqual([shown.readline(), shown.readline()], [BEGUN + "\n", FAILED + "\n"])


if __name__ == "__main__":
    unittest.main()
