"""The part of XPath with which Windows selects events: parsed, refused with a reason, tried on events.

Windows takes child and attribute steps, *, names, text(), comparisons with a literal or a number, "and", "or", brackets, and
the functions position, Band and timediff, in at most 32 expressions; a query that has more than 20 is better split. What
else XPath has, contains() first of all, makes a subscription collect nothing.
"""
import re
from dataclasses import dataclass

MOST_EXPRESSIONS = 20
_TOKEN = re.compile(r"""\s*(?:(?P<text>'[^']*'|"[^"]*")|(?P<number>-?\d+(?:\.\d+)?)|(?P<name>[A-Za-z_][\w.-]*)"""
                    r"""|(?P<sign><=|>=|!=|[=<>()\[\]/@*,]))""")
_FUNCTIONS = {"position": 0, "band": 2, "timediff": 1, "text": 0}
_SYSTEM = {"Provider": {"Name", "Guid", "EventSourceName"}, "EventID": {"Qualifiers"}, "Version": set(), "Level": set(),
           "Task": set(), "Opcode": set(), "Keywords": set(), "TimeCreated": {"SystemTime"}, "EventRecordID": set(),
           "Correlation": {"ActivityID", "RelatedActivityID"}, "Execution": {"ProcessID", "ThreadID"}, "Channel": set(),
           "Computer": set(), "Security": {"UserID"}}
_COMPARISONS = ("=", "!=", "<", "<=", ">", ">=")


class QueryFault(Exception):
    """What Windows would refuse, or what would select nothing."""


@dataclass
class Step:
    """A child or, with "@", an attribute; what must hold of it, if anything; the steps below it."""
    name: str
    condition: object = None
    below: "Step" = None


@dataclass
class Comparison:
    left: object
    sign: str
    value: str


@dataclass
class Function:
    name: str
    arguments: list


@dataclass
class Group:
    """Parts joined by one word, "and" or "or"."""
    word: str
    parts: list


class _Parser:
    def __init__(self, text):
        self._tokens, place = [], 0
        while text[place:].strip():
            match = _TOKEN.match(text, place)
            if not match:
                raise QueryFault(f"Windows' queries have no {text[place:].strip()[0]!r}")
            self._tokens.append((match.lastgroup, match[match.lastgroup]))
            place = match.end()
        self._next, self.expressions = 0, 0

    def _peek(self, ahead=0):
        place = self._next + ahead
        return self._tokens[place] if place < len(self._tokens) else ("end", "the end")

    def _take(self, *values):
        kind, value = self._peek()
        if value not in values or kind == "text":
            raise QueryFault(f"{' or '.join(values)} is expected instead of {value}")
        self._next += 1
        return value

    def selector(self):
        name = self._take("*", "Event")
        event = Step(name)
        if self._peek()[1] == "[":
            event.condition = self._condition()
        if self._peek()[0] != "end":
            raise QueryFault(f"{self._peek()[1]} stands behind the end: an event is selected, never a part of it")
        return event

    def _condition(self):
        self._take("[")
        found = self._joined("or")
        self._take("]")
        return found

    def _joined(self, word):
        part = self._part if word == "and" else lambda: self._joined("and")
        parts = [part()]
        while self._peek() == ("name", word):
            self._next += 1
            parts.append(part())
        return parts[0] if len(parts) == 1 else Group(word, parts)

    def _part(self):
        if self._peek() == ("sign", "("):
            self._next += 1
            found = self._joined("or")
            self._take(")")
            return found
        self.expressions += 1
        left = self._operand()
        if self._peek()[1] in _COMPARISONS:
            return Comparison(left, self._take(*_COMPARISONS), self._literal())
        return left

    def _operand(self):
        kind, name = self._peek()
        if kind == "name" and self._peek(1) == ("sign", "("):
            return self._function(name)
        return self._path()

    def _function(self, name):
        if name.lower() not in _FUNCTIONS:
            raise QueryFault(f"Windows' queries have no function {name}")
        self._next += 2
        arguments = []
        while self._peek()[1] != ")":
            arguments.append(self._literal() if self._peek()[0] == "number" else self._path())
            if self._peek()[1] == ",":
                self._next += 1
        self._take(")")
        if len(arguments) != _FUNCTIONS[name.lower()]:
            raise QueryFault(f"{name} takes {_FUNCTIONS[name.lower()]} arguments")
        return Function(name.lower(), arguments)

    def _path(self):
        attribute = "@" if self._peek() == ("sign", "@") else ""
        self._next += len(attribute)
        kind, name = self._peek()
        if kind != "name" and name != "*":
            raise QueryFault(f"a name is expected instead of {name}")
        self._next += 1
        step = Step(attribute + name)
        if self._peek()[1] == "[" and not attribute:
            step.condition = self._condition()
        if self._peek()[1] == "/" and not attribute:
            self._next += 1
            step.below = self._path()
        return step

    def _literal(self):
        kind, value = self._peek()
        if kind not in ("text", "number"):
            raise QueryFault(f"a text or a number is expected instead of {value}")
        self._next += 1
        return value.strip("'\"") if kind == "text" else value


def _steps(part):
    """The steps that a part begins with."""
    if isinstance(part, Group):
        return [step for inner in part.parts for step in _steps(inner)]
    if isinstance(part, Comparison):
        return _steps(part.left)
    if isinstance(part, Function):
        return [step for inner in part.arguments if isinstance(inner, Step) for step in _steps(inner)]
    return [part] if part else []


def _check_names(event):
    for section in _steps(event.condition):
        if section.name not in ("System", "EventData", "UserData", "*"):
            raise QueryFault(f"an event has no {section.name}")
        if section.name != "System":
            continue
        for field in _steps(section.condition) + _steps(section.below):
            if field.name not in _SYSTEM:
                raise QueryFault(f"System has no {field.name}")
            for attribute in _steps(field.condition) + _steps(field.below):
                if attribute.name.lstrip("@") not in _SYSTEM[field.name] or not attribute.name.startswith("@"):
                    raise QueryFault(f"{field.name} has no {attribute.name}")


def parse(text):
    """The event that a query selects, as a Step; raises QueryFault for what Windows would not take."""
    parser = _Parser(text)
    event = parser.selector()
    if parser.expressions > MOST_EXPRESSIONS:
        raise QueryFault(f"{parser.expressions} expressions are more than {MOST_EXPRESSIONS}")
    _check_names(event)
    return event


def _values(node, step):
    """Texts and, for elements, truth of what a step finds below an ElementTree node."""
    if step.name.startswith("@"):
        value = node.get(step.name[1:])
        return [] if value is None else [value]
    found = [child for child in node if step.name in ("*", child.tag) and _holds(child, step.condition)]
    if step.below:
        return [value for child in found for value in _values(child, step.below)]
    return [child.text or "" for child in found]


def _compare(left, sign, right):
    if re.fullmatch(r"-?\d+(\.\d+)?", left) and re.fullmatch(r"-?\d+(\.\d+)?", right):
        left, right = float(left), float(right)
    return {"=": left == right, "!=": left != right, "<": left < right, "<=": left <= right, ">": left > right,
            ">=": left >= right}[sign]


def _holds(node, part):
    if part is None:
        return True
    if isinstance(part, Group):
        return {"and": all, "or": any}[part.word](_holds(node, inner) for inner in part.parts)
    if isinstance(part, Comparison) and isinstance(part.left, Step):
        return any(_compare(value, part.sign, part.value) for value in _values(node, part.left))
    if isinstance(part, Step):
        return bool(_values(node, part))
    raise NotImplementedError("functions of time, bits and positions are checked, not tried")


def selects(query, event):
    """Whether the query takes an event, an ElementTree element without namespace."""
    return _holds(event, parse(query).condition)
