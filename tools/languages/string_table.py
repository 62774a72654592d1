"""Texts as a string table of the resource compiler."""
from languages import MESSAGE_BOX_TEXTS, RIGHT_TO_LEFT

_MARK = "\u200f"
_SUBLANGUAGE_SHIFT = 10


def shown_text(tag, name, text):
    """The text as it goes into the program. No translator has to remember the marks, so none can forget them."""
    if tag in RIGHT_TO_LEFT and name in MESSAGE_BOX_TEXTS:
        return 2 * _MARK + text.lstrip(_MARK)
    return text


def _quoted(text):
    escaped = text.replace("\\", "\\\\").replace('"', '""').replace("\r", "\\r").replace("\n", "\\n").replace("\t", "\\t")
    return f'"{escaped}"'


def string_table(tag, language_id, texts):
    """Script of one language. Names of ids come from Resource.h, which whoever includes the script has included."""
    primary, sublanguage = language_id & (1 << _SUBLANGUAGE_SHIFT) - 1, language_id >> _SUBLANGUAGE_SHIFT
    lines = [f"// {tag}", f"LANGUAGE {primary}, {sublanguage}", "STRINGTABLE", "BEGIN"]
    lines += [f"    {name} {_quoted(shown_text(tag, name, text))}" for name, text in texts.items()]
    return "\n".join([*lines, "END", ""])
