#include "simulator/toasts/RuntimeText.h"

#include <winstring.h>

namespace Simulator
{
namespace
{
struct StringFunctions
{
    decltype(WindowsCreateString)* m_pfnCreate = nullptr;
    decltype(WindowsDeleteString)* m_pfnDelete = nullptr;
    decltype(WindowsGetStringRawBuffer)* m_pfnBuffer = nullptr;
};

const StringFunctions& Functions()
{
    static const StringFunctions functions = []
    {
        StringFunctions found;
        if (HMODULE combase = LoadLibraryExW(L"combase.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32); combase != nullptr)
        {
            const auto find = [combase](const char* name)
            { return reinterpret_cast<void*>(GetProcAddress(combase, name)); };
            found.m_pfnCreate = reinterpret_cast<decltype(WindowsCreateString)*>(find("WindowsCreateString"));
            found.m_pfnDelete = reinterpret_cast<decltype(WindowsDeleteString)*>(find("WindowsDeleteString"));
            found.m_pfnBuffer =
                reinterpret_cast<decltype(WindowsGetStringRawBuffer)*>(find("WindowsGetStringRawBuffer"));
        }
        return found;
    }();
    return functions;
}
} // namespace

HRESULT RuntimeText::Prepare()
{
    const StringFunctions& functions = Functions();
    const bool complete =
        functions.m_pfnCreate != nullptr && functions.m_pfnDelete != nullptr && functions.m_pfnBuffer != nullptr;
    return complete ? S_OK : E_NOTIMPL;
}

HRESULT RuntimeText::Create(std::wstring_view text, HSTRING* result)
{
    *result = nullptr;
    if (const HRESULT hr = Prepare(); FAILED(hr))
        return hr;
    return Functions().m_pfnCreate(text.data(), static_cast<UINT32>(text.size()), result);
}

std::wstring_view RuntimeText::View(HSTRING string)
{
    if (string == nullptr || FAILED(Prepare()))
        return {};
    UINT32 length = 0;
    const wchar_t* text = Functions().m_pfnBuffer(string, &length);
    return {text, length};
}

void RuntimeText::Free(HSTRING string)
{
    if (string != nullptr && SUCCEEDED(Prepare()))
        Functions().m_pfnDelete(string);
}
} // namespace Simulator
