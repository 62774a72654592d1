#include "simulator/console/Environment.h"

#include <windows.h>

#include <memory>

namespace Simulator
{
namespace
{
struct CaseInsensitive
{
    bool operator()(const std::wstring& left, const std::wstring& right) const
    {
        return lstrcmpiW(left.c_str(), right.c_str()) < 0;
    }
};

struct StringsFreer
{
    void operator()(wchar_t* strings) const { FreeEnvironmentStringsW(strings); }
};
} // namespace

std::wstring EnvironmentBlock(const EnvironmentChanges& changes)
{
    std::map<std::wstring, std::wstring, CaseInsensitive> variables;
    const std::unique_ptr<wchar_t, StringsFreer> own(GetEnvironmentStringsW());
    for (const wchar_t* variable = own.get(); *variable != L'\0'; variable += wcslen(variable) + 1)
    {
        const std::wstring text(variable);
        // The names of the current folders of drives begin with "=".
        const std::size_t equals = text.find(L'=', 1);
        if (equals != std::wstring::npos)
            variables[text.substr(0, equals)] = text.substr(equals + 1);
    }
    for (const auto& [name, value] : changes)
        variables[name] = value;

    std::wstring block;
    for (const auto& [name, value] : variables)
        block.append(name).append(L"=").append(value).append(1, L'\0');
    return block.append(1, L'\0');
}

std::wstring ExpandVariables(const std::wstring& text)
{
    std::wstring expanded(32768, L'\0');
    const DWORD length = ExpandEnvironmentStringsW(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
    expanded.resize(length > 0 ? length - 1 : 0);
    return expanded;
}
} // namespace Simulator
