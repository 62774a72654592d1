#!/usr/bin/env python3
"""Makes everything that is told of the policies from policies.json and the texts.

    policies/make.py templates FOLDER    the template, its texts in each language, a sample .reg, the table for the tests
    policies/make.py guide [FILE]        writes the tables into the administrators' guide
"""
import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
from templates import admx, adml, data, guide, header, registry  # noqa: E402

GUIDE = Path(__file__).resolve().parents[1] / "docs" / "administrators.md"


def files(policies, texts):
    """Path below the folder -> bytes. texts: language -> texts."""
    name = policies["file"]
    made = {f"{name}.admx": admx.make(policies), f"{name}.reg": registry.make_sample(policies, texts[data.GUIDE_LANGUAGE]),
            "PolicyTable.h": header.make(policies).encode()}
    for language, own in texts.items():
        made[f"{language}/{name}.adml"] = adml.make(policies, own)
    return made


def read():
    """The policies and, by language, their texts."""
    policies = data.read_policies()
    return policies, {language: data.read_texts(path, policies) for language, path in data.languages().items()}


def _write(folder, made):
    for path, content in made.items():
        target = Path(folder, path)
        target.parent.mkdir(parents=True, exist_ok=True)
        # What has not changed keeps its time, so that nothing is built anew.
        if not target.exists() or target.read_bytes() != content:
            target.write_bytes(content)


def main(arguments):
    try:
        policies, texts = read()
        if arguments[:1] == ["templates"] and len(arguments) == 2:
            _write(arguments[1], files(policies, texts))
        elif arguments[:1] == ["guide"] and len(arguments) <= 2:
            path = Path(arguments[1]) if arguments[1:] else GUIDE
            path.write_text(guide.replace(path.read_text(encoding="utf-8"), guide.tables(policies, texts[data.GUIDE_LANGUAGE])),
                            encoding="utf-8")
        else:
            print(__doc__, file=sys.stderr)
            return 2
    except (data.DataError, guide.GuideError, OSError) as error:
        print(f"make.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
