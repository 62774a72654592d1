#include "simulator/doubles/JournalText.h"
#include "simulator/model/Journal.h"
#include "tests/notifications/ShellLinkMachine.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using Simulator::Journal;
using testing::ElementsAre;

namespace
{
constexpr wchar_t BelowAppData[] = L"\\Microsoft\\Windows\\Start Menu\\Programs\\Toaster Message.lnk";
constexpr std::size_t BelowAppDataLength = std::size(BelowAppData) - 1;

class DesktopToastShortcutTest : public ShellLinkMachine
{
};

std::string ProgramPath()
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return Simulator::Narrow(path);
}
} // namespace

TEST_F(DesktopToastShortcutTest, TryCreate_Missing_MakesTheseCallsInThisOrder)
{
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_THAT(Calls(), ElementsAre("CoCreateInstance", "IShellLinkW::SetPath", "IPropertyStore::SetValue",
                                     "IPropertyStore::Commit", "IPersistFile::Save"));
    EXPECT_THAT(Journal::Instance().Subjects("com"),
                ElementsAre("ShellLink::QueryInterface", "ShellLink::QueryInterface"));
}

TEST_F(DesktopToastShortcutTest, TryCreate_Missing_AsksForAnInProcessShellLink)
{
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_EQ(Details("CoCreateInstance"), (nlohmann::json{{"clsid", "{00021401-0000-0000-C000-000000000046}"},
                                                           {"iid", "{000214F9-0000-0000-C000-000000000046}"},
                                                           {"context", CLSCTX_INPROC_SERVER},
                                                           {"outer", false}}));
}

TEST_F(DesktopToastShortcutTest, TryCreate_Missing_LinksToTheRunningProgram)
{
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_EQ(Details("IShellLinkW::SetPath")["path"], ProgramPath());
}

TEST_F(DesktopToastShortcutTest, TryCreate_Missing_SetsTheApplicationId)
{
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_EQ(Details("IPropertyStore::SetValue"), (nlohmann::json{{"key", "{9F4C2855-9F79-4B39-A8D0-E1D42DE1D5F3}"},
                                                                   {"pid", 5},
                                                                   {"vt", VT_LPWSTR},
                                                                   {"text", "Orvik Notifications"}}));
}

TEST_F(DesktopToastShortcutTest, TryCreate_Missing_SavesBelowAppData)
{
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_EQ(Details("IPersistFile::Save")["path"], Simulator::Narrow(m_startMenu.ShortcutPath()));
    EXPECT_EQ(Details("IPersistFile::Save")["remember"], TRUE);
    EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), "a whole shortcut");
}

TEST_F(DesktopToastShortcutTest, TryCreate_Missing_WritesTheseRecords)
{
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_THAT(TestSupport::LogLines(),
                ElementsAre(L"TraceIn|DesktopToast::TryCreateShortcut|", L"TraceIn|DesktopToast::InstallShortcut|",
                            L"TraceOut|DesktopToast::InstallShortcut|hr: 0x00000000",
                            L"TraceOut|DesktopToast::TryCreateShortcut|hr: 0x00000000"));
}

TEST_F(DesktopToastShortcutTest, TryCreate_FileOfThatNameExists_CallsNothing)
{
    WriteBytes(m_startMenu.ShortcutPath(), "something else");
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_TRUE(Calls().empty());
    EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), "something else");
    EXPECT_THAT(TestSupport::LogLines(), ElementsAre(L"TraceIn|DesktopToast::TryCreateShortcut|",
                                                     L"TraceOut|DesktopToast::TryCreateShortcut|hr: 0x00000000"));
}

TEST_F(DesktopToastShortcutTest, TryCreate_FolderOfThatNameExists_CallsNothing)
{
    std::filesystem::create_directory(m_startMenu.ShortcutPath());
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_TRUE(Calls().empty());
}

TEST_F(DesktopToastShortcutTest, TryCreate_EmptyAppData_LeavesSystemWithoutShortcut)
{
    const EnvironmentValue appData(L"APPDATA", L"");
    EXPECT_EQ(m_toast.TryCreateShortcut(), E_INVALIDARG);
    EXPECT_TRUE(Calls().empty());
    EXPECT_THAT(TestSupport::LogLines(), ElementsAre(L"TraceIn|DesktopToast::TryCreateShortcut|",
                                                     L"TraceOut|DesktopToast::TryCreateShortcut|hr: 0x80070057"));
}

TEST_F(DesktopToastShortcutTest, TryCreate_NoAppData_LeavesSystemWithoutShortcut)
{
    const EnvironmentValue appData(L"APPDATA", nullptr);
    EXPECT_EQ(m_toast.TryCreateShortcut(), E_INVALIDARG);
    EXPECT_TRUE(Calls().empty());
}

TEST_F(DesktopToastShortcutTest, TryCreate_LongestPathThatFits_IsSaved)
{
    const std::wstring folder = L"C:\\" + std::wstring(MAX_PATH - 1 - BelowAppDataLength - 3, L'a');
    const EnvironmentValue appData(L"APPDATA", folder.c_str());
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_EQ(Details("IPersistFile::Save")["path"], Simulator::Narrow(folder + BelowAppData));
}

TEST_F(DesktopToastShortcutTest, TryCreate_PathTooLong_FailsWithoutShortcut)
{
    // One character too many with the name, the buffer filled by the variable alone, and one too long for the buffer.
    for (const std::size_t length :
         {MAX_PATH - BelowAppDataLength, std::size_t{259}, std::size_t{260}, std::size_t{32'000}})
    {
        const EnvironmentValue appData(L"APPDATA", std::wstring(length, L'a').c_str());
        EXPECT_EQ(m_toast.TryCreateShortcut(), E_INVALIDARG) << length;
        EXPECT_TRUE(Calls().empty()) << length;
    }
}

TEST_F(DesktopToastShortcutTest, Install_AnyPath_SavesThere)
{
    const ScratchFolder folder;
    const std::wstring path = folder.Below(L"\x00DC"
                                           L"ber \x6E29.lnk");
    EXPECT_EQ(m_toast.InstallShortcut(path), S_OK);
    EXPECT_EQ(Details("IPersistFile::Save")["path"], Simulator::Narrow(path));
}
