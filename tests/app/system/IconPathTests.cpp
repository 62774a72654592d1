#include "app/system/IconPath.h"

#include "res/Resource.h"
#include "shared/LogLevel.h"
#include "shared/OwnerTypes.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/system/TemporaryFolder.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace
{
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
int NotFlushed(FILE*)
{
    return EOF;
}

// Notes how files are opened, in a folder that nobody may write to.
std::vector<std::pair<std::wstring, std::wstring>> g_lstOpened;
decltype(_wfopen)* g_pfnOpen = nullptr;

FILE* OpenReadOnly(const wchar_t* path, const wchar_t* mode)
{
    g_lstOpened.emplace_back(path, mode);
    return *mode == L'r' ? g_pfnOpen(path, mode) : nullptr;
}

std::vector<std::pair<std::size_t, std::size_t>> g_lstWritten;
decltype(HalfWritten)* g_pfnWrite = nullptr;

std::size_t NotedWrite(const void* data, std::size_t size, std::size_t count, FILE* file)
{
    g_lstWritten.emplace_back(size, count);
    return g_pfnWrite(data, size, count, file);
}

class IconPathTest : public testing::Test
{
protected:
    IconPathTest()
    {
        g_lstOpened.clear();
        g_lstWritten.clear();
    }

    [[nodiscard]] static std::wstring DefaultIcon() { return GetDefaultIconPath(L"Orvik.ico", IDI_DEFAULT); }
    [[nodiscard]] static std::wstring VeritorIcon() { return GetDefaultIconPath(L"ORVR.ico", IDI_VERITOR); }

    TemporaryFolder m_folder;
};
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
    const std::wstring path = m_folder.Path() + L"Orvik.ico";
    EXPECT_THAT(g_lstOpened, ElementsAre(Pair(path, L"r"), Pair(path, L"w+b")));
}

TEST_F(IconPathTest, Path_NoFileYet_WritesResourceInOneWrite)
{
    const Simulator::Redirection<decltype(NotedWrite)> write("fwrite", &NotedWrite);
    ASSERT_NE(write.SlotCount(), 0u);
    g_pfnWrite = write.Original();
    EXPECT_NE(DefaultIcon(), L"");
    EXPECT_THAT(g_lstWritten, ElementsAre(Pair(1u, IconResource().size())));
}

TEST_F(IconPathTest, Path_FileHeldByAnother_IsEmptyAndLeavesIt)
{
    m_folder.WriteFile(L"Orvik.ico", "held");
    {
        const Orvik::Shared::UniqueHandle held(CreateFileW((m_folder.Path() + L"Orvik.ico").c_str(),
                                                           GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0,
                                                           nullptr));
        ASSERT_NE(held.get(), INVALID_HANDLE_VALUE);
        EXPECT_EQ(DefaultIcon(), L"");
    }
    EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), "held");
}

TEST_F(IconPathTest, Path_NoTemporaryFolder_IsEmpty)
{
    TemporaryFolder::AnswerLength(0);
    EXPECT_EQ(DefaultIcon(), L"");
}

TEST_F(IconPathTest, Path_TemporaryFolderLongerThanBuffer_IsEmpty)
{
    const Simulator::Redirection<decltype(_wfopen)> open("_wfopen", &OpenReadOnly);
    g_pfnOpen = open.Original();
    for (const DWORD length : {260u, 261u, 1000u, 0xFFFFFFFFu})
    {
        TemporaryFolder::AnswerLength(length);
        EXPECT_EQ(DefaultIcon(), L"") << length;
    }
    EXPECT_EQ(TemporaryFolder::OfferedRoom(), 260u);
    EXPECT_THAT(g_lstOpened, IsEmpty());
}

TEST_F(IconPathTest, Path_TemporaryFolderFillsBuffer_DoesNotOverrun)
{
    const Simulator::Redirection<decltype(_wfopen)> open("_wfopen", &OpenReadOnly);
    g_pfnOpen = open.Original();
    const std::wstring folder = L"C:\\" + std::wstring(255, L'x') + L"\\";
    ASSERT_EQ(folder.size(), 259u);
    TemporaryFolder::Answer(folder);
    EXPECT_EQ(DefaultIcon(), L"");
    EXPECT_THAT(g_lstOpened, ElementsAre(Pair(folder + L"Orvik.ico", L"r"), Pair(folder + L"Orvik.ico", L"w+b")));

    g_lstOpened.clear();
    TemporaryFolder::Answer(L"x" + folder);
    EXPECT_EQ(DefaultIcon(), L"");
    EXPECT_THAT(g_lstOpened, IsEmpty());
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

TEST_F(IconPathTest, Path_EachAllocationFails_IsEmptyOrWhole)
{
    const std::wstring whole = m_folder.Path() + L"Orvik.ico";
    (void)DefaultIcon();
    std::size_t refused = 0;
    for (std::size_t nth = 1;; ++nth)
    {
        DeleteFileW(whole.c_str());
        std::wstring path;
        bool hasBitten = false;
        {
            const AllocationFault fault(nth);
            path = DefaultIcon();
            hasBitten = AllocationFault::HasBitten();
        }
        if (!hasBitten)
            break;
        if (path.empty())
            ++refused;
        else
            EXPECT_EQ(path, whole);
        EXPECT_EQ(m_folder.ReadFile(L"Orvik.ico"), path.empty() ? "(none)" : IconResource());
    }
    EXPECT_GE(refused, 2u);
}
