#include "shared/ModuleName.h"

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace
{
using namespace Orvik::Shared;
using Simulator::Redirection;

TEST(ProductName, OwnVersionResource_GivesTheName)
{
    EXPECT_EQ(ProductName(), L"OrvikNotifications Application");
}

DWORD WINAPI NoVersionSize(LPCWSTR, LPDWORD)
{
    SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
    return 0;
}

TEST(ProductName, NoVersionResource_GivesNone)
{
    const Redirection<decltype(GetFileVersionInfoSizeW)> redirection("GetFileVersionInfoSizeW", &NoVersionSize);
    ASSERT_NE(redirection.SlotCount(), 0u);
    EXPECT_EQ(ProductName(), L"");
}

WINBOOL WINAPI NoVersion(LPCWSTR, DWORD, DWORD, LPVOID)
{
    SetLastError(ERROR_READ_FAULT);
    return FALSE;
}

TEST(ProductName, UnreadableVersionResource_GivesNone)
{
    const Redirection<decltype(GetFileVersionInfoW)> redirection("GetFileVersionInfoW", &NoVersion);
    ASSERT_NE(redirection.SlotCount(), 0u);
    EXPECT_EQ(ProductName(), L"");
}

// Blocks of a version resource; a length of -1 stands for the length of the text with its terminator.
struct Block
{
    const wchar_t* m_pText;
    int m_nLength = -1;
};
std::map<std::wstring, Block> g_blocks;

WINBOOL WINAPI BlocksOfTheTest(LPCVOID, LPCWSTR name, LPVOID* value, PUINT length)
{
    const auto found = g_blocks.find(name);
    if (found == g_blocks.end())
        return FALSE;
    const Block& block = found->second;
    *value = const_cast<wchar_t*>(block.m_pText);
    *length = block.m_nLength >= 0 ? static_cast<UINT>(block.m_nLength) : static_cast<UINT>(wcslen(block.m_pText) + 1);
    return TRUE;
}

class ProductNameBlocks : public testing::Test
{
protected:
    static constexpr const wchar_t* Multilingual = L"\\StringFileInfo\\040904E4\\ProductName";
    static constexpr const wchar_t* Unicode = L"\\StringFileInfo\\040904B0\\ProductName";

    void SetUp() override { g_blocks.clear(); }

    Redirection<decltype(VerQueryValueW)> m_redirection{"VerQueryValueW", &BlocksOfTheTest};
};

TEST_F(ProductNameBlocks, BothBlocks_FirstWins)
{
    g_blocks = {{Multilingual, {L"first"}}, {Unicode, {L"second"}}};
    EXPECT_EQ(ProductName(), L"first");
}

TEST_F(ProductNameBlocks, FirstMissing_SecondIsTaken)
{
    g_blocks = {{Unicode, {L"second"}}};
    EXPECT_EQ(ProductName(), L"second");
}

TEST_F(ProductNameBlocks, FirstEmpty_SecondIsTaken)
{
    g_blocks = {{Multilingual, {L""}}, {Unicode, {L"second"}}};
    EXPECT_EQ(ProductName(), L"second");
    g_blocks[Multilingual] = {L"", 0};
    EXPECT_EQ(ProductName(), L"second");
}

TEST_F(ProductNameBlocks, BothMissing_GiveNone)
{
    EXPECT_EQ(ProductName(), L"");
}

TEST_F(ProductNameBlocks, LengthWithoutTerminator_IsNotExceeded)
{
    g_blocks = {{Multilingual, {L"nameJUNK", 4}}};
    EXPECT_EQ(ProductName(), L"name");
}

TEST_F(ProductNameBlocks, LengthBeyondTheTerminator_EndsThere)
{
    g_blocks = {{Multilingual, {L"name\0JUNK", 9}}};
    EXPECT_EQ(ProductName(), L"name");
}
} // namespace
