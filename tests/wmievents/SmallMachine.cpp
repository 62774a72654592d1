#include "tests/wmievents/SmallMachine.h"

#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/StaticCommand.h"

#include <gtest/gtest.h>

#include <utility>

namespace Tests
{
namespace
{
constexpr CLSID g_domDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

StaticCommand g_command;
unsigned g_nToasts;
decltype(CoCreateInstance)* g_pfnCreate;

HRESULT WINAPI CreateStatic(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID* object)
{
    if (classId == g_domDocument30)
        return g_pfnCreate(classId, outer, context, iid, object);
    const bool isThere = classId == CLSID_PlixCommand || classId == CLSID_NULL;
    *object = isThere ? &g_command : nullptr;
    return isThere ? S_OK : REGDB_E_CLASSNOTREG;
}

HRESULT WINAPI NullClass(LPCOLESTR, LPCLSID classId)
{
    *classId = CLSID_NULL;
    return S_OK;
}

// As far as a toast comes here.
HRESULT WINAPI CountToast(HSTRING, REFIID, void** factory)
{
    ++g_nToasts;
    *factory = nullptr;
    return E_ACCESSDENIED;
}

HRESULT WINAPI RunAnything(LPUNKNOWN)
{
    return S_OK;
}
} // namespace

SmallMachine::SmallMachine(const wchar_t* machineId)
    : m_create("CoCreateInstance", &CreateStatic), m_progId("CLSIDFromProgID", &NullClass),
      m_run("OleRun", &RunAnything), m_toast("RoGetActivationFactory", &CountToast)
{
    g_pfnCreate = m_create.Original();
    g_command.m_pMachineId = machineId;
    g_nToasts = 0;
}

void SmallMachine::SetAuditLog(const wchar_t* xml)
{
    g_command.m_pAuditLog = xml;
}

unsigned SmallMachine::TakeToasts()
{
    return std::exchange(g_nToasts, 0);
}

std::set<std::wstring> SweepAllocations(const std::function<void()>& call, const std::function<void()>& afterEach)
{
    std::set<std::wstring> records;
    for (std::size_t nth = 1;; ++nth)
    {
        TestSupport::ClearLog();
        bool bitten = false;
        {
            const AllocationFault fault(nth);
            EXPECT_NO_THROW(call()) << "allocation " << nth;
            bitten = AllocationFault::HasBitten();
        }
        if (!bitten)
        {
            EXPECT_GT(nth, 1u);
            return records;
        }
        for (const std::wstring& line : TestSupport::OperationalLines())
            records.insert(line.substr(line.rfind(L'|') + 1));
        if (afterEach)
            afterEach();
    }
}
} // namespace Tests
