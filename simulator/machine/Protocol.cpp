#include "simulator/machine/Protocol.h"

namespace Simulator::Protocol
{
namespace
{
constexpr wchar_t g_markerKey[] = L"SOFTWARE\\Orvik Simulator";
constexpr wchar_t g_markerValue[] = L"SimulatedMachine";

std::wstring PipeName(std::wstring_view channel, const wchar_t* purpose)
{
    return std::wstring(L"\\\\.\\pipe\\").append(channel).append(L"-").append(purpose);
}
} // namespace

std::wstring CommandPipeName(std::wstring_view channel)
{
    return PipeName(channel, L"commands");
}

std::wstring JournalPipeName(std::wstring_view channel)
{
    return PipeName(channel, L"journal");
}

bool IsPreparedMachine()
{
    DWORD value = 0;
    DWORD size = sizeof(value);
    return RegGetValueW(HKEY_LOCAL_MACHINE, g_markerKey, g_markerValue, RRF_RT_REG_DWORD, nullptr, &value, &size) ==
               ERROR_SUCCESS &&
           value == 1;
}

LSTATUS MarkPreparedMachine()
{
    const DWORD value = 1;
    return RegSetKeyValueW(HKEY_LOCAL_MACHINE, g_markerKey, g_markerValue, REG_DWORD, &value, sizeof(value));
}
} // namespace Simulator::Protocol
