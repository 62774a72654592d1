"""What a check found, and where in a template."""
from dataclasses import dataclass


@dataclass(frozen=True)
class Finding:
    file: str
    place: str
    text: str

    def __str__(self):
        return f"{self.file}: {self.place}: {self.text}"


def local(element):
    """The element's name without its namespace."""
    return element.tag.rpartition("}")[2]


def label(element):
    """One step of a place: policy[SuppressAllNotifications]."""
    name = element.get("name") or element.get("id") or element.get("refId") or element.get("ref")
    return f"{local(element)}[{name}]" if name else local(element)
