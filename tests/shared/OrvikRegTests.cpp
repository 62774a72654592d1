#include "shared/OrvikReg.h"

#include "shared/SharedException.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/HandleCount.h"
#include "tests/support/PolicyKey.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace
{
using namespace Orvik::Shared;
using namespace TestSupport;
using Simulator::Redirection;

static_assert(std::has_virtual_destructor_v<COrvikReg>);

constexpr const wchar_t* g_path = L"Software\\Orvik\\Test";

std::string MessageOf(const wchar_t* subKey, const wchar_t* valueName)
{
    try
    {
        const COrvikReg reg(HKEY_LOCAL_MACHINE, subKey, valueName, true);
    }
    catch (const CSharedException& exception)
    {
        return exception.what();
    }
    return "(none)";
}

TEST(OrvikReg, ValidatedNullNames_AreRefused)
{
    EXPECT_EQ(MessageOf(nullptr, L"Value"), "Invalid parameter value. lpszSubKey is a nullptr.");
    EXPECT_EQ(MessageOf(L"Key", nullptr), "Invalid parameter value. lpszValueName is a nullptr.");
    EXPECT_EQ(MessageOf(nullptr, nullptr), "Invalid parameter value. lpszSubKey is a nullptr.");
    EXPECT_EQ(MessageOf(L"", L""), "(none)");
}

TEST(OrvikReg, NullNamesWithoutValidation_CountAsEmpty)
{
    PolicyKey key(g_path);
    key.Text(L"", L"default value");
    wchar_t text[32]{};
    DWORD size = sizeof(text);
    EXPECT_EQ(COrvikReg(key.Handle(), nullptr, nullptr, false).GetValue(&size, text), ERROR_SUCCESS);
    EXPECT_STREQ(text, L"default value");
}

TEST(OrvikReg, DefaultConstructed_HasNoRoot)
{
    DWORD size = 0;
    EXPECT_EQ(COrvikReg().GetValue(&size, nullptr), ERROR_BAD_ARGUMENTS);
}

class OrvikRegValue : public testing::Test
{
protected:
    OrvikRegValue() { m_key.Text(L"Value", L"text"); }

    PolicyKey m_key{g_path};
    COrvikReg m_reg{HKEY_LOCAL_MACHINE, g_path, L"Value", true};
    wchar_t m_text[16]{};
    DWORD m_dwSize = sizeof(m_text);
};

TEST_F(OrvikRegValue, Value_IsRead)
{
    EXPECT_EQ(m_reg.GetValue(&m_dwSize, m_text), ERROR_SUCCESS);
    EXPECT_STREQ(m_text, L"text");
    EXPECT_EQ(m_dwSize, 5 * sizeof(wchar_t));
}

TEST_F(OrvikRegValue, NullBuffer_AsksForTheSize)
{
    EXPECT_EQ(m_reg.GetValue(&m_dwSize, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(m_dwSize, 5 * sizeof(wchar_t));
    m_dwSize = 0;
    EXPECT_EQ(m_reg.GetValue(&m_dwSize, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(m_dwSize, 5 * sizeof(wchar_t));
}

TEST_F(OrvikRegValue, BadArguments_GiveTheirCode)
{
    EXPECT_EQ(m_reg.GetValue(nullptr, m_text), 160);
    EXPECT_EQ(m_reg.GetValue(nullptr, nullptr), 160);
    m_dwSize = 0;
    EXPECT_EQ(m_reg.GetValue(&m_dwSize, m_text), 160);
}

TEST_F(OrvikRegValue, SmallBuffer_TellsTheSize)
{
    m_dwSize = 4;
    EXPECT_EQ(m_reg.GetValue(&m_dwSize, m_text), ERROR_MORE_DATA);
    EXPECT_EQ(m_dwSize, 5 * sizeof(wchar_t));
}

TEST_F(OrvikRegValue, MissingValueOrKey_IsNotFound)
{
    EXPECT_EQ(COrvikReg(HKEY_LOCAL_MACHINE, g_path, L"Other", true).GetValue(&m_dwSize, m_text), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(COrvikReg(HKEY_LOCAL_MACHINE, L"Software\\None", L"Value", true).GetValue(&m_dwSize, m_text),
              ERROR_FILE_NOT_FOUND);
}

TEST_F(OrvikRegValue, ReadValue_TellsTheType)
{
    m_key.Number(L"Number", 7);
    DWORD type = REG_NONE;
    DWORD number = 0;
    DWORD size = sizeof(number);
    EXPECT_EQ(COrvikReg::ReadValue(HKEY_LOCAL_MACHINE, g_path, L"Number", &type, &number, &size, 0), ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(number, 7u);
    EXPECT_EQ(size, 4u);
}

TEST_F(OrvikRegValue, ReadValueWithoutOutputs_OnlyTellsWhetherItIsThere)
{
    EXPECT_EQ(COrvikReg::ReadValue(HKEY_LOCAL_MACHINE, g_path, L"Value", nullptr, nullptr, nullptr, 0), ERROR_SUCCESS);
    EXPECT_EQ(COrvikReg::ReadValue(HKEY_LOCAL_MACHINE, g_path, L"None", nullptr, nullptr, nullptr, 0),
              ERROR_FILE_NOT_FOUND);
}

TEST_F(OrvikRegValue, ReadValueWithBadArguments_GivesTheirCode)
{
    EXPECT_EQ(COrvikReg::ReadValue(HKEY_LOCAL_MACHINE, g_path, L"Value", nullptr, m_text, nullptr, 0), 160);
    EXPECT_EQ(COrvikReg::ReadValue(nullptr, g_path, L"Value", nullptr, m_text, &m_dwSize, 0), 160);
    EXPECT_EQ(COrvikReg::ReadValue(HKEY_LOCAL_MACHINE, nullptr, L"Value", nullptr, m_text, &m_dwSize, 0), 160);
}

// Unlike GetValue it leaves a buffer without room to the system.
TEST_F(OrvikRegValue, ReadValueWithoutRoom_TellsTheSize)
{
    m_dwSize = 0;
    EXPECT_EQ(COrvikReg::ReadValue(HKEY_LOCAL_MACHINE, g_path, L"Value", nullptr, m_text, &m_dwSize, 0),
              ERROR_MORE_DATA);
    EXPECT_EQ(m_dwSize, 5 * sizeof(wchar_t));
}

TEST_F(OrvikRegValue, EveryOutcome_LeavesNoHandle)
{
    const COrvikReg missing(HKEY_LOCAL_MACHINE, g_path, L"None", true);
    const auto ask = [&]
    {
        for (int i = 0; i < 20; ++i)
        {
            m_dwSize = sizeof(m_text);
            EXPECT_EQ(m_reg.GetValue(&m_dwSize, m_text), ERROR_SUCCESS);
            EXPECT_EQ(missing.GetValue(&m_dwSize, nullptr), ERROR_FILE_NOT_FOUND);
        }
    };
    ask();
    const unsigned before = OpenHandleCount();
    ask();
    EXPECT_EQ(OpenHandleCount(), before);
}

std::wstring g_openedPath;
std::wstring g_queriedName;
REGSAM g_access;
LSTATUS g_openStatus;

LSTATUS WINAPI RecordedOpen(HKEY, LPCWSTR path, DWORD, REGSAM access, PHKEY key)
{
    g_openedPath = path;
    g_access = access;
    *key = nullptr;
    return g_openStatus;
}

LSTATUS WINAPI RecordedQuery(HKEY, LPCWSTR name, LPDWORD, LPDWORD, LPBYTE, LPDWORD)
{
    g_queriedName = name;
    return ERROR_SUCCESS;
}

class OrvikRegCalls : public testing::Test
{
protected:
    void SetUp() override
    {
        g_openedPath.clear();
        g_queriedName.clear();
        g_openStatus = ERROR_SUCCESS;
    }

    Redirection<decltype(RegOpenKeyExW)> m_open{"RegOpenKeyExW", &RecordedOpen};
    Redirection<decltype(RegQueryValueExW)> m_query{"RegQueryValueExW", &RecordedQuery};
    DWORD m_dwSize = 0;
};

TEST_F(OrvikRegCalls, Names_AreCutAt259Characters)
{
    for (const std::size_t length : {258, 259, 260, 5000})
    {
        const std::wstring name(length, L'n');
        const COrvikReg reg(HKEY_LOCAL_MACHINE, name.c_str(), name.c_str(), true);
        EXPECT_EQ(reg.GetValue(&m_dwSize, nullptr), ERROR_SUCCESS);
        EXPECT_EQ(g_openedPath, name.substr(0, 259));
        EXPECT_EQ(g_queriedName, name.substr(0, 259));
    }
}

TEST_F(OrvikRegCalls, ExtraFlags_AreAddedToTheAccess)
{
    COrvikReg reg(HKEY_LOCAL_MACHINE, L"Key", L"Value", true);
    EXPECT_EQ(reg.GetValue(&m_dwSize, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(g_access, 0x20019u);
    reg.SetExtraFlags(KEY_WOW64_64KEY);
    EXPECT_EQ(reg.GetValue(&m_dwSize, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(g_access, 0x20119u);
    EXPECT_EQ(COrvikReg::ReadValue(HKEY_LOCAL_MACHINE, L"Key", L"Value", nullptr, nullptr, nullptr, 0x200),
              ERROR_SUCCESS);
    EXPECT_EQ(g_access, 0x20219u);
}

TEST_F(OrvikRegCalls, RefusedKey_GivesTheCodeAndAsksNoValue)
{
    g_openStatus = ERROR_ACCESS_DENIED;
    const COrvikReg reg(HKEY_LOCAL_MACHINE, L"Key", L"Value", true);
    EXPECT_EQ(reg.GetValue(&m_dwSize, nullptr), ERROR_ACCESS_DENIED);
    EXPECT_EQ(g_queriedName, L"");
}
} // namespace
