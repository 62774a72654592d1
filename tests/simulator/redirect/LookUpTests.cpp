#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <memory>

namespace
{
using Simulator::Redirection;

// A function that this program looks up and does not import.
using LookedUp = int WINAPI();
constexpr const char* g_name = "GetUserDefaultGeoName";

int WINAPI One()
{
    return 1;
}

int WINAPI Two()
{
    return 2;
}

template <class Function>
FARPROC Address(Function* function)
{
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

FARPROC LookUp(const char* name, const wchar_t* module = L"kernel32.dll")
{
    return GetProcAddress(GetModuleHandleW(module), name);
}

TEST(LookUp, RedirectedName_GivesTheReplacement)
{
    const FARPROC real = LookUp(g_name);
    {
        const Redirection<LookedUp> redirection(g_name, &One);
        EXPECT_EQ(redirection.SlotCount(), 0u);
        EXPECT_EQ(LookUp(g_name), Address(&One));
    }
    EXPECT_EQ(LookUp(g_name), real);
}

TEST(LookUp, NameThatTheSystemLacks_CanBeRedirected)
{
    EXPECT_EQ(LookUp("FunctionOfTheFuture"), nullptr);
    const Redirection<LookedUp> redirection("FunctionOfTheFuture", &One);
    EXPECT_EQ(LookUp("FunctionOfTheFuture"), Address(&One));
}

TEST(LookUp, Nested_LastOneAnswers)
{
    const Redirection<LookedUp> outer(g_name, &One);
    {
        const Redirection<LookedUp> inner(g_name, &Two);
        EXPECT_EQ(LookUp(g_name), Address(&Two));
    }
    EXPECT_EQ(LookUp(g_name), Address(&One));
}

TEST(LookUp, OtherNames_GiveTheRealFunction)
{
    const FARPROC real = LookUp("GetTickCount64");
    const Redirection<LookedUp> redirection(g_name, &One);
    EXPECT_EQ(LookUp("GetTickCount64"), real);
    EXPECT_NE(real, nullptr);
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(LookUp("NoSuchFunction"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
}

TEST(LookUp, Ordinals_ReachTheRealFunction)
{
    // oleaut32 has had SysAllocString as number 2 since its first version.
    const HMODULE module = LoadLibraryW(L"oleaut32.dll");
    const FARPROC real = GetProcAddress(module, "SysAllocString");
    const Redirection<LookedUp> redirection("SysAllocString", &One);
    EXPECT_EQ(GetProcAddress(module, "SysAllocString"), Address(&One));
    EXPECT_EQ(GetProcAddress(module, reinterpret_cast<LPCSTR>(static_cast<ULONG_PTR>(2))), real);
}
} // namespace
