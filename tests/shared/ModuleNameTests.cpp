#include "shared/ModuleName.h"

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <string>

namespace
{
using namespace Orvik::Shared;
using Simulator::Redirection;

std::wstring g_path;

// As the system does it: a path that does not fit is cut and terminated, and the whole room is returned.
DWORD WINAPI PathOfTheTest(HMODULE, LPWSTR buffer, DWORD size)
{
    if (g_path.empty())
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    const std::size_t fits = std::min<std::size_t>(g_path.size(), size - 1);
    std::copy_n(g_path.data(), fits, buffer);
    buffer[fits] = L'\0';
    return fits == g_path.size() ? static_cast<DWORD>(fits) : size;
}

class ModuleName : public testing::Test
{
protected:
    Redirection<decltype(GetModuleFileNameW)> m_redirection{"GetModuleFileNameW", &PathOfTheTest};
};

TEST_F(ModuleName, Path_LosesFolderAndExtension)
{
    g_path = L"C:\\Program Files\\Orvik\\OrvikNotifications.exe";
    EXPECT_EQ(ModuleBaseName(), L"OrvikNotifications");
}

TEST_F(ModuleName, PathBeside_TakesTheProgramsPlace)
{
    g_path = L"C:\\Program Files\\Orvik\\OrvikNotifications.exe";
    EXPECT_EQ(PathBesideProgram(L"other.exe"), L"C:\\Program Files\\Orvik\\other.exe");
    g_path = L"agent.exe";
    EXPECT_EQ(PathBesideProgram(L"other.exe"), L"agent.exe\\other.exe");
    g_path.clear();
    EXPECT_EQ(PathBesideProgram(L"other.exe"), L"\\other.exe");
}

TEST_F(ModuleName, SeveralDots_LoseTheLastExtensionOnly)
{
    g_path = L"C:\\a.b\\Orvik.Notifications.v2.exe";
    EXPECT_EQ(ModuleBaseName(), L"Orvik.Notifications.v2");
}

TEST_F(ModuleName, NoExtension_KeepsTheWholeName)
{
    g_path = L"C:\\folder.d\\Orvik";
    EXPECT_EQ(ModuleBaseName(), L"Orvik");
}

TEST_F(ModuleName, NoFolder_KeepsTheName)
{
    g_path = L"Orvik.exe";
    EXPECT_EQ(ModuleBaseName(), L"Orvik");
}

TEST_F(ModuleName, PathOf519Characters_IsReadWhole)
{
    g_path = L"C:\\" + std::wstring(508, L'x') + L"\\abc.exe";
    ASSERT_EQ(g_path.size(), 519u);
    EXPECT_EQ(ModuleBaseName(), L"abc");
}

TEST_F(ModuleName, PathThatDoesNotFit_IsCutAt519Characters)
{
    g_path = L"C:\\" + std::wstring(511, L'x') + L"\\abcdef.exe";
    EXPECT_EQ(ModuleBaseName(), L"abcd");
}

TEST_F(ModuleName, FailingCall_GivesNoNames)
{
    g_path.clear();
    EXPECT_EQ(ModuleBaseName(), L"");
    EXPECT_EQ(ProductName(), L"");
}

TEST_F(ModuleName, ProgramWithoutFile_HasNoProductName)
{
    g_path = L"C:\\no such folder\\Orvik.exe";
    EXPECT_EQ(ProductName(), L"");
}

unsigned g_versionQueries;

DWORD WINAPI CountedVersionSize(LPCWSTR, LPDWORD)
{
    ++g_versionQueries;
    return 0;
}

// A path that was cut may name another program.
TEST_F(ModuleName, PathOver259Characters_IsNotAskedForAProductName)
{
    const Redirection<decltype(GetFileVersionInfoSizeW)> redirection("GetFileVersionInfoSizeW", &CountedVersionSize);
    g_versionQueries = 0;
    g_path = L"C:\\" + std::wstring(256, L'x');
    ASSERT_EQ(g_path.size(), 259u);
    EXPECT_EQ(ProductName(), L"");
    EXPECT_EQ(g_versionQueries, 1u);
    g_path.push_back(L'x');
    EXPECT_EQ(ProductName(), L"");
    EXPECT_EQ(g_versionQueries, 1u);
}
} // namespace
