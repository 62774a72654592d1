#include "shared/LoggingPolicy.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/HandleCount.h"
#include "tests/support/PolicyKey.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
using namespace Orvik::Shared;
using namespace TestSupport;
using Simulator::Redirection;

std::wstring TextOf(HKEY key)
{
    wchar_t text[32]{};
    DWORD size = sizeof(text);
    RegQueryValueExW(key, L"Place", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
    return text;
}

bool IsOpen(HKEY key)
{
    return RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr) == ERROR_SUCCESS;
}

class LoggingPolicyKeys : public testing::Test
{
protected:
    void Open(const std::wstring& productName = {}) { OpenLoggingPolicyKeys(productName, m_hProduct, m_hModule); }

    UniqueRegKey m_hProduct;
    UniqueRegKey m_hModule;
};

TEST_F(LoggingPolicyKeys, NeitherExists_BothStayNull)
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, LoggingKey);
    Open();
    EXPECT_FALSE(m_hProduct);
    EXPECT_FALSE(m_hModule);
}

TEST_F(LoggingPolicyKeys, ProductKeyAlone_ModuleStaysNull)
{
    PolicyKey product(LoggingKey);
    product.Text(L"Place", L"product");
    Open();
    EXPECT_EQ(TextOf(m_hProduct.get()), L"product");
    EXPECT_FALSE(m_hModule);
}

TEST_F(LoggingPolicyKeys, BothExist_BothAreOpened)
{
    PolicyKey product(LoggingKey);
    product.Text(L"Place", L"product");
    PolicyKey module(LoggingModuleKey());
    module.Text(L"Place", L"module");
    Open();
    EXPECT_EQ(TextOf(m_hProduct.get()), L"product");
    EXPECT_EQ(TextOf(m_hModule.get()), L"module");
    EXPECT_TRUE(LoggingModuleKey().ends_with(L"\\shared_tests")) << LoggingModuleKey();
}

TEST_F(LoggingPolicyKeys, Override_NamesTheProduct)
{
    PolicyKey other(L"Software\\Policies\\Orvik\\Other Product");
    other.Text(L"Place", L"other");
    Open(L"Other Product");
    EXPECT_EQ(TextOf(m_hProduct.get()), L"other");
}

TEST_F(LoggingPolicyKeys, FormerKeys_AreClosed)
{
    PolicyKey product(LoggingKey);
    PolicyKey module(LoggingModuleKey());
    Open();
    const HKEY formerProduct = m_hProduct.get();
    const HKEY formerModule = m_hModule.get();
    ASSERT_TRUE(IsOpen(formerProduct) && IsOpen(formerModule));
    Open(L"No such product");
    EXPECT_FALSE(m_hProduct);
    EXPECT_FALSE(m_hModule);
    EXPECT_FALSE(IsOpen(formerProduct));
    EXPECT_FALSE(IsOpen(formerModule));
}

TEST_F(LoggingPolicyKeys, OpenedAgainAndAgain_LeavesNoHandle)
{
    PolicyKey product(LoggingKey);
    PolicyKey module(LoggingModuleKey());
    Open();
    const unsigned before = OpenHandleCount();
    for (int i = 0; i < 50; ++i)
        Open();
    EXPECT_EQ(OpenHandleCount(), before);
}

struct Opened
{
    HKEY m_hParent;
    std::wstring m_strPath;
    REGSAM m_access;
};
std::vector<Opened> g_opened;
LSTATUS g_openStatus;
unsigned g_failingOpen;

LSTATUS WINAPI RecordedOpen(HKEY parent, LPCWSTR path, DWORD, REGSAM access, PHKEY key)
{
    g_opened.push_back({parent, path, access});
    if (g_opened.size() == g_failingOpen)
        return g_openStatus;
    *key = reinterpret_cast<HKEY>(g_opened.size());
    return ERROR_SUCCESS;
}

LSTATUS WINAPI IgnoredClose(HKEY)
{
    return ERROR_SUCCESS;
}

class LoggingPolicyOpening : public LoggingPolicyKeys
{
protected:
    void SetUp() override
    {
        g_opened.clear();
        g_failingOpen = 0;
        g_openStatus = ERROR_ACCESS_DENIED;
    }

    void TearDown() override
    {
        m_hProduct.reset();
        m_hModule.reset();
    }

    Redirection<decltype(RegCloseKey)> m_close{"RegCloseKey", &IgnoredClose};
    Redirection<decltype(RegOpenKeyExW)> m_open{"RegOpenKeyExW", &RecordedOpen};
};

TEST_F(LoggingPolicyOpening, Keys_AreOpenedForReadingUnderTheirNames)
{
    Open();
    ASSERT_EQ(g_opened.size(), 2u);
    EXPECT_EQ(g_opened[0].m_hParent, HKEY_LOCAL_MACHINE);
    EXPECT_EQ(g_opened[0].m_strPath, L"Software\\Policies\\Orvik\\OrvikNotifications Application");
    EXPECT_EQ(g_opened[0].m_access, static_cast<REGSAM>(KEY_READ));
    EXPECT_EQ(g_opened[1].m_hParent, m_hProduct.get());
    EXPECT_EQ(g_opened[1].m_strPath, L"shared_tests");
    EXPECT_EQ(g_opened[1].m_access, static_cast<REGSAM>(KEY_READ));
}

TEST_F(LoggingPolicyOpening, ProductKeyRefused_ModuleKeyIsNotTried)
{
    g_failingOpen = 1;
    Open();
    EXPECT_EQ(g_opened.size(), 1u);
    EXPECT_FALSE(m_hProduct);
}

TEST_F(LoggingPolicyOpening, ModuleKeyRefused_ProductKeyIsKept)
{
    g_failingOpen = 2;
    Open();
    EXPECT_TRUE(m_hProduct);
    EXPECT_FALSE(m_hModule);
}

DWORD WINAPI NoModuleFileName(HMODULE, LPWSTR, DWORD)
{
    return 0;
}

TEST_F(LoggingPolicyOpening, UnknownProgramFile_OpensNothing)
{
    const Redirection<decltype(GetModuleFileNameW)> redirection("GetModuleFileNameW", &NoModuleFileName);
    Open();
    EXPECT_TRUE(g_opened.empty());
}

TEST_F(LoggingPolicyOpening, UnknownProgramFileWithOverride_OpensTheProductKeyOnly)
{
    const Redirection<decltype(GetModuleFileNameW)> redirection("GetModuleFileNameW", &NoModuleFileName);
    Open(L"Named");
    ASSERT_EQ(g_opened.size(), 1u);
    EXPECT_EQ(g_opened[0].m_strPath, L"Software\\Policies\\Orvik\\Named");
}
} // namespace
