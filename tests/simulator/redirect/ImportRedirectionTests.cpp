#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <comutil.h>
#include <msxml2.h>
#include <objbase.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace
{
using Simulator::ImportRedirection;
using Simulator::Redirection;

DWORD WINAPI OneMillion()
{
    return 1'000'000;
}

DWORD WINAPI TwoMillions()
{
    return 2'000'000;
}

using TickRedirection = Redirection<decltype(GetTickCount)>;
constexpr const char* g_name = "GetTickCount";

TEST(ImportRedirection, ForItsLife_TheReplacementIsCalled)
{
    const DWORD before = GetTickCount();
    {
        const TickRedirection redirection(g_name, &OneMillion);
        EXPECT_EQ(GetTickCount(), 1'000'000u);
        EXPECT_EQ(redirection.SlotCount(), 1u);
    }
    EXPECT_GE(GetTickCount(), before);
    EXPECT_LT(GetTickCount() - before, 60'000u);
}

TEST(ImportRedirection, Nested_LastOneIsCalledAndTheFormerComesBack)
{
    const TickRedirection outer(g_name, &OneMillion);
    {
        const TickRedirection inner(g_name, &TwoMillions);
        EXPECT_EQ(GetTickCount(), 2'000'000u);
        EXPECT_EQ(inner.Original(), &OneMillion);
    }
    EXPECT_EQ(GetTickCount(), 1'000'000u);
}

const TickRedirection* g_redirection;

DWORD WINAPI RealTimePlusOneHour()
{
    return g_redirection->Original()() + 3'600'000;
}

TEST(ImportRedirection, ReplacementThatCallsTheOriginal_DoesNotCallItself)
{
    const DWORD before = GetTickCount();
    const TickRedirection redirection(g_name, &RealTimePlusOneHour);
    g_redirection = &redirection;
    EXPECT_GE(GetTickCount() - before, 3'600'000u);
    EXPECT_LT(GetTickCount() - before, 3'660'000u);
}

// The redirection's own work goes through the same import table.
TEST(ImportRedirection, FunctionsThatItNeedsItself_CanBeRedirected)
{
    static decltype(VirtualProtect)* real;
    static int calls;
    calls = 0;
    {
        const Redirection<decltype(VirtualProtect)> redirection(
            "VirtualProtect",
            [](LPVOID place, SIZE_T size, DWORD protection, PDWORD before) -> WINBOOL
            {
                ++calls;
                return real(place, size, protection, before);
            });
        real = redirection.Original();
        const TickRedirection inner(g_name, &OneMillion);
        EXPECT_EQ(GetTickCount(), 1'000'000u);
        EXPECT_GT(calls, 0);
    }
    const int after = calls;
    const TickRedirection redirection(g_name, &OneMillion);
    EXPECT_EQ(calls, after);
}

TEST(ImportRedirection, FunctionThatIsNotImported_HasNoSlot)
{
    const ImportRedirection redirection(nullptr, "NoSuchFunction", reinterpret_cast<void*>(&OneMillion));
    EXPECT_EQ(redirection.SlotCount(), 0u);
    EXPECT_EQ(redirection.Original(), nullptr);
}

TEST(ImportRedirection, NameIsCaseSensitive)
{
    const TickRedirection redirection("gettickcount", &OneMillion);
    EXPECT_EQ(redirection.SlotCount(), 0u);
}

TEST(ImportRedirection, ManyThreadsMeanwhile_GetEitherAnswer)
{
    std::atomic<bool> stop{false};
    std::atomic<unsigned> replaced{0};
    std::atomic<unsigned> strange{0};
    const DWORD start = GetTickCount();
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
    {
        threads.emplace_back(
            [&]
            {
                while (!stop)
                {
                    const DWORD ticks = GetTickCount();
                    if (ticks == 1'000'000)
                        ++replaced;
                    else if (ticks - start > 600'000)
                        ++strange;
                }
            });
    }
    for (int i = 0; i < 2000 || (replaced == 0 && i < 200'000); ++i)
        const TickRedirection redirection(g_name, &OneMillion);
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GT(replaced, 0u);
    EXPECT_EQ(strange, 0u);
}

unsigned g_allocations;
decltype(SysAllocString)* g_realAllocation;

BSTR WINAPI CountedAllocation(const OLECHAR* text)
{
    ++g_allocations;
    return g_realAllocation(text);
}

TEST(ImportRedirection, AnotherModule_IsRedirectedAlone)
{
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    IXMLDOMDocument* document = nullptr;
    CLSID classId{};
    ASSERT_EQ(CLSIDFromProgID(L"Msxml2.DOMDocument.3.0", &classId), S_OK);
    ASSERT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument,
                               reinterpret_cast<void**>(&document)),
              S_OK);
    {
        const Redirection<decltype(SysAllocString)> redirection(GetModuleHandleW(L"msxml3.dll"), "SysAllocString",
                                                                &CountedAllocation);
        ASSERT_EQ(redirection.SlotCount(), 1u);
        g_realAllocation = redirection.Original();
        g_allocations = 0;
        const _bstr_t fromHere(L"from here");
        EXPECT_EQ(g_allocations, 0u);
        _bstr_t name;
        EXPECT_EQ(document->get_nodeName(name.GetAddress()), S_OK);
        EXPECT_STREQ(name, L"#document");
        EXPECT_EQ(g_allocations, 1u);
    }
    document->Release();
    CoUninitialize();
}
} // namespace
