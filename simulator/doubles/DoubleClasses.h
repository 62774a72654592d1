#pragma once

#include "simulator/doubles/ClassFactoryDouble.h"

#include <string>
#include <string_view>
#include <vector>

namespace Simulator
{
inline constexpr CLSID WbemLocatorClassId = {
    0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
inline constexpr CLSID UnsecuredApartmentClassId = {
    0x49BD2028, 0x1523, 0x11D1, {0xAD, 0x79, 0x00, 0xC0, 0x4F, 0xD8, 0xFD, 0xFF}};

// A class of the simulated machine.
struct DoubleClass
{
    CLSID m_classId;
    const char* m_pszName; // as in the journal: "PlixCommand", "PlixNotification", "WbemLocator", "UnsecuredApartment"
    const char* m_pszFact; // false at this place means: not installed on the machine
    DWORD m_dwContext;     // CLSCTX_ bits that it can be created with
    const wchar_t* m_pszProgId; // null: none
    ClassFactoryDouble::Maker m_pfnMaker;
};

// "/platform/registered", "/notification/registered", "/wmi/registered", "/unsecured-apartment/registered".
[[nodiscard]] const std::vector<DoubleClass>& DoubleClasses();
// Null for a class that is none of the simulated machine's.
[[nodiscard]] const DoubleClass* FindDoubleClass(REFCLSID classId);
[[nodiscard]] const DoubleClass* FindDoubleClass(std::wstring_view progId);
[[nodiscard]] bool IsRegistered(const DoubleClass& doubleClass);

// What a DLL's DllGetClassObject answers: a class factory of one of the classes, CLASS_E_CLASSNOTAVAILABLE for any
// other class and for one that a fact switches off.
[[nodiscard]] HRESULT GetDoubleClassObject(REFCLSID classId, REFIID iid, void** object);

// One value under HKEY_LOCAL_MACHINE\Software\Classes, all of type REG_SZ.
struct RegistryEntry
{
    std::wstring m_strKey;  // below HKEY_LOCAL_MACHINE
    std::wstring m_strName; // empty: the default value
    std::wstring m_strValue;
};

// What makes COM load that DLL for every in-process class: class identifiers and ProgIDs. The unsecured apartment is a
// local server, which UnsecuredApartmentServer.h is; it has no entry.
[[nodiscard]] std::vector<RegistryEntry> RegistryEntries(std::wstring_view dllPath);
} // namespace Simulator
