"""The policies' texts in the installer: of each language that was built, a folder, a component and its file."""
import uuid
import xml.etree.ElementTree as ElementTree

from contents import POLICY_TEXTS

NAMESPACE = "{http://schemas.microsoft.com/wix/2006/wi}"
_FOLDER, _FEATURE = "PolicyFolder", "PolicyTemplates"
# A component's GUID follows from this one and the language: it stays for ever, and so must these.
_COMPONENTS = uuid.UUID("a9a1f0b3-3f0c-4c8b-8a55-52c5d3b1e7ff")


def component_guid(language):
    return str(uuid.uuid5(_COMPONENTS, f"policy texts {language}")).upper()


def _identifier(language):
    """Identifiers in a package hold letters, digits, dots and underscores."""
    return language.replace("-", "_")


def _folder(language):
    """The folder is there already where Windows speaks that language; else it comes with the file and goes when it is empty."""
    name = _identifier(language)
    folder = ElementTree.Element(NAMESPACE + "Directory", Id=f"PolicyFolder.{name}", Name=language)
    component = ElementTree.SubElement(folder, NAMESPACE + "Component", Id=f"PolicyText.{name}",
                                       Guid=component_guid(language), Win64="yes")
    ElementTree.SubElement(component, NAMESPACE + "File", Id=f"PolicyAdml.{name}", Name=POLICY_TEXTS, KeyPath="yes",
                           Source=f"files/PolicyDefinitions/{language}/{POLICY_TEXTS}")
    return folder


def add(wxs, languages):
    """Puts the languages into the package's source, below the folder and into the feature of the policy templates."""
    folder = next(one for one in wxs.iter(NAMESPACE + "Directory") if one.get("Id") == _FOLDER)
    feature = next(one for one in wxs.iter(NAMESPACE + "Feature") if one.get("Id") == _FEATURE)
    for language in languages:
        folder.append(_folder(language))
        ElementTree.SubElement(feature, NAMESPACE + "ComponentRef", Id=f"PolicyText.{_identifier(language)}")
