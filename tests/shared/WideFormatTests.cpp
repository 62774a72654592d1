#include "shared/WideFormat.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cwchar>
#include <string>

namespace
{
using Orvik::Shared::WideFormat;

// Formats that must be accepted; that others are refused is the business of the compiler checks beside this file.
static_assert(WideFormat<>(nullptr).Text() == nullptr);
static_assert(*WideFormat<>(L"").Text() == L'\0');
static_assert(*WideFormat<>(L"100 %%").Text() == L'1');
static_assert(*WideFormat<int, unsigned, long, short, bool, char>(L"%d%u%ld%hX%d%c").Text() == L'%');
static_assert(*WideFormat<HRESULT, DWORD>(L"%08X %-11u").Text() == L'%');
static_assert(*WideFormat<long long, ULONGLONG, SIZE_T>(L"%I64d %I64u %llu").Text() == L'%');
static_assert(*WideFormat<const wchar_t*, wchar_t*, const wchar_t*>(L"%s %ls %lS").Text() == L'%');
static_assert(*WideFormat<const char*, char*, const char*>(L"%S %hs %hS").Text() == L'%');
static_assert(*WideFormat<double, double, float>(L"%7.1Lf %f %g").Text() == L'%');
static_assert(*WideFormat<void*, const int*, HWND>(L"%p %p %p").Text() == L'%');
static_assert(*WideFormat<wchar_t>(L"%c").Text() == L'%');

template <class... Args>
std::wstring Print(WideFormat<std::type_identity_t<Args>...> format, Args... args)
{
    wchar_t buffer[256];
    const int length = _snwprintf(buffer, 256, format.Text(), args...);
    return std::wstring(buffer, static_cast<std::size_t>(length));
}

// What the check accepts means what it says to the runtime library.
TEST(WideFormat, AcceptedConversions_PrintTheirArguments)
{
    EXPECT_EQ(Print(L"%s|%ls|%lS", L"a", L"b", L"c"), L"a|b|c");
    EXPECT_EQ(Print(L"%S|%hs|%hS", "a", "b", "c"), L"a|b|c");
    EXPECT_EQ(Print(L"%d|%u|%08X|%hX|%c|%ld", -1, 2u, 0x80004005u, static_cast<short>(-1), L'x', -2L),
              L"-1|2|80004005|FFFF|x|-2");
    EXPECT_EQ(Print(L"%I64d|%llu|%I64X", -5'000'000'000LL, 5'000'000'000ULL, 0x123456789ULL),
              L"-5000000000|5000000000|123456789");
    EXPECT_EQ(Print(L"%7.1Lf|%.2f|%g", 12.34, 1.005, 0.5), L"   12.3|1.00|0.5");
    EXPECT_EQ(Print(L"%p|%%", static_cast<void*>(nullptr)), L"0000000000000000|%");
}
} // namespace
