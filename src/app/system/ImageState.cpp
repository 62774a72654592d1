#include "app/system/ImageState.h"

#include "shared/OrvikReg.h"
#include "shared/TraceScope.h"

#include <cwchar>
#include <iterator>

using Orvik::Shared::COrvikReg;
using Orvik::Shared::TraceScope;

namespace
{
constexpr std::size_t g_nTextCapacity = 260;

// A registry value as text; it need not be terminated in the registry.
class RegistryText
{
public:
    // False when the value is missing, longer than 260 characters or no text.
    bool Read(const wchar_t* subKey, const wchar_t* valueName, DWORD extraFlags)
    {
        DWORD type = REG_NONE;
        DWORD length = g_nTextCapacity * sizeof(wchar_t);
        if (COrvikReg::ReadValue(HKEY_LOCAL_MACHINE, subKey, valueName, &type, m_szText, &length, extraFlags) !=
            ERROR_SUCCESS)
            return false;
        m_szText[length / sizeof(wchar_t)] = L'\0';
        return type == REG_SZ || type == REG_EXPAND_SZ;
    }

    [[nodiscard]] wchar_t* Text() noexcept { return m_szText; }

private:
    wchar_t m_szText[g_nTextCapacity + 1]{};
};
} // namespace

BOOL IsImageStillBuilding()
{
    TraceScope trace(ORVIK_FUNCTION);
    constexpr const wchar_t* subKey = LR"(Software\Orvik\Orvik Image)";
    constexpr const wchar_t* valueName = L"StateName";
    RegistryText state;
    if (!state.Read(subKey, valueName, 0) && !state.Read(subKey, valueName, KEY_WOW64_64KEY))
        return trace.Exit(FALSE);
    const int order = CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, state.Text(), -1, L"IMAGE_STATE_COMPLETE", -1);
    return trace.Exit(order != CSTR_EQUAL ? TRUE : FALSE);
}

int GetWindowsImageState()
{
    TraceScope trace(ORVIK_FUNCTION);
    static constexpr const wchar_t* states[] = {
        L"IMAGE_STATE_COMPLETE",
        L"IMAGE_STATE_UNDEPLOYABLE",
        L"IMAGE_STATE_GENERALIZE_RESEAL_TO_OOBE",
        L"IMAGE_STATE_GENERALIZE_RESEAL_TO_AUDIT",
        L"IMAGE_STATE_SPECIALIZE_RESEAL_TO_OOBE",
        L"IMAGE_STATE_SPECIALIZE_RESEAL_TO_AUDIT",
    };
    RegistryText state;
    if (!state.Read(LR"(SOFTWARE\Microsoft\Windows\CurrentVersion\Setup\State)", L"ImageState", 0))
        return trace.Exit(0);
    _wcsupr_s(state.Text(), g_nTextCapacity + 1);
    for (int i = 0; i < static_cast<int>(std::size(states)); ++i)
    {
        if (std::wcsncmp(state.Text(), states[i], g_nTextCapacity) == 0)
            return trace.Exit(i + 1);
    }
    return trace.Exit(0);
}
