"""How C++ is written here."""
import re

from .tree import Finding

# Where owner types live: only there a resource is given back by hand.
_OWNER_FILES = re.compile(r"(^|/)Owner\w*\.(h|cpp)$")
_GIVES_BACK = re.compile(
    r"(?<![\w.>])(?:::)?(CloseHandle|SysFreeString|RegCloseKey|CloseEventLog|DeregisterEventSource|LocalFree|GlobalFree|"
    r"CoTaskMemFree|FindClose|FreeLibrary|VariantClear|WindowsDeleteString|SetupDiDestroyDeviceInfoList)\s*\(")
_RELEASES = re.compile(r"->\s*Release\s*\(")
# Tests and doubles of COM objects count references by hand: that is what they are about.
_COUNTS_REFERENCES = ("tests/", "simulator/")
_BANNER = re.compile(r"^\s*//\s*[-=*#~/]{4,}")
_TEST_HOOK = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b.*TEST")


def raw_release(tree):
    """Rule raw-release: every resource has one owner type."""
    for file in tree.cpp:
        if _OWNER_FILES.search(file.path):
            continue
        for number, line in enumerate(file.code_lines, 1):
            names = _GIVES_BACK.findall(line)
            if _RELEASES.search(line) and not file.path.startswith(_COUNTS_REFERENCES):
                names.append("Release")
            for name in names:
                yield Finding("raw-release", file.path, number, f"{name} belongs into an owner type")


def pragma_once(tree):
    """Rule pragma-once."""
    for file in tree.cpp:
        if file.path.endswith(".h") and not re.search(r"^#pragma once$", file.text, re.MULTILINE):
            yield Finding("pragma-once", file.path, 1, "a header begins with #pragma once")


def banner(tree):
    """Rule banner."""
    for file in tree.cpp:
        for number, line in enumerate(file.lines, 1):
            if _BANNER.match(line):
                yield Finding("banner", file.path, number, "no rules drawn into the code")


def test_hook(tree):
    """Rule test-hook: what ships does not know that it is tested."""
    for file in tree.cpp:
        if file.path.startswith("src/"):
            for number, line in enumerate(file.code_lines, 1):
                if _TEST_HOOK.match(line):
                    yield Finding("test-hook", file.path, number, "product code has no part for tests alone")


def listed(tree):
    """Rule listed: a source that no CMake file names is built by nobody."""
    lists = {path[: -len("CMakeLists.txt")]: file.text for path, file in tree.files.items()
             if path.endswith("CMakeLists.txt")}
    for file in tree.cpp:
        if not file.path.endswith(".cpp"):
            continue
        homes = [folder for folder in lists if file.path.startswith(folder)]
        if not any(re.search(rf"(?<![\w/.]){re.escape(file.path[len(folder):])}(?![\w.])", lists[folder]) for folder in homes):
            yield Finding("listed", file.path, 1, "no CMakeLists.txt names it")


RULES = {"raw-release": raw_release, "pragma-once": pragma_once, "banner": banner, "test-hook": test_hook, "listed": listed}
