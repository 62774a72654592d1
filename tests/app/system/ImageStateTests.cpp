#include "app/system/ImageState.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

using testing::ElementsAre;
using TestSupport::BytesOf;
using TestSupport::PolicyKey;

namespace
{
constexpr const wchar_t* g_pszOrvikImage = L"Software\\Orvik\\Orvik Image";
constexpr const wchar_t* g_pszSetupState = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup\\State";

int WindowsState(std::wstring_view text)
{
    PolicyKey key(g_pszSetupState);
    key.Text(L"ImageState", text);
    return GetWindowsImageState();
}

// Notes how registry keys are opened, and fails as often as told.
struct OpenedKeys
{
    decltype(RegOpenKeyExW)* m_pfnOpen = nullptr;
    std::vector<std::pair<std::wstring, REGSAM>> m_lstOpened;
    unsigned m_nFailures = 0;
};
OpenedKeys g_openedKeys;

LSTATUS WINAPI NotedOpen(HKEY root, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY key)
{
    if (std::wstring_view(subKey).find(L"Image") == std::wstring_view::npos &&
        std::wstring_view(subKey).find(L"State") == std::wstring_view::npos)
        return g_openedKeys.m_pfnOpen(root, subKey, options, access, key);
    g_openedKeys.m_lstOpened.emplace_back(subKey, access);
    if (g_openedKeys.m_nFailures != 0)
    {
        --g_openedKeys.m_nFailures;
        return ERROR_FILE_NOT_FOUND;
    }
    return g_openedKeys.m_pfnOpen(root, subKey, options, access, key);
}

class ImageStateOpening : public testing::Test
{
protected:
    ImageStateOpening()
    {
        g_openedKeys = OpenedKeys();
        g_openedKeys.m_pfnOpen = m_open.Original();
    }

    Simulator::Redirection<decltype(RegOpenKeyExW)> m_open{"RegOpenKeyExW", &NotedOpen};
};
} // namespace

TEST(ImageStillBuilding, Ask_NoKey_IsFalse)
{
    EXPECT_EQ(IsImageStillBuilding(), FALSE);
}

TEST(ImageStillBuilding, Ask_NoValue_IsFalse)
{
    const PolicyKey key(g_pszOrvikImage);
    EXPECT_EQ(IsImageStillBuilding(), FALSE);
}

TEST(ImageStillBuilding, Ask_CompleteInAnyCase_IsFalse)
{
    PolicyKey key(g_pszOrvikImage);
    for (const wchar_t* text : {L"IMAGE_STATE_COMPLETE", L"image_state_complete", L"Image_State_Complete"})
    {
        key.Text(L"StateName", text);
        EXPECT_EQ(IsImageStillBuilding(), FALSE) << text;
    }
}

TEST(ImageStillBuilding, Ask_AnyOtherText_IsTrue)
{
    PolicyKey key(g_pszOrvikImage);
    for (const wchar_t* text : {L"", L"IMAGE_STATE_COMPLETE ", L"IMAGE_STATE_COMPLET", L"IMAGE_STATE_BUILDING", L"1"})
    {
        key.Text(L"StateName", text);
        EXPECT_EQ(IsImageStillBuilding(), TRUE) << text;
    }
}

TEST(ImageStillBuilding, Ask_ExpandableText_CountsAsText)
{
    PolicyKey key(g_pszOrvikImage);
    key.Text(L"StateName", L"IMAGE_STATE_COMPLETE", REG_EXPAND_SZ);
    EXPECT_EQ(IsImageStillBuilding(), FALSE);
}

TEST(ImageStillBuilding, Ask_ValueWithoutTerminator_IsReadToItsEnd)
{
    PolicyKey key(g_pszOrvikImage);
    key.Raw(L"StateName", REG_SZ, BytesOf(L"IMAGE_STATE_COMPLETE"));
    EXPECT_EQ(IsImageStillBuilding(), FALSE);
    key.Raw(L"StateName", REG_SZ, BytesOf(std::wstring(260, L'x')));
    EXPECT_EQ(IsImageStillBuilding(), TRUE);
}

TEST(ImageStillBuilding, Ask_OddLength_DropsHalfACharacter)
{
    std::vector<unsigned char> bytes = BytesOf(L"IMAGE_STATE_COMPLETE");
    bytes.push_back(0x41);
    PolicyKey key(g_pszOrvikImage);
    key.Raw(L"StateName", REG_SZ, bytes);
    EXPECT_EQ(IsImageStillBuilding(), FALSE);
}

TEST(ImageStillBuilding, Ask_OverlongText_CountsAsNotReadable)
{
    PolicyKey key(g_pszOrvikImage);
    key.Text(L"StateName", std::wstring(260, L'x'));
    EXPECT_EQ(IsImageStillBuilding(), FALSE);
    key.Text(L"StateName", std::wstring(259, L'x'));
    EXPECT_EQ(IsImageStillBuilding(), TRUE);
}

TEST(ImageStillBuilding, Ask_AnotherType_CountsAsNotReadable)
{
    PolicyKey key(g_pszOrvikImage);
    key.Number(L"StateName", 1);
    EXPECT_EQ(IsImageStillBuilding(), FALSE);
    key.Raw(L"StateName", REG_BINARY, BytesOf(L"IMAGE_STATE_BUILDING"));
    EXPECT_EQ(IsImageStillBuilding(), FALSE);
}

TEST_F(ImageStateOpening, Building_ReadsDefaultViewThen64BitView)
{
    EXPECT_EQ(IsImageStillBuilding(), FALSE);
    EXPECT_THAT(g_openedKeys.m_lstOpened,
                ElementsAre(std::pair(std::wstring(g_pszOrvikImage), REGSAM(KEY_READ)),
                            std::pair(std::wstring(g_pszOrvikImage), REGSAM(KEY_READ | KEY_WOW64_64KEY))));
}

TEST_F(ImageStateOpening, Building_OnlyIn64BitView_IsReadThere)
{
    PolicyKey key(g_pszOrvikImage);
    key.Text(L"StateName", L"building");
    g_openedKeys.m_nFailures = 1;
    EXPECT_EQ(IsImageStillBuilding(), TRUE);
}

TEST_F(ImageStateOpening, Building_FoundInDefaultView_DoesNotOpenTheOther)
{
    PolicyKey key(g_pszOrvikImage);
    key.Text(L"StateName", L"building");
    g_openedKeys.m_lstOpened.clear();
    EXPECT_EQ(IsImageStillBuilding(), TRUE);
    EXPECT_EQ(g_openedKeys.m_lstOpened.size(), 1u);
}

TEST_F(ImageStateOpening, WindowsState_ReadsDefaultViewOnly)
{
    EXPECT_EQ(GetWindowsImageState(), 0);
    EXPECT_THAT(g_openedKeys.m_lstOpened, ElementsAre(std::pair(std::wstring(g_pszSetupState), REGSAM(KEY_READ))));
}

TEST(WindowsImageState, Ask_EachState_IsItsNumber)
{
    EXPECT_EQ(WindowsState(L"IMAGE_STATE_COMPLETE"), 1);
    EXPECT_EQ(WindowsState(L"IMAGE_STATE_UNDEPLOYABLE"), 2);
    EXPECT_EQ(WindowsState(L"IMAGE_STATE_GENERALIZE_RESEAL_TO_OOBE"), 3);
    EXPECT_EQ(WindowsState(L"IMAGE_STATE_GENERALIZE_RESEAL_TO_AUDIT"), 4);
    EXPECT_EQ(WindowsState(L"IMAGE_STATE_SPECIALIZE_RESEAL_TO_OOBE"), 5);
    EXPECT_EQ(WindowsState(L"IMAGE_STATE_SPECIALIZE_RESEAL_TO_AUDIT"), 6);
}

TEST(WindowsImageState, Ask_LowerCase_CountsAsUpperCase)
{
    EXPECT_EQ(WindowsState(L"image_state_undeployable"), 2);
    EXPECT_EQ(WindowsState(L"Image_State_Complete"), 1);
}

TEST(WindowsImageState, Ask_UnknownText_IsZero)
{
    EXPECT_EQ(WindowsState(L""), 0);
    EXPECT_EQ(WindowsState(L"IMAGE_STATE_COMPLETE2"), 0);
    EXPECT_EQ(WindowsState(L"IMAGE_STATE"), 0);
    EXPECT_EQ(WindowsState(std::wstring(259, L'x')), 0);
}

TEST(WindowsImageState, Ask_UnreadableValue_IsZero)
{
    EXPECT_EQ(GetWindowsImageState(), 0);
    PolicyKey key(g_pszSetupState);
    EXPECT_EQ(GetWindowsImageState(), 0);
    key.Number(L"ImageState", 1);
    EXPECT_EQ(GetWindowsImageState(), 0);
    key.Text(L"ImageState", std::wstring(300, L'x'));
    EXPECT_EQ(GetWindowsImageState(), 0);
}

TEST(WindowsImageState, Ask_FullBufferWithoutTerminator_IsZero)
{
    PolicyKey key(g_pszSetupState);
    key.Raw(L"ImageState", REG_SZ, BytesOf(std::wstring(260, L'a')));
    EXPECT_EQ(GetWindowsImageState(), 0);
}

TEST(ImageState, AnyOutcome_ClosesEveryKey)
{
    PolicyKey image(g_pszOrvikImage);
    PolicyKey setup(g_pszSetupState);
    (void)IsImageStillBuilding();
    (void)GetWindowsImageState();
    const unsigned before = TestSupport::OpenHandleCount();
    image.Text(L"StateName", L"building");
    setup.Text(L"ImageState", L"IMAGE_STATE_COMPLETE");
    (void)IsImageStillBuilding();
    (void)GetWindowsImageState();
    setup.Number(L"ImageState", 7);
    (void)GetWindowsImageState();
    EXPECT_EQ(TestSupport::OpenHandleCount(), before);
}

TEST(ImageState, AnyOutcome_TracesEntryAndResult)
{
    PolicyKey image(g_pszOrvikImage);
    image.Text(L"StateName", L"building");
    PolicyKey setup(g_pszSetupState);
    setup.Text(L"ImageState", L"IMAGE_STATE_UNDEPLOYABLE");
    TestSupport::ClearLog();
    (void)IsImageStillBuilding();
    (void)GetWindowsImageState();
    EXPECT_THAT(TestSupport::LogLines(),
                ElementsAre(L"TraceIn|IsImageStillBuilding|", L"TraceOut|IsImageStillBuilding|1",
                            L"TraceIn|GetWindowsImageState|", L"TraceOut|GetWindowsImageState|2"));
}
