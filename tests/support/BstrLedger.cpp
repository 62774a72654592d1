#include "tests/support/BstrLedger.h"

#include "tests/support/BstrRedirections.h"

#include <stdexcept>

namespace TestSupport
{
BstrLedger::BstrLedger(std::initializer_list<const wchar_t*> furtherModules)
{
    std::vector<HMODULE> modules{GetModuleHandleW(nullptr)};
    for (const wchar_t* name : furtherModules)
    {
        modules.push_back(LoadLibraryW(name));
        if (modules.back() == nullptr)
            throw std::runtime_error("a module of the ledger cannot be loaded");
    }
    const auto redirections = BstrRedirections();
    BstrAccount::Instance().Clear();
    for (const HMODULE module : modules)
    {
        for (const BstrRedirection& redirection : redirections)
        {
            m_lstRedirections.push_back(std::make_unique<Simulator::ImportRedirection>(
                module, redirection.m_pFunctionName, redirection.m_pReplacement));
        }
    }
}

BstrLedger::~BstrLedger()
{
    // In reverse order, as redirections ask for.
    while (!m_lstRedirections.empty())
        m_lstRedirections.pop_back();
}

std::size_t BstrLedger::Live() const
{
    BstrAccount& account = BstrAccount::Instance();
    const std::lock_guard lock(account.m_lock);
    return account.m_setLive.size();
}

std::vector<std::wstring> BstrLedger::LiveTexts() const
{
    BstrAccount& account = BstrAccount::Instance();
    const std::lock_guard lock(account.m_lock);
    std::vector<std::wstring> texts;
    for (const BSTR text : account.m_setLive)
        texts.emplace_back(text, SysStringLen(text));
    return texts;
}

std::size_t BstrLedger::Allocations() const
{
    BstrAccount& account = BstrAccount::Instance();
    const std::lock_guard lock(account.m_lock);
    return account.m_nAllocations;
}
} // namespace TestSupport
