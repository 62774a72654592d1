"""What Intune does not import, and what Windows does not take from it, as their documentation lists it."""
from .finding import Finding, label
from .schema import NAMESPACE

_NS = {"p": NAMESPACE}
_MOST_BYTES = 1024 * 1024
_LANGUAGE = "en-us"
_REFUSED = ("system", r"software\microsoft", r"software\policies\microsoft")
_ALLOWED = tuple(rf"software\{place}" for place in (
    r"policies\microsoft\office", r"microsoft\office", r"microsoft\windows\currentversion\explorer",
    r"microsoft\internet explorer", r"policies\microsoft\shared tools\proofing tools", r"policies\microsoft\imejp",
    r"policies\microsoft\ime\shared", r"policies\microsoft\shared tools\graphics filters",
    r"policies\microsoft\windows\currentversion\explorer", r"policies\microsoft\softwareprotectionplatform",
    r"policies\microsoft\officesoftwareprotectionplatform", r"policies\microsoft\windows\windows search\preferences",
    r"policies\microsoft\exchange", r"microsoft\shared tools\proofing tools", r"microsoft\shared tools\graphics filters",
    r"microsoft\windows\windows search\preferences", r"microsoft\exchange", r"policies\microsoft\vba\security",
    r"microsoft\onedrive", r"microsoft\edge", r"microsoft\edgeupdate"))


def _is_below(key, places):
    return any(key == place or key.startswith(place + "\\") for place in places)


def is_refused(key):
    """Whether Windows refuses to write below that key for a template that came from Intune."""
    lower = key.lower()
    return _is_below(lower, _REFUSED) and not _is_below(lower, _ALLOWED)


def _keys(template):
    for policy in template.findall("p:policies/p:policy", _NS):
        for element in policy.iter():
            for name in ("key", "defaultKey"):
                if element.get(name) is not None:
                    yield policy, element.get(name)


def check(file, template, languages, sizes):
    """The findings. languages: tag -> (file, first element); sizes: file -> bytes."""
    for name, size in sizes.items():
        if size > _MOST_BYTES:
            yield Finding(name, "file", f"has {size} bytes, Intune takes {_MOST_BYTES}")
    for using in template.findall("p:policyNamespaces/p:using", _NS):
        yield Finding(file, "policyNamespaces",
                      f"Intune refuses the file unless somebody imported {using.get('namespace')} before")
    for policy, key in _keys(template):
        if is_refused(key):
            yield Finding(file, label(policy), f"Windows takes nothing below {key} from Intune")
    if _LANGUAGE not in (tag.lower() for tag in languages):
        yield Finding(file, "texts", "Intune takes texts in en-US alone, and there are none")
    for name, root in languages.values():
        for table in root.findall("p:resources/p:presentationTable/p:presentation", _NS):
            if table.find("p:comboBox", _NS) is not None:
                yield Finding(name, label(table), "Intune takes no comboBox")
