"""The policies as a table in C++, for the test that holds it against the agent's code."""

_HEAD = """// Made of policies/policies.json.
#pragma once

#include <windows.h>

// A policy as the templates write it. A text that is null: the policy has no such data.
struct PolicyRow
{
    const wchar_t* m_pValue;
    const wchar_t* m_pKey; // below HKEY_LOCAL_MACHINE
    bool m_bEffectAtStart;
};
struct TextData
{
    const wchar_t* m_pValue;
    const wchar_t* m_pData;
};
struct TextSwitch
{
    const wchar_t* m_pValue;
    const wchar_t* m_pKey;
    const wchar_t* m_pOn;
    const wchar_t* m_pOff;
    bool m_bDefault;
};
struct NumberSwitch
{
    const wchar_t* m_pValue;
    DWORD m_dwOn;
    DWORD m_dwOff;
    bool m_bDefault;
};
struct NumberLimits
{
    const wchar_t* m_pValue;
    DWORD m_dwMinimum;
    DWORD m_dwMaximum;
    DWORD m_dwDefault;
};
struct NamedNumber
{
    const wchar_t* m_pName;
    int m_nNumber;
};
"""


def _literal(value):
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, int):
        return str(value)
    return 'L"' + value.replace("\\", "\\\\").replace('"', '\\"') + '"'


def _array(kind, name, rows):
    body = "".join("    {" + ", ".join(map(_literal, row)) + "},\n" for row in rows)
    return f"\ninline constexpr {kind} {name}[] = {{\n{body}}};\n"


def make(data):
    """The file's text."""
    keys, policies = data["keys"], data["policies"]

    def of(kind, value_type=None):
        return [policy for policy in policies if policy["kind"] == kind and value_type in (None, policy["type"])]

    def is_on(policy):
        return policy["default"] == policy["on"]

    return _HEAD + "".join((
        _array("PolicyRow", "g_policies", [(p["value"], keys[p["key"]], p["effect"] == "start") for p in policies]),
        _array("TextSwitch", "g_textSwitches",
               [(p["value"], keys[p["key"]], p["on"], p["off"], is_on(p)) for p in of("switch", "REG_SZ")]),
        _array("NumberSwitch", "g_numberSwitches",
               [(p["value"], p["on"], p["off"], is_on(p)) for p in of("switch", "REG_DWORD")]),
        _array("TextData", "g_choices", [(p["value"], choice) for p in of("choice") for choice in p["choices"]]),
        _array("TextData", "g_choiceDefaults", [(p["value"], p["default"]) for p in of("choice")]),
        _array("NumberLimits", "g_numbers",
               [(p["value"], p["minimum"], p["maximum"], p["default"]) for p in of("number")]),
        _array("NamedNumber", "g_levels", data["levels"].items()),
        _array("NamedNumber", "g_outlets", data["outlets"].items()),
    ))
