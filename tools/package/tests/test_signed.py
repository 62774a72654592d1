"""A release signed by a command that the releaser names."""
import os
import subprocess
import tempfile
import unittest
import zipfile
from pathlib import Path

import support
import tables


@support.needs("wixl", "msibuild", "msiinfo", "osslsigncode", "openssl")
class SignedRelease(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = Path(folder.name)
        cls.make_certificate()
        signer = cls.folder / "sign"
        signer.write_text(f'#!/bin/sh\nosslsigncode sign -h sha256 -certs {cls.folder}/cert.pem -key {cls.folder}/key.pem '
                          '-in "$1" -out "$1.signed" && mv "$1.signed" "$1"\n')
        signer.chmod(0o755)
        cls.done = subprocess.run(
            [str(support.PROGRAM), "--build", str(support.BUILD), "--output", str(cls.folder / "out"), "--sign",
             f"{signer} {{file}}"], env={**os.environ, "SOURCE_DATE_EPOCH": str(support.EPOCH)}, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, text=True, check=False)
        if cls.done.returncode:
            raise AssertionError(cls.done.stdout)
        zipfile.ZipFile(support.one(cls.folder / "out", "-x64.zip")).extractall(cls.folder / "zip")

    @classmethod
    def make_certificate(cls):
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=Throw-away",
                        "-addext", "extendedKeyUsage=codeSigning", "-keyout", cls.folder / "key.pem", "-out",
                        cls.folder / "cert.pem"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)

    def verify(self, path):
        return subprocess.run(["osslsigncode", "verify", "-CAfile", self.folder / "cert.pem", "-in", path],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)

    def assert_signed(self, path):
        done = self.verify(path)
        self.assertEqual(done.returncode, 0, f"{path.name}: {done.stdout}")
        self.assertIn("Throw-away", done.stdout, path.name)

    def test_programs_and_installer_carry_the_signature(self):
        self.assertIn("Signed", self.done.stdout)
        self.assert_signed(support.one(self.folder / "out", ".msi"))
        for name in ("OrvikNotifications.exe", "OrvikNotificationsEvents.dll"):
            self.assert_signed(self.folder / "zip" / name)

    def test_changed_program_is_seen(self):
        data = bytearray((self.folder / "zip" / "OrvikNotifications.exe").read_bytes())
        data[0x2000] ^= 1
        changed = self.folder / "changed.exe"
        changed.write_bytes(data)
        self.assertNotEqual(self.verify(changed).returncode, 0)

    def test_installer_holds_the_signed_programs(self):
        sizes = {row["File"]: int(row["FileSize"])
                 for row in tables.read_table(support.one(self.folder / "out", ".msi"), "File").dicts()}
        for file, name in (("AgentExe", "OrvikNotifications.exe"), ("EventMessagesDll", "OrvikNotificationsEvents.dll")):
            self.assertEqual(sizes[file], (self.folder / "zip" / name).stat().st_size, name)


if __name__ == "__main__":
    unittest.main()
