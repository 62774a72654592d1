#include "notifications/DesktopToast.h"

#include "platform/ComApartment.h"
#include "shared/OwnerTypes.h"
#include "tests/notifications/ScratchFolder.h"
#include "tests/support/HandleCount.h"

#include <comdef.h>
#include <shlobj.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

using Orvik::Shared::UniqueHandle;

namespace
{
_COM_SMARTPTR_TYPEDEF(IShellLinkW, IID_IShellLinkW);
_COM_SMARTPTR_TYPEDEF(IPersistFile, IID_IPersistFile);

// The shell links of Windows, on a thread like the main one.
class DesktopToastShortcutFileTest : public testing::Test
{
protected:
    DesktopToast m_toast{nullptr, nullptr};
    ScratchStartMenu m_startMenu;
    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
};

IShellLinkWPtr NewLink()
{
    IShellLinkWPtr spLink;
    EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                               reinterpret_cast<void**>(&spLink)),
              S_OK);
    return spLink;
}

IPersistFilePtr FileOf(const IShellLinkWPtr& spLink)
{
    IPersistFilePtr spFile;
    EXPECT_EQ(spLink->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&spFile)), S_OK);
    return spFile;
}

std::wstring TargetOf(const std::wstring& shortcut)
{
    const IShellLinkWPtr spLink = NewLink();
    EXPECT_EQ(FileOf(spLink)->Load(shortcut.c_str(), STGM_READ), S_OK);
    wchar_t target[MAX_PATH] = L"";
    EXPECT_EQ(spLink->GetPath(target, MAX_PATH, nullptr, SLGP_RAWPATH), S_OK);
    return target;
}

void MakeShortcut(const std::wstring& shortcut, const wchar_t* target)
{
    const IShellLinkWPtr spLink = NewLink();
    ASSERT_EQ(spLink->SetPath(target), S_OK);
    ASSERT_EQ(FileOf(spLink)->Save(shortcut.c_str(), FALSE), S_OK);
}

std::wstring ProgramPath()
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return path;
}

UniqueHandle OpenFile(const std::wstring& path, DWORD access)
{
    return UniqueHandle(CreateFileW(path.c_str(), access, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
}

// A day in 2001, which no test writes on.
constexpr FILETIME g_longAgo = {0x12345678, 0x01C0C0C0};

void MakeOld(const std::wstring& path)
{
    ASSERT_TRUE(SetFileTime(OpenFile(path, FILE_WRITE_ATTRIBUTES).get(), nullptr, nullptr, &g_longAgo));
}

FILETIME WrittenAt(const std::wstring& path)
{
    FILETIME written{};
    EXPECT_TRUE(GetFileTime(OpenFile(path, GENERIC_READ).get(), nullptr, nullptr, &written));
    return written;
}
} // namespace

TEST_F(DesktopToastShortcutFileTest, TryCreate_Missing_WritesAShortcutToThisProgram)
{
    ASSERT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_EQ(TargetOf(m_startMenu.ShortcutPath()), ProgramPath());
}

TEST_F(DesktopToastShortcutFileTest, TryCreate_FromEitherKindOfApartment_WritesAShortcutToThisProgram)
{
    for (const DWORD kind : {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED})
    {
        HRESULT hr = E_UNEXPECTED;
        std::thread(
            [&]
            {
                const ComApartment apartment(kind);
                hr = m_toast.TryCreateShortcut();
            })
            .join();
        EXPECT_EQ(hr, S_OK) << kind;
        ASSERT_TRUE(PathExists(m_startMenu.ShortcutPath())) << kind;
        EXPECT_EQ(TargetOf(m_startMenu.ShortcutPath()), ProgramPath()) << kind;
        std::filesystem::remove(m_startMenu.ShortcutPath());
    }
}

TEST_F(DesktopToastShortcutFileTest, TryCreate_Twice_LeavesTheFirstOne)
{
    ASSERT_EQ(m_toast.TryCreateShortcut(), S_OK);
    MakeOld(m_startMenu.ShortcutPath());
    const std::string bytes = ReadBytes(m_startMenu.ShortcutPath());
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), bytes);
    const FILETIME written = WrittenAt(m_startMenu.ShortcutPath());
    EXPECT_EQ(CompareFileTime(&written, &g_longAgo), 0);
}

TEST_F(DesktopToastShortcutFileTest, TryCreate_ShortcutPointsElsewhere_LeavesIt)
{
    MakeShortcut(m_startMenu.ShortcutPath(), L"C:\\windows\\notepad.exe");
    MakeOld(m_startMenu.ShortcutPath());
    const std::string bytes = ReadBytes(m_startMenu.ShortcutPath());
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), bytes);
    const FILETIME written = WrittenAt(m_startMenu.ShortcutPath());
    EXPECT_EQ(CompareFileTime(&written, &g_longAgo), 0);
    EXPECT_EQ(TargetOf(m_startMenu.ShortcutPath()), L"C:\\windows\\notepad.exe");
}

TEST_F(DesktopToastShortcutFileTest, TryCreate_NoStartMenu_FailsAndMakesNothing)
{
    const ScratchFolder folder;
    const EnvironmentValue appData(L"APPDATA", folder.Path().c_str());
    EXPECT_TRUE(FAILED(m_toast.TryCreateShortcut()));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(DesktopToastShortcutFileTest, Install_OverAFolder_FailsAndLeavesIt)
{
    std::filesystem::create_directory(m_startMenu.ShortcutPath());
    EXPECT_TRUE(FAILED(m_toast.InstallShortcut(m_startMenu.ShortcutPath())));
    EXPECT_TRUE(std::filesystem::is_directory(m_startMenu.ShortcutPath()));
}

TEST_F(DesktopToastShortcutFileTest, Install_OverAFileInUse_FailsAndLeavesIt)
{
    WriteBytes(m_startMenu.ShortcutPath(), "in use");
    {
        const UniqueHandle inUse = OpenFile(m_startMenu.ShortcutPath(), GENERIC_READ);
        EXPECT_TRUE(FAILED(m_toast.InstallShortcut(m_startMenu.ShortcutPath())));
    }
    EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), "in use");
}

TEST_F(DesktopToastShortcutFileTest, TryCreate_ThreadWithoutApartment_FailsAndMakesNothing)
{
    CoUninitialize();
    EXPECT_EQ(m_toast.TryCreateShortcut(), CO_E_NOTINITIALIZED);
    EXPECT_FALSE(PathExists(m_startMenu.ShortcutPath()));
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
}

TEST_F(DesktopToastShortcutFileTest, TryCreate_AgainAndAgain_OpensNoHandles)
{
    const auto makeOne = [this]
    {
        EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
        std::filesystem::remove(m_startMenu.ShortcutPath());
    };
    makeOne();
    const unsigned before = TestSupport::OpenHandleCount();
    for (int i = 0; i < 20; ++i)
        makeOne();
    // The shell keeps what it makes once; a leak would be one for each shortcut.
    EXPECT_LT(TestSupport::OpenHandleCount(), before + 20);
}
