"""The installer: wixl makes it from packaging/OrvikNotifications.wxs and the languages of the policies' texts."""
import hashlib
import uuid
import xml.etree.ElementTree as ElementTree

import corrections
import languages
import summary
import tables
from contents import PACKAGING
from faults import PackageFault

WXS = PACKAGING / "OrvikNotifications.wxs"
UPGRADE_CODE = "{5D0F3C61-8B57-4C0E-9A43-2E9B7C4F1D26}"
# Codes that change with each version or each package are derived from this one.
_CODES = uuid.UUID(UPGRADE_CODE)


def _code(text):
    return f"{{{str(uuid.uuid5(_CODES, text)).upper()}}}"


def product_code(version):
    """Each version is a product of its own: an upgrade removes the one and installs the other."""
    return _code(f"product {version}")


def package_code(data):
    """The same for the same bytes, another one for any other: Windows takes two packages of one code for one."""
    return _code(f"package {hashlib.sha256(data).hexdigest()}")


def _run_wixl(target, work, version):
    """wixl takes no absolute path, and looks for files beside the source that names them."""
    target.unlink(missing_ok=True)
    defines = [f"Version={version}", f"ProductCode={product_code(version).strip('{}')}"]
    tables.run(["wixl", "-a", "x64", "-o", target.resolve(), *(word for define in defines for word in ("-D", define)), WXS.name],
               cwd=work)
    if not target.is_file():
        raise PackageFault("wixl made no package and said nothing.")


def build(target, work, contents, version, epoch):
    """The installer of the files in work/files, with the icon beside them. The same files, version and time make the same
    bytes."""
    wxs = ElementTree.parse(WXS)
    languages.add(wxs, contents.languages)
    ElementTree.register_namespace("", languages.NAMESPACE.strip("{}"))
    wxs.write(work / WXS.name, encoding="utf-8", xml_declaration=True)
    _run_wixl(target, work, version)
    corrections.correct(target, wxs, work / "files")
    summary.settle(target, package_code, epoch)
    return target
