#!/usr/bin/env python3
"""Turns the catalogues of the translators into string tables of the resource compiler.

    build_strings.py ENGLISH.rc CATALOGUES OUT     writes OUT/<language>.rc for each, and OUT/all.rc that includes them

Nothing is written, and the exit code is 1, while a catalogue lacks a text or says something else than the English table;
the message names the file and the id.
"""
import argparse
import sys
from pathlib import Path

sys.dont_write_bytecode = True  # nothing is written outside build/
sys.path.insert(0, str(Path(__file__).resolve().parent))
from faults import TextFault  # noqa: E402
from languages import LANGUAGES  # noqa: E402
from string_table import string_table  # noqa: E402
from texts import read_english, read_languages  # noqa: E402


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    for name in ("english", "catalogues", "out"):
        parser.add_argument(name, type=Path)
    arguments = parser.parse_args()
    english = read_english(arguments.english)
    try:
        languages = read_languages(arguments.catalogues, english, LANGUAGES)
    except TextFault as fault:
        print(f"build_strings: {fault}", file=sys.stderr)
        return 1
    arguments.out.mkdir(parents=True, exist_ok=True)
    for tag, texts in languages.items():
        in_order = {name: texts[name] for name in english}
        (arguments.out / f"{tag}.rc").write_text(string_table(tag, LANGUAGES[tag], in_order), encoding="utf-8")
    (arguments.out / "all.rc").write_text("".join(f'#include "{tag}.rc"\n' for tag in languages), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
