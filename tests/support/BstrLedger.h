#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace TestSupport
{
// Counts the BSTRs that were allocated since the object was made and are not freed, by redirecting the automation
// functions of the program and, on request, of other loaded modules: with L"msxml3.dll" the texts that MSXML hands out
// count too. Frees inside VariantClear, VariantCopy, VariantCopyInd, VariantChangeType and SafeArrayDestroy are seen. A
// BSTR from elsewhere may be freed; it never counted. One ledger at a time; any thread may allocate and free.
class BstrLedger
{
public:
    explicit BstrLedger(std::initializer_list<const wchar_t*> furtherModules = {});
    BstrLedger(const BstrLedger&) = delete;
    BstrLedger& operator=(const BstrLedger&) = delete;
    ~BstrLedger();

    [[nodiscard]] std::size_t Live() const;
    // The texts that are alive: for the message of a failed assertion, EXPECT_THAT(ledger.LiveTexts(), IsEmpty()).
    [[nodiscard]] std::vector<std::wstring> LiveTexts() const;
    // All allocations so far: proof that the ledger saw something.
    [[nodiscard]] std::size_t Allocations() const;

private:
    std::vector<std::unique_ptr<Simulator::ImportRedirection>> m_lstRedirections;
};
} // namespace TestSupport
