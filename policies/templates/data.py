"""The policies and their texts, read and checked before anything is made of them."""
import json
import re
import string
from pathlib import Path

FOLDER = Path(__file__).resolve().parents[1]
SOURCE = FOLDER / "policies.json"
TEXTS = FOLDER / "texts"
# The language of the guide and of the sample, for which it alone has texts.
GUIDE_LANGUAGE = "en-US"

_KINDS = {"switch": {"on", "off"}, "choice": {"choices"}, "number": {"minimum", "maximum"}}
_COMMON = {"value", "key", "category", "kind", "type", "default", "effect"}
_PYTHON_TYPES = {"REG_SZ": str, "REG_DWORD": int}
# Characters of a text that the agent reads, without the terminator.
_CAPACITY = {"LoggingType": 63, "MinLogLevel": 127, "MaxLogLevel": 127}
_USUAL_CAPACITY = 259
_DWORD_MAX = 0xFFFFFFFF


class DataError(Exception):
    """A fault of the data; its text names the place."""


def _require(condition, place, fault):
    if not condition:
        raise DataError(f"{place}: {fault}")


def _refuse_duplicates(pairs):
    keys = [key for key, _ in pairs]
    for key in keys:
        _require(keys.count(key) == 1, key, "stands twice")
    return dict(pairs)


def read_json(path):
    """A JSON file; a key that stands twice is a fault."""
    try:
        return json.loads(Path(path).read_text(encoding="utf-8"), object_pairs_hook=_refuse_duplicates)
    except (OSError, ValueError) as error:
        raise DataError(f"{path}: {error}") from None


def values_of(policy):
    """All data that the policy's templates can write into the registry; a number gives its limits."""
    if policy["kind"] == "switch":
        return [policy["on"], policy["off"]]
    if policy["kind"] == "choice":
        return list(policy["choices"])
    return [policy["minimum"], policy["maximum"]]


def _check_value(policy, value, place):
    kind = _PYTHON_TYPES[policy["type"]]
    _require(isinstance(value, kind) and not isinstance(value, bool), place, f"{value!r} is no {policy['type']}")
    if kind is int:
        _require(0 <= value <= _DWORD_MAX, place, f"{value} does not fit {policy['type']}")
    else:
        capacity = _CAPACITY.get(policy["value"], _USUAL_CAPACITY)
        _require(len(value) <= capacity, place, f"the agent reads {capacity} characters, {value!r} is longer")


def _check_policy(data, policy):
    place = policy.get("value", "a policy without value")
    kind = policy.get("kind")
    _require(kind in _KINDS, place, f"there is no kind {kind!r}")
    _require(set(policy) == _COMMON | _KINDS[kind], place, f"has the keys {sorted(policy)}")
    _require(policy["key"] in data["keys"], place, f"there is no key {policy['key']!r}")
    _require(policy["category"] in data["categories"], place, f"there is no category {policy['category']!r}")
    _require(policy["type"] in _PYTHON_TYPES, place, f"there is no type {policy['type']!r}")
    _require(policy["effect"] in ("event", "start"), place, f"there is no effect {policy['effect']!r}")
    for value in [*values_of(policy), policy["default"]]:
        _check_value(policy, value, place)
    if kind == "number":
        _require(policy["minimum"] <= policy["default"] <= policy["maximum"], place, "its default is outside its limits")
    else:
        _require(policy["default"] in values_of(policy), place, "its default is none of its values")
        _require(len(set(values_of(policy))) == len(values_of(policy)), place, "a value stands twice")


def read_policies(path=SOURCE):
    """The data, checked. Raises DataError."""
    data = read_json(path)
    names = [policy.get("value") for policy in data["policies"]]
    for name in names:
        _require(names.count(name) == 1, name, "stands twice")
    for policy in data["policies"]:
        _check_policy(data, policy)
    _require(re.fullmatch(r"[0-9]{1,4}\.[0-9]{1,5}", data["revision"]), "revision", "two numbers and a dot")
    return data


def _check_keys(place, found, wanted):
    _require(set(found) == set(wanted), place,
             f"missing {sorted(set(wanted) - set(found))}, unknown {sorted(set(found) - set(wanted))}")


def _fields(text):
    return {field for _, field, _, _ in string.Formatter().parse(text) if field is not None}


def read_texts(path, data):
    """The texts of one language, checked to be whole. Raises DataError."""
    texts = read_json(path)
    place = Path(path).stem
    is_guide = place == GUIDE_LANGUAGE
    _check_keys(place, texts, ["displayName", "description", "supported", "categories", "effect", "default", "place",
                               "firstKey", "subKey", "range", "quote", "or", "list", "sentence", "policies", "choices",
                               *(["sample"] if is_guide else [])])
    _check_keys(f"{place}/categories", texts["categories"], [data["root"], *data["categories"]])
    _check_keys(f"{place}/effect", texts["effect"], ("event", "start"))
    _check_keys(f"{place}/policies", texts["policies"], [policy["value"] for policy in data["policies"]])
    choices = {choice for policy in data["policies"] for choice in policy.get("choices", ())}
    _check_keys(f"{place}/choices", texts["choices"], choices)
    for policy in data["policies"]:
        keys = {"name", "off", "explain"} | (set() if policy["kind"] == "switch" else {"label"})
        _check_keys(f"{place}/policies/{policy['value']}", texts["policies"][policy["value"]],
                    keys | {"short"} if is_guide else keys)
    _require(_fields(texts["place"]) == {"key", "value", "type", "data"}, place, "place names key, value, type, data")
    _require(_fields(texts["default"]) == {"default"}, place, "default names default")
    _require(_fields(texts["range"]) == {"minimum", "maximum"}, place, "range names minimum, maximum")
    _require(_fields(texts["quote"]) == {"text"}, place, "quote names text")
    _check_filled(place, texts)
    return texts


def _check_filled(place, texts):
    for key, text in texts.items():
        if isinstance(text, dict):
            _check_filled(f"{place}/{key}", text)
        else:
            # Some writings have no blank between sentences.
            _require(isinstance(text, str) and (text.strip() or key == "sentence"), f"{place}/{key}", "is empty")


def languages(folder=TEXTS):
    """Language tag -> file, for instance "en-US"."""
    return {path.stem: path for path in sorted(Path(folder).glob("*.json"))}
