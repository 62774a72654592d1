"""Each rule fires on a seeded violation and is silent on what looks like one."""
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
import house_rules  # noqa: E402
from house.tree import SourceFile, Tree  # noqa: E402


def findings_in(files):
    tree = Tree(Path("."), {path: SourceFile(path, text) for path, text in files.items()})
    return [(finding.rule, finding.path, finding.line) for finding in house_rules.check(tree)]


def findings_of(rule, files):
    return [(path, line) for found, path, line in findings_in(files) if found == rule]


class IncludeOrder(unittest.TestCase):
    def assert_order(self, path, include, broken):
        found = findings_of("include-order", {path: f'#include "{include}"\n'})
        self.assertEqual(found, [(path, 1)] if broken else [], f"{path} {include}")

    def test_an_include_upwards_is_found(self):
        for path, include in (("src/shared/A.cpp", "platform/B.h"), ("src/platform/A.h", "usbc/B.h"),
                              ("src/app/system/A.h", "app/Main.h"), ("src/notifications/A.cpp", "wmievents/B.h"),
                              ("src/shared/A.cpp", "app/system/B.h"), ("src/app/dialogs/A.h", "platform/B.h")):
            self.assert_order(path, include, broken=True)

    def test_an_include_downwards_is_not(self):
        for path, include in (("src/platform/A.cpp", "shared/B.h"), ("src/app/A.cpp", "shared/B.h"),
                              ("src/wmievents/A.h", "app/system/B.h"), ("src/app/A.h", "app/system/B.h"),
                              ("src/notifications/A.h", "notifications/B.h"), ("src/app/A.cpp", "res/Resource.h")):
            self.assert_order(path, include, broken=False)

    def test_product_and_simulator_do_not_know_what_uses_them(self):
        for path, include in (("src/app/A.cpp", "simulator/model/B.h"), ("src/app/A.cpp", "tests/support/B.h"),
                              ("simulator/model/A.cpp", "tests/support/B.h"), ("simulator/A.cpp", "bench/B.h")):
            self.assert_order(path, include, broken=True)
        self.assert_order("tests/shared/A.cpp", "simulator/model/B.h", broken=False)
        self.assert_order("bench/A.cpp", "simulator/model/B.h", broken=False)

    def test_an_include_in_a_comment_is_none(self):
        self.assertEqual(findings_of("include-order", {"src/shared/A.h": '/*\n#include "app/B.h"\n*/\n'}), [])


class IncludePathAndGroups(unittest.TestCase):
    def test_a_path_from_the_own_folder_is_found(self):
        files = {"src/shared/A.cpp": '#include "B.h"\n', "src/shared/B.h": "#pragma once\n"}
        self.assertEqual(findings_of("include-path", files), [("src/shared/A.cpp", 1)])

    def test_paths_from_the_roots_and_generated_headers_are_not(self):
        files = {"src/shared/A.cpp": '#include "shared/B.h"\n#include "src/shared/B.h"\n#include "Generated.h"\n',
                 "src/shared/B.h": "#pragma once\n"}
        self.assertEqual(findings_of("include-path", files), [])

    def test_groups_out_of_order_are_found(self):
        for first, second in (("<vector>", "<windows.h>"), ("<windows.h>", '"shared/B.h"'), ('"shared/B.h"', '"shared/A.h"')):
            files = {"src/shared/A.cpp": f"#include {first}\n#include {second}\n"}
            self.assertEqual(findings_of("include-groups", files), [("src/shared/A.cpp", 2)], (first, second))

    def test_groups_in_order_are_not(self):
        text = '#include "shared/A.h"\n#include "shared/B.h"\n#include <windows.h>\n#include <gtest/gtest.h>\n#include <vector>\n'
        self.assertEqual(findings_of("include-groups", {"src/shared/A.cpp": text}), [])


class Lengths(unittest.TestCase):
    def test_file_of_401_lines_is_found_and_of_400_is_not(self):
        for lines, found in ((400, []), (401, [("docs/draw.py", 1)])):
            self.assertEqual(findings_of("file-length", {"docs/draw.py": "pass\n" * lines}), found)

    def assert_function(self, head, found):
        for body, broken in ((58, False), (59, True)):
            text = head + "{\n" + "    if (a) { b(); }\n" * body + "}\n"
            lines = findings_of("function-length", {"src/shared/A.cpp": text})
            self.assertEqual(bool(lines), broken and found, (head, body, lines))

    def test_function_of_61_lines_is_found(self):
        for head in ("void F()\n", "namespace N\n{\nint CFoo::F(int a = 1) const noexcept\n", "TEST(Subject, Name)\n",
                     "CFoo::CFoo() : m_a{1}, m_b(2)\n", "CFoo::CFoo() : m_a{1}\n", "bool operator==(int a, int b)\n",
                     "class CFoo\n{\nint F() const\n", "#define X {\nvoid F()\n", 'void G() { auto c = \'{\'; auto s = "{"; }\nvoid F()\n'):
            self.assert_function(head, True)

    def test_types_namespaces_and_tables_may_be_long(self):
        for head in ("namespace N\n", "struct S\n", "class C : public B<int>\n", "const int table[] =\n", "extern \"C\"\n"):
            self.assert_function(head, False)

    def test_long_python_function_is_found(self):
        text = "def f():\n" + "    pass\n" * 60
        self.assertEqual(findings_of("function-length", {"tools/a.py": text}), [("tools/a.py", 1)])


class Code(unittest.TestCase):
    def test_giving_back_by_hand_is_found(self):
        for call in ("CloseHandle(h);", "::SysFreeString(b);", "p->Release();", "RegCloseKey (k);", "if (!FindClose(h))"):
            files = {"src/platform/A.h": f"#pragma once\n{call}\n"}
            self.assertEqual(findings_of("raw-release", files), [("src/platform/A.h", 2)], call)

    def test_owner_types_comments_and_smart_pointers_may(self):
        for text in ("// CloseHandle(h)", 'Log(L"CloseHandle(h)");', "ULONG Release() override;", "spThing.Release();", "My.CloseHandle(1);"):
            self.assertEqual(findings_of("raw-release", {"src/platform/A.h": f"#pragma once\n{text}\n"}), [], text)
        self.assertEqual(findings_of("raw-release", {"tests/A.h": "#pragma once\np->Release();\n"}), [])
        self.assertEqual(findings_of("raw-release", {"src/shared/OwnerTypes.h": "#pragma once\nCloseHandle(h);\n"}), [])

    def test_header_without_pragma_once_is_found(self):
        self.assertEqual(findings_of("pragma-once", {"tests/A.h": "int a;\n"}), [("tests/A.h", 1)])
        self.assertEqual(findings_of("pragma-once", {"tests/A.h": "#pragma once\nint a;\n"}), [])

    def test_banner_is_found(self):
        self.assertEqual(findings_of("banner", {"src/app/A.h": "#pragma once\n  // -----\n"}), [("src/app/A.h", 2)])
        self.assertEqual(findings_of("banner", {"src/app/A.h": "#pragma once\n// -- two\n"}), [])

    def test_test_hook_is_found_in_the_product(self):
        self.assertEqual(findings_of("test-hook", {"src/app/A.cpp": "#ifdef ORVIK_TEST\n"}), [("src/app/A.cpp", 1)])
        self.assertEqual(findings_of("test-hook", {"tests/app/A.cpp": "#ifdef ORVIK_TEST\n"}), [])

    def test_source_that_no_list_names_is_found(self):
        files = {"src/app/CMakeLists.txt": "add_library(app MyA.cpp sub/C.cpp A.cpp.in)\n", "src/app/A.cpp": "", "src/app/MyA.cpp": "",
                 "src/app/sub/C.cpp": ""}
        self.assertEqual(findings_of("listed", files), [("src/app/A.cpp", 1)])


class Words(unittest.TestCase):
    def test_each_word_is_found_in_any_file(self):
        # Put together here, so that this file does not hold them.
        for text in ("see spec" + ".md", "Spec" + "ification", "the s" + "pec says", "Part" + " 3.1", "DEVELO" + "PERS.md", "/wo" + "rk/a",
                     "../sha" + "red/x", "http://de" + "b.debian.org", "https://regi" + "stry.npm", "iss" + "ue 2", "Iss" + "ue #2"):
            self.assertEqual(findings_of("words", {"README.md": f"\n{text}\n"}), [("README.md", 2)], text)

    def test_words_that_only_look_alike_are_not(self):
        for text in ("specific", "Part of 3.1", "framework/x", "issue a toast", "https://support.orvik.example/veritor", "src/shared/x"):
            self.assertEqual(findings_of("words", {"README.md": text}), [], text)


class Excuses(unittest.TestCase):
    def test_excuse_on_the_line_or_above_is_taken(self):
        for text in ("CloseHandle(h); // NOCHECK(raw-release): proves the failure\n",
                     "// NOCHECK(raw-release): proves the failure\nCloseHandle(h);\n"):
            self.assertEqual(findings_in({"tests/A.h": "#pragma once\n" + text}), [])

    def test_bad_excuses_are_found(self):
        for text in ("CloseHandle(h); // NOCHECK(raw-release)\n", "// NOCHECK(raw-release): nothing here\n", "// NOCHECK(no-such): x\n"):
            self.assertEqual(findings_of("excuse", {"tests/A.h": "#pragma once\n" + text}), [("tests/A.h", 2)], text)

    def test_excuse_for_another_rule_does_not_count(self):
        found = findings_in({"tests/A.h": "#pragma once\nCloseHandle(h); // NOCHECK(banner): wrong one\n"})
        self.assertEqual([rule for rule, _, _ in found], ["excuse", "raw-release"])


class Reading(unittest.TestCase):
    def test_tree_on_disk_without_build_and_pictures(self):
        with tempfile.TemporaryDirectory() as folder:
            for path, content in (("src/shared/A.h", b"int a;\n"), ("build/B.h", b"int b;\n"), ("res/a.ico", b"\xff\xfe\x00")):
                Path(folder, path).parent.mkdir(parents=True, exist_ok=True)
                Path(folder, path).write_bytes(content)
            self.assertEqual(list(Tree.read(folder).files), ["src/shared/A.h"])
            self.assertEqual(house_rules.main([folder]), 1)

    def test_comments_and_texts_keep_their_lines(self):
        code = SourceFile("src/a.cpp", '/* a\nb */ x; // c\nR"(\n})" y 1\'000\'000 \'"\' z').code
        self.assertEqual([code.count("\n"), code.splitlines()[1].strip(), "}" in code, code.split()[-1]], [3, "x;", False, "z"])


if __name__ == "__main__":
    unittest.main()
