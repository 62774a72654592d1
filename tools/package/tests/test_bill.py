"""What the release says of the libraries inside: the linker's account, the bill of materials, the notices."""
import json
import tempfile
import unittest
from pathlib import Path

import support
import linked
import notices
import sbom
from faults import PackageFault

_MAP = support.BUILD / "src/app/OrvikNotifications.exe.map"
_TEXT = """Archive member included to satisfy reference by file (symbol)

src/app/libours.a(Main.cpp.obj)
                              src/app/Main.cpp.obj (main)
/usr/lib/libc.a(first.o)      src/app/libours.a(Main.cpp.obj) (puts)

Discarded input sections
LOAD src/app/Main.cpp.obj
LOAD /usr/lib/libunused.a
"""


class LinkersAccount(unittest.TestCase):
    def test_members_and_object_files_are_read_and_unused_archives_are_not(self):
        self.assertEqual(linked.taken(_TEXT), [("src/app/libours.a", "Main.cpp.obj"), ("/usr/lib/libc.a", "first.o"),
                                               ("src/app/Main.cpp.obj", None)])

    def test_map_of_another_form_is_refused(self):
        for text in ("", _TEXT.replace("LOAD", "TAKE"), _TEXT.replace("Archive member", "Member")):
            with self.assertRaises(PackageFault):
                linked.taken(text)

    def test_library_that_no_entry_holds_is_refused(self):
        for name, source in (("libz.a", "libz-mingw-w64"), ("libgomp.a", "gcc-mingw-w64")):
            with self.assertRaisesRegex(PackageFault, f"{name} of {source} is in the executable and no entry holds it"):
                linked._library_of(name, source, ["one.o"])

    def test_member_under_another_licence_is_refused(self):
        for member in ("lib64_libmingwex_a-strtodnrp.o", "s_erf.o"):
            with self.assertRaisesRegex(PackageFault, f"{member} of libmingwex.a has a licence of its own"):
                linked._library_of("libmingwex.a", "mingw-w64", ["lib64_libmingwex_a-gdtoa.o", member])

    def test_object_file_under_another_licence_is_refused(self):
        with self.assertRaisesRegex(PackageFault, "gcrt0.o of gcrt0.o has a licence of its own"):
            linked._library_of("gcrt0.o", "mingw-w64", [None])

    def test_library_from_outside_the_build_is_none_of_ours(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder, "map")
            path.write_text(_TEXT.replace("/usr/lib/libc.a", "../vendor/libz.a"))
            with self.assertRaisesRegex(PackageFault, "libz.a"):
                linked.libraries(path)

    def test_members_that_bring_the_further_licences_are_inside(self):
        members = {member for _, member in linked.taken(_MAP.read_text(errors="replace"))}
        self.assertLessEqual({"lib64_libmingwex_a-gdtoa.o", "lib64_libmingwex_a-mingw_pformat.o"}, members)


@support.needs("wixl", "msibuild", "msiinfo")
class Bill(unittest.TestCase):
    def setUp(self):
        self.inside = linked.libraries(_MAP)
        self.bill = json.loads(support.one(support.made(), ".cdx.json").read_text())
        self.components = {component["name"]: component for component in self.bill["components"]}

    def test_libraries_are_those_of_the_linkers_account(self):
        names = {one.library.name for one in self.inside}
        self.assertLessEqual({"libstdc++", "libgcc", "mingw-w64-crt", "winpthreads"}, names)
        self.assertEqual(set(self.components), names | {"OrvikNotifications.exe", "OrvikNotificationsEvents.dll"})

    def test_form_supplier_and_tool_are_said(self):
        self.assertEqual((self.bill["bomFormat"], self.bill["specVersion"]), ("CycloneDX", "1.5"))
        metadata = self.bill["metadata"]
        self.assertEqual((metadata["supplier"]["name"], metadata["component"]["version"]), ("Orvik", support.VERSION))
        self.assertEqual(len(metadata["tools"]["components"]), 1)
        for component in self.components.values():
            self.assertTrue(component["supplier"]["name"], component["name"])

    def test_licences_of_the_c_runtime_name_those_of_its_parts(self):
        self.assertEqual(self.components["mingw-w64-crt"]["licenses"], [
            {"expression": "ZPL-2.1 AND LicenseRef-Lucent AND LicenseRef-Keith-Marshall AND LicenseRef-public-domain"}])

    def test_package_urls_are_quoted_and_name_the_packages_architecture(self):
        for one in self.inside:
            version, architecture, _ = sbom.package_facts(one.packages[-1])
            said = self.components[one.library.name]
            self.assertEqual(said["version"], version)
            self.assertRegex(said["purl"], rf"^pkg:deb/debian/[a-z0-9.%B-]+@[A-Za-z0-9.%~-]+\?arch={architecture}$")

    def test_dependencies_name_components_that_are_there(self):
        references = {component["bom-ref"] for component in self.components.values()} | {"orvik-notifications"}
        named = {name for entry in self.bill["dependencies"] for name in [entry["ref"], *entry["dependsOn"]]}
        self.assertEqual(named - references, set())

    def test_notices_hold_every_licence_in_full(self):
        data = (support.made() / "THIRD-PARTY-NOTICES.txt").read_bytes()
        text = data.decode("utf-8-sig")
        self.assertNotIn(b"\n", data.replace(b"\r\n", b""))
        for one in self.inside:
            self.assertIn(f"  {one.library.name}: ", text)
        for words in ("GCC RUNTIME LIBRARY EXCEPTION", "TERMS AND CONDITIONS\r\n\r\n  0. Definitions.", "License: ZPL-2.1",
                      "Lucent Technologies", "Keith Marshall", "Lockless Inc.", "Permission is hereby granted, free of charge"):
            self.assertIn(words, text)
        self.assertIn(notices._read(notices._LICENCES[0], "base-files"), text.replace("\r\n", "\n"))


if __name__ == "__main__":
    unittest.main()
