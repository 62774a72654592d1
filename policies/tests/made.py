"""What the tests share: the real templates, made once, and folders to break them in."""
import sys
from pathlib import Path

sys.dont_write_bytecode = True
ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "policies"))
import make  # noqa: E402

POLICIES, TEXTS = make.read()
ENGLISH = TEXTS["en-US"]
FILES = make.files(POLICIES, TEXTS)
NAME = POLICIES["file"]
ADMX = f"{NAME}.admx"
ADML = f"en-US/{NAME}.adml"
TEMPLATE = FILES[ADMX]


def write(folder, files):
    """Files into a folder; what it held stays."""
    for path, content in files.items():
        target = Path(folder, path)
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(content)


def policy(name):
    """One policy of the data."""
    return next(one for one in POLICIES["policies"] if one["value"] == name)
