#include "tests/res/AgentModule.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace ResourceTests
{

namespace
{

class VersionResource : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::wstring path = AgentPath();
        DWORD unused = 0;
        const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &unused);
        ASSERT_NE(size, 0u) << "error " << GetLastError();
        m_info.resize(size);
        ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, size, m_info.data()));
    }

    std::wstring String(const wchar_t* subBlock) const
    {
        void* value = nullptr;
        UINT length = 0;
        if (!VerQueryValueW(m_info.data(), subBlock, &value, &length) || length == 0)
        {
            return L"(absent)";
        }
        return static_cast<const wchar_t*>(value);
    }

    std::vector<BYTE> m_info;
};

const std::wstring versionText = WindowsPath(ORVIK_VERSION_TEXT);

TEST_F(VersionResource, ProductName_IsTheNameOfThePolicyKey)
{
    EXPECT_EQ(String(L"\\StringFileInfo\\040904E4\\ProductName"), L"OrvikNotifications Application");
}

TEST_F(VersionResource, Strings_NameProgramAndVersion)
{
    EXPECT_EQ(String(L"\\StringFileInfo\\040904E4\\CompanyName"), L"Orvik");
    EXPECT_EQ(String(L"\\StringFileInfo\\040904E4\\FileDescription"), L"Orvik Notifications");
    EXPECT_EQ(String(L"\\StringFileInfo\\040904E4\\InternalName"), L"OrvikNotifications");
    EXPECT_EQ(String(L"\\StringFileInfo\\040904E4\\OriginalFilename"), L"OrvikNotifications.exe");
    EXPECT_EQ(String(L"\\StringFileInfo\\040904E4\\LegalCopyright"), L"Copyright (C) Orvik");
    EXPECT_EQ(String(L"\\StringFileInfo\\040904E4\\FileVersion"), versionText);
    EXPECT_EQ(String(L"\\StringFileInfo\\040904E4\\ProductVersion"), versionText);
}

TEST_F(VersionResource, UnicodeBlock_IsAbsent)
{
    EXPECT_EQ(String(L"\\StringFileInfo\\040904B0\\ProductName"), L"(absent)");
}

TEST_F(VersionResource, Translation_MatchesTheStringBlock)
{
    void* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(m_info.data(), L"\\VarFileInfo\\Translation", &value, &length));
    ASSERT_EQ(length, 2 * sizeof(WORD));
    EXPECT_EQ(static_cast<const WORD*>(value)[0], 0x0409);
    EXPECT_EQ(static_cast<const WORD*>(value)[1], 0x04E4);
}

TEST_F(VersionResource, Numbers_MatchTheVersionText)
{
    void* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(m_info.data(), L"\\", &value, &length));
    ASSERT_GE(length, sizeof(VS_FIXEDFILEINFO));
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(value);

    wchar_t text[64] = {};
    _snwprintf(text, 63, L"%u.%u.%u.%u", HIWORD(fixed.dwFileVersionMS), LOWORD(fixed.dwFileVersionMS),
               HIWORD(fixed.dwFileVersionLS), LOWORD(fixed.dwFileVersionLS));
    EXPECT_EQ(text, versionText);
    EXPECT_EQ(fixed.dwProductVersionMS, fixed.dwFileVersionMS);
    EXPECT_EQ(fixed.dwProductVersionLS, fixed.dwFileVersionLS);
    EXPECT_EQ(fixed.dwFileType, static_cast<DWORD>(VFT_APP));
    EXPECT_EQ(fixed.dwFileFlags & fixed.dwFileFlagsMask, 0u);
}

TEST_F(VersionResource, Module_HoldsOneVersionInEnglish)
{
    const CAgentModule agent;
    EXPECT_EQ(agent.Names(TypeNumber(RT_VERSION)), std::vector<WORD>{VS_VERSION_INFO});
    EXPECT_EQ(agent.Languages(TypeNumber(RT_VERSION), VS_VERSION_INFO), std::vector<WORD>{English});
}

} // namespace

} // namespace ResourceTests
