#include "app/dialogs/PrivacyNotice.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/system/TemporaryFolder.h"
#include "tests/support/HandleCount.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <cstdio>

using Simulator::Redirection;
using testing::ElementsAre;

namespace
{
constexpr const wchar_t* g_marker = L"IgnoreLumbraDialog.txt";

class PrivacyNoticeTest : public testing::Test
{
protected:
    [[nodiscard]] std::string Marker() const { return m_folder.ReadFile(g_marker); }

    TemporaryFolder m_folder;
};

std::vector<std::pair<std::wstring, std::wstring>> g_lstOpened;

errno_t RefuseToOpen(FILE** file, const wchar_t* name, const wchar_t* mode)
{
    g_lstOpened.emplace_back(name, mode);
    *file = nullptr;
    return EACCES;
}
} // namespace

TEST_F(PrivacyNoticeTest, Silence_MakesTheFileWithTheOneWord)
{
    EXPECT_FALSE(IsPrivacyNoticeSilenced());
    SilencePrivacyNotice();
    EXPECT_EQ(Marker(), "true");
    EXPECT_TRUE(IsPrivacyNoticeSilenced());
    EXPECT_EQ(m_folder.OfferedRoom(), 260u);
}

TEST_F(PrivacyNoticeTest, Silence_OverwritesWhatWasThere)
{
    m_folder.WriteFile(g_marker, "something that is longer");
    SilencePrivacyNotice();
    EXPECT_EQ(Marker(), "true");
    SilencePrivacyNotice();
    EXPECT_EQ(Marker(), "true");
}

TEST_F(PrivacyNoticeTest, Reactivate_DeletesTheFile)
{
    SilencePrivacyNotice();
    ReactivatePrivacyNotice();
    EXPECT_EQ(Marker(), "(none)");
    EXPECT_FALSE(IsPrivacyNoticeSilenced());
    ReactivatePrivacyNotice();
    EXPECT_EQ(Marker(), "(none)");
}

TEST_F(PrivacyNoticeTest, AnyContent_Silences)
{
    for (const char* const content : {"", "false", "\xFF\xFE"})
    {
        m_folder.WriteFile(g_marker, content);
        EXPECT_TRUE(IsPrivacyNoticeSilenced());
        EXPECT_EQ(Marker(), content);
    }
}

TEST_F(PrivacyNoticeTest, OtherFiles_AreLeftAlone)
{
    m_folder.WriteFile(L"IgnoreLumbraDialog.txt.old", "true");
    EXPECT_FALSE(IsPrivacyNoticeSilenced());
    ReactivatePrivacyNotice();
    EXPECT_EQ(m_folder.ReadFile(L"IgnoreLumbraDialog.txt.old"), "true");
}

TEST_F(PrivacyNoticeTest, FolderOfThatName_NoticeStaysActive)
{
    const std::wstring path = m_folder.Path() + g_marker;
    ASSERT_TRUE(CreateDirectoryW(path.c_str(), nullptr));
    EXPECT_FALSE(IsPrivacyNoticeSilenced());
    SilencePrivacyNotice();
    EXPECT_FALSE(IsPrivacyNoticeSilenced());
    ReactivatePrivacyNotice();
    EXPECT_NE(GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(PrivacyNoticeTest, FileCannotBeOpened_NothingIsMadeOrDeleted)
{
    m_folder.WriteFile(g_marker, "true");
    g_lstOpened.clear();
    {
        const Redirection<decltype(_wfopen_s)> refused("_wfopen_s", &RefuseToOpen);
        ASSERT_NE(refused.SlotCount(), 0u);
        EXPECT_FALSE(IsPrivacyNoticeSilenced());
        SilencePrivacyNotice();
        ReactivatePrivacyNotice();
    }
    const std::wstring path = m_folder.Path() + g_marker;
    EXPECT_THAT(g_lstOpened, ElementsAre(std::pair(path, L"r"), std::pair(path, L"w"), std::pair(path, L"r")));
    EXPECT_EQ(Marker(), "true");
}

TEST_F(PrivacyNoticeTest, NoTemporaryFolder_NoticeStaysActive)
{
    m_folder.WriteFile(g_marker, "true");
    // 0: it cannot be told. Otherwise the room that would be needed.
    for (const DWORD length : {0u, 260u, 261u, 40000u})
    {
        m_folder.AnswerLength(length);
        EXPECT_FALSE(IsPrivacyNoticeSilenced()) << length;
        SilencePrivacyNotice();
        EXPECT_FALSE(IsPrivacyNoticeSilenced()) << length;
        ReactivatePrivacyNotice();
    }
    EXPECT_EQ(Marker(), "true");
}

TEST_F(PrivacyNoticeTest, LongestFolder_FitsWithTheFilesName)
{
    g_lstOpened.clear();
    const Redirection<decltype(_wfopen_s)> refused("_wfopen_s", &RefuseToOpen);
    const std::wstring folder = L"C:\\" + std::wstring(255, L'f') + L"\\";
    m_folder.Answer(folder);
    EXPECT_FALSE(IsPrivacyNoticeSilenced());
    m_folder.Answer(L"C:\\" + std::wstring(256, L'f') + L"\\");
    EXPECT_FALSE(IsPrivacyNoticeSilenced());
    EXPECT_THAT(g_lstOpened, ElementsAre(std::pair(folder + g_marker, L"r"), std::pair(L"", L"r")));
}

TEST_F(PrivacyNoticeTest, MissingFolder_NoticeStaysActive)
{
    m_folder.Answer(m_folder.Path() + L"missing\\");
    SilencePrivacyNotice();
    EXPECT_FALSE(IsPrivacyNoticeSilenced());
    ReactivatePrivacyNotice();
}

TEST_F(PrivacyNoticeTest, ManyTimes_LeavesNoFileOpen)
{
    const auto round = []
    {
        SilencePrivacyNotice();
        EXPECT_TRUE(IsPrivacyNoticeSilenced());
        ReactivatePrivacyNotice();
        EXPECT_FALSE(IsPrivacyNoticeSilenced());
    };
    round();
    const unsigned before = TestSupport::OpenHandleCount();
    for (int i = 0; i < 100; ++i)
        round();
    EXPECT_EQ(TestSupport::OpenHandleCount(), before);
}
