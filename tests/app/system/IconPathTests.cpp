#include "app/system/IconPath.h"

#include "res/Resource.h"
#include "shared/LogLevel.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/system/TemporaryFolder.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

using testing::ElementsAre;

namespace
{
class IconPathTest : public testing::Test
{
protected:
    [[nodiscard]] static std::wstring DefaultIcon() { return GetDefaultIconPath(L"Orvik.ico", IDI_DEFAULT); }
    [[nodiscard]] static std::wstring VeritorIcon() { return GetDefaultIconPath(L"ORVR.ico", IDI_VERITOR); }

    TemporaryFolder m_folder;
};

std::string IconResource()
{
    const HRSRC found = FindResourceW(nullptr, MAKEINTRESOURCEW(133), MAKEINTRESOURCEW(300));
    const auto* data = static_cast<const char*>(LockResource(LoadResource(nullptr, found)));
    return {data, SizeofResource(nullptr, found)};
}

HGLOBAL WINAPI NotLoaded(HMODULE, HRSRC)
{
    return nullptr;
}
LPVOID WINAPI NotLocked(HGLOBAL)
{
    return nullptr;
}
DWORD WINAPI NoSize(HMODULE, HRSRC)
{
    return 0;
}
std::size_t HalfWritten(const void*, std::size_t, std::size_t count, FILE*)
{
    return count / 2;
}
// Notes how files are opened, in a folder that nobody may write to.
std::vector<std::wstring> g_lstModes;
decltype(_wfopen)* g_pfnOpen = nullptr;

FILE* OpenReadOnly(const wchar_t* path, const wchar_t* mode)
{
    g_lstModes.emplace_back(mode);
    return *mode == L'r' ? g_pfnOpen(path, mode) : nullptr;
}
int NotFlushed(FILE*)
{
    return EOF;
}
} // namespace

TEST_F(IconPathTest, Path_NoFileYet_WritesResourceAndGivesPath)
{
    EXPECT_EQ(DefaultIcon(), m_folder.Path() + L"Orvik.ico");
    EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), IconResource());
    EXPECT_EQ(IconResource().substr(0, 4), std::string("\0\0\1\0", 4));
}

TEST_F(IconPathTest, Path_FileExists_UsesItAsItStands)
{
    m_folder.WriteFile(L"Orvik.ico", "an older icon");
    EXPECT_EQ(DefaultIcon(), m_folder.Path() + L"Orvik.ico");
    EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), "an older icon");
}

TEST_F(IconPathTest, Path_EmptyFileExists_UsesItAsItStands)
{
    m_folder.WriteFile(L"Orvik.ico", "");
    EXPECT_EQ(DefaultIcon(), m_folder.Path() + L"Orvik.ico");
    EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), "");
}

TEST_F(IconPathTest, Path_ReadOnlyFileExists_UsesItAsItStands)
{
    m_folder.WriteFile(L"Orvik.ico", "kept");
    SetFileAttributesW((m_folder.Path() + L"Orvik.ico").c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(DefaultIcon(), m_folder.Path() + L"Orvik.ico");
    SetFileAttributesW((m_folder.Path() + L"Orvik.ico").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(IconPathTest, Path_IconWithoutResource_IsEmptyAndWritesNothing)
{
    EXPECT_EQ(VeritorIcon(), L"");
    EXPECT_EQ(m_folder.ReadFile(L"ORVR.ico"), "(none)");
}

TEST_F(IconPathTest, Path_IconWithoutResourceButFile_GivesThatFile)
{
    m_folder.WriteFile(L"ORVR.ico", "from elsewhere");
    EXPECT_EQ(VeritorIcon(), m_folder.Path() + L"ORVR.ico");
    EXPECT_EQ(m_folder.ReadFile(L"ORVR.ico"), "from elsewhere");
}

TEST_F(IconPathTest, Path_UnknownResource_IsEmpty)
{
    EXPECT_EQ(GetDefaultIconPath(L"Other.ico", 0xFFFF), L"");
    EXPECT_EQ(GetDefaultIconPath(L"Other.ico", 0), L"");
}

TEST_F(IconPathTest, Path_FolderDoesNotExist_IsEmpty)
{
    TemporaryFolder::Answer(m_folder.Path() + L"missing\\");
    EXPECT_EQ(DefaultIcon(), L"");
}

TEST_F(IconPathTest, Path_FileCannotBeCreated_IsEmpty)
{
    // A folder of that name can neither be read nor written as a file.
    ASSERT_TRUE(CreateDirectoryW((m_folder.Path() + L"Orvik.ico").c_str(), nullptr));
    EXPECT_EQ(DefaultIcon(), L"");
    EXPECT_NE(GetFileAttributesW((m_folder.Path() + L"Orvik.ico").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(IconPathTest, Path_FolderIsNotWritable_TriesToReadThenToWriteAndIsEmpty)
{
    const Simulator::Redirection<decltype(_wfopen)> open("_wfopen", &OpenReadOnly);
    ASSERT_NE(open.SlotCount(), 0u);
    g_pfnOpen = open.Original();
    EXPECT_EQ(DefaultIcon(), L"");
    EXPECT_THAT(g_lstModes, ElementsAre(L"r", L"w+b"));
}

TEST_F(IconPathTest, Path_NoTemporaryFolder_IsEmpty)
{
    TemporaryFolder::AnswerLength(0);
    EXPECT_EQ(DefaultIcon(), L"");
}

TEST_F(IconPathTest, Path_TemporaryFolderLongerThanBuffer_IsEmpty)
{
    for (const DWORD length : {260u, 261u, 1000u, 0xFFFFFFFFu})
    {
        TemporaryFolder::AnswerLength(length);
        EXPECT_EQ(DefaultIcon(), L"") << length;
    }
}

TEST_F(IconPathTest, Path_TemporaryFolderFillsBuffer_DoesNotOverrun)
{
    TemporaryFolder::Answer(L"C:\\" + std::wstring(255, L'x') + L"\\");
    EXPECT_EQ(DefaultIcon(), L"");
}

TEST_F(IconPathTest, Path_ResourceCannotBeLoaded_IsEmptyAndWritesNothing)
{
    const Simulator::Redirection<decltype(LoadResource)> redirection("LoadResource", &NotLoaded);
    EXPECT_EQ(DefaultIcon(), L"");
    EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), "(none)");
}

TEST_F(IconPathTest, Path_ResourceCannotBeLocked_IsEmptyAndWritesNothing)
{
    const Simulator::Redirection<decltype(LockResource)> redirection("LockResource", &NotLocked);
    EXPECT_EQ(DefaultIcon(), L"");
    EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), "(none)");
}

TEST_F(IconPathTest, Path_ResourceHasNoSize_IsEmptyAndWritesNothing)
{
    const Simulator::Redirection<decltype(SizeofResource)> redirection("SizeofResource", &NoSize);
    EXPECT_EQ(DefaultIcon(), L"");
    EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), "(none)");
}

TEST_F(IconPathTest, Path_DiskFull_IsEmptyAndLeavesNoHalfIcon)
{
    {
        const Simulator::Redirection<decltype(HalfWritten)> full("fwrite", &HalfWritten);
        ASSERT_NE(full.SlotCount(), 0u);
        EXPECT_EQ(DefaultIcon(), L"");
        EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), "(none)");
    }
    EXPECT_EQ(DefaultIcon(), m_folder.Path() + L"Orvik.ico");
    EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), IconResource());
}

TEST_F(IconPathTest, Path_DiskFullAtTheEnd_IsEmptyAndLeavesNoHalfIcon)
{
    const Simulator::Redirection<decltype(NotFlushed)> full("fflush", &NotFlushed);
    ASSERT_NE(full.SlotCount(), 0u);
    EXPECT_EQ(DefaultIcon(), L"");
    EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), "(none)");
}

TEST_F(IconPathTest, Path_AnyOutcome_ClosesEveryHandle)
{
    (void)DefaultIcon();
    const unsigned before = TestSupport::OpenHandleCount();
    for (int i = 0; i < 20; ++i)
    {
        (void)DefaultIcon();
        (void)VeritorIcon();
        DeleteFileW((m_folder.Path() + L"Orvik.ico").c_str());
    }
    EXPECT_EQ(TestSupport::OpenHandleCount(), before);
}

TEST_F(IconPathTest, Path_AnyOutcome_TracesEntryAndExitOnly)
{
    TestSupport::ClearLog();
    (void)DefaultIcon();
    (void)VeritorIcon();
    EXPECT_THAT(TestSupport::LogLines(), ElementsAre(L"TraceIn|GetDefaultIconPath|", L"TraceOut|GetDefaultIconPath|",
                                                     L"TraceIn|GetDefaultIconPath|", L"TraceOut|GetDefaultIconPath|"));
}
