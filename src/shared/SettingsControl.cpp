#include "shared/SettingsControl.h"

#include "shared/FunctionName.h"
#include "shared/Log.h"
#include "shared/OwnerTypes.h"

#include <windows.h>

#include <cwchar>

using namespace Orvik::Shared;

namespace
{
struct PolicyLocation
{
    const wchar_t* m_pPath;
    const wchar_t* m_pTrying; // logged before the key is opened; null: nothing is
    const wchar_t* m_pFound;
};

// In the order of search. The 32-bit view is reached by its name: an administrator's 64-bit tools show the same paths.
constexpr PolicyLocation g_locations[] = {
    {L"SOFTWARE\\Policies\\Orvik\\Orvik Notifications", nullptr, L"Found in Orvik, native location"},
    {L"SOFTWARE\\Wow6432Node\\Policies\\Orvik\\Orvik Notifications", L"Try Orvik WOW", L"Found in WOW Orvik"},
    {L"SOFTWARE\\Policies\\Brannock-Vale\\Orvik Notifications", nullptr, L"Found in native, Brannock-Vale location"},
    {L"SOFTWARE\\Wow6432Node\\Policies\\Brannock-Vale\\Orvik Notifications", L"Try wow",
     L"Found in WOW, Brannock-Vale location."}};

// The first key that opens is the only one consulted, even when the value is missing there. Null: none opens.
UniqueRegKey OpenPolicyKey(const char* functionName)
{
    for (const PolicyLocation& location : g_locations)
    {
        if (location.m_pTrying != nullptr)
            Log(Level::Verbose, functionName, L"%s", location.m_pTrying);
        UniqueRegKey key;
        const LSTATUS opened =
            RegOpenKeyExW(HKEY_LOCAL_MACHINE, location.m_pPath, 0, KEY_QUERY_VALUE, ReceiveInto(key));
        if (opened == ERROR_SUCCESS && key)
        {
            Log(Level::Verbose, functionName, L"%s", location.m_pFound);
            return key;
        }
    }
    return {};
}

bool IsTrue(HKEY key, const wchar_t* valueName)
{
    wchar_t text[260];
    DWORD size = sizeof(text);
    DWORD type = REG_NONE;
    if (RegQueryValueExW(key, valueName, nullptr, &type, reinterpret_cast<BYTE*>(text), &size) != ERROR_SUCCESS)
        return false;
    if (type != REG_SZ && type != REG_EXPAND_SZ)
        return false;
    const size_t length = size / sizeof(wchar_t);
    const bool terminated = size % sizeof(wchar_t) == 0 && length != 0 && text[length - 1] == L'\0';
    return terminated && _wcsicmp(text, L"true") == 0;
}
} // namespace

bool CSettingsControl::GetRegistrySetting(const wchar_t* valueName)
{
    const UniqueRegKey key = OpenPolicyKey(ORVIK_FUNCTION);
    return key && IsTrue(key.get(), valueName);
}

bool AreAllNotificationsSuppressed()
{
    return CSettingsControl::GetRegistrySetting(L"SuppressAllNotifications");
}
