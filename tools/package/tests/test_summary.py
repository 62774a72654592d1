"""The installer's summary, which Windows reads before anything else, as another tool prints it."""
import datetime
import struct
import unittest

import support
import summary
import tables

_WINDOWS_WESTERN = 1252


def printed(installer):
    """Name -> value, of the lines that msiinfo prints."""
    lines = tables.run(["msiinfo", "suminfo", installer]).decode().splitlines()
    return {name: value for name, _, value in (line.partition(": ") for line in lines)}


@support.needs("wixl", "msibuild", "msiinfo")
class Summary(unittest.TestCase):
    def setUp(self):
        self.installer = support.one(support.made(), ".msi")
        self.printed = printed(self.installer)

    def test_package_is_a_compressed_one_for_64_bits_that_needs_the_installer_of_windows_7(self):
        expected = {"Template": "x64;1033", "Source": "2 (2)", "Version": "500 (1f4)", "Security": "2 (2)",
                    "Title": "Installation Database", "Subject": f"Orvik Notifications {support.VERSION}", "Author": "Orvik",
                    "Keywords": "Installer"}
        self.assertEqual({name: self.printed.get(name) for name in expected}, expected)

    def test_times_are_the_given_one(self):
        when = datetime.datetime.fromtimestamp(support.EPOCH, datetime.timezone.utc).strftime("%a %b %d %H:%M:%S %Y")
        self.assertEqual((self.printed["Created"], self.printed["Last saved"]), (when, when))

    def test_package_has_a_code_in_the_form_that_windows_takes(self):
        self.assertRegex(self.printed["Revision number (UUID)"], r"^\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}$")

    def test_texts_say_their_code_page(self):
        """msiinfo does not print it; it is the first property, a 16-bit number."""
        data = tables.run(["msiinfo", "extract", self.installer, "\x05SummaryInformation"])
        kind, place = summary.properties(data)[1]
        self.assertEqual((kind, struct.unpack_from("<H", data, place)[0]), (2, _WINDOWS_WESTERN))


if __name__ == "__main__":
    unittest.main()
