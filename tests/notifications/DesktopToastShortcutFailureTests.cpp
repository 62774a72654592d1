#include "simulator/doubles/JournalText.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "tests/notifications/ShellLinkMachine.h"
#include "tests/support/LogCapture.h"

#include <windows.h>

#include <psapi.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using Simulator::Redirection;
using testing::ElementsAre;

namespace
{
constexpr HRESULT g_hrPlanned = static_cast<HRESULT>(0x80041234);

// What a call answers and the error that it leaves behind.
DWORD g_answer = 0;
DWORD g_error = ERROR_SUCCESS;

// What the program's path was asked for with.
struct PathQuestion
{
    HANDLE m_hProcess = nullptr;
    HMODULE m_hModule = nullptr;
    DWORD m_dwSize = 0;
};
PathQuestion g_pathQuestion;

DWORD WINAPI AnswerModuleFileName(HANDLE process, HMODULE module, LPWSTR path, DWORD size)
{
    g_pathQuestion = {process, module, size};
    for (DWORD i = 0; i < g_answer && i < size; ++i)
        path[i] = i + 1 < size ? L'p' : L'\0';
    SetLastError(g_error);
    return g_answer;
}

DWORD WINAPI AnswerFileAttributes(LPCWSTR)
{
    SetLastError(g_error);
    return g_answer;
}

LPVOID WINAPI NoTaskMemory(SIZE_T)
{
    return nullptr;
}

class DesktopToastShortcutFailureTest : public ShellLinkMachine
{
};
} // namespace

TEST_F(DesktopToastShortcutFailureTest, Install_AStepFails_GivesItsCodeAndNoFile)
{
    for (const char* step : {"CoCreateInstance", "IShellLinkW::SetPath", "IPropertyStore::SetValue",
                             "IPropertyStore::Commit", "IPersistFile::Save"})
    {
        SCOPED_TRACE(step);
        StartOver();
        CallPlan::Instance().Fail(step, g_hrPlanned);
        EXPECT_EQ(m_toast.TryCreateShortcut(), g_hrPlanned);
        EXPECT_EQ(Calls().back(), step); // nothing is tried after it
        EXPECT_FALSE(PathExists(m_startMenu.ShortcutPath()));
        EXPECT_EQ(LiveObjects::Count(), 0);
        EXPECT_THAT(TestSupport::LogLines(),
                    ElementsAre(L"TraceIn|DesktopToast::TryCreateShortcut|", L"TraceIn|DesktopToast::InstallShortcut|",
                                L"TraceOut|DesktopToast::InstallShortcut|hr: 0x80041234",
                                L"TraceOut|DesktopToast::TryCreateShortcut|hr: 0x80041234"));
    }
}

TEST_F(DesktopToastShortcutFailureTest, Install_PropertyStoreRefused_SetsAndSavesNothing)
{
    CallPlan::Instance().Fail("ShellLink::QueryInterface", E_NOINTERFACE, 1);
    EXPECT_EQ(m_toast.TryCreateShortcut(), E_NOINTERFACE);
    EXPECT_THAT(Calls(), ElementsAre("CoCreateInstance", "IShellLinkW::SetPath"));
}

TEST_F(DesktopToastShortcutFailureTest, Install_PersistFileRefused_SavesNothing)
{
    CallPlan::Instance().Fail("ShellLink::QueryInterface", E_NOINTERFACE, 2);
    EXPECT_EQ(m_toast.TryCreateShortcut(), E_NOINTERFACE);
    EXPECT_THAT(Calls(), ElementsAre("CoCreateInstance", "IShellLinkW::SetPath", "IPropertyStore::SetValue",
                                     "IPropertyStore::Commit"));
}

TEST_F(DesktopToastShortcutFailureTest, Install_SuccessWithoutAnObject_CountsAsFailure)
{
    for (const IID& iid : {IID_IShellLinkW, __uuidof(IPropertyStore), IID_IPersistFile})
    {
        Facts::Instance().Set("/shell-link/nothing-for", Simulator::GuidText(iid));
        EXPECT_EQ(m_toast.TryCreateShortcut(), E_POINTER);
        EXPECT_FALSE(PathExists(m_startMenu.ShortcutPath()));
    }
}

TEST_F(DesktopToastShortcutFailureTest, Install_NoMemoryForTheId_SetsAndSavesNothing)
{
    const Redirection<decltype(CoTaskMemAlloc)> redirection("CoTaskMemAlloc", &NoTaskMemory);
    EXPECT_EQ(m_toast.TryCreateShortcut(), E_OUTOFMEMORY);
    EXPECT_THAT(Calls(), ElementsAre("CoCreateInstance", "IShellLinkW::SetPath"));
}

TEST_F(DesktopToastShortcutFailureTest, Install_ProgramPathUnknown_GivesItsErrorAndMakesNoLink)
{
    const Redirection<decltype(K32GetModuleFileNameExW)> redirection("K32GetModuleFileNameExW", &AnswerModuleFileName);
    g_answer = 0;
    g_error = ERROR_INVALID_HANDLE;
    EXPECT_EQ(m_toast.TryCreateShortcut(), HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE));
    g_error = ERROR_SUCCESS;
    EXPECT_EQ(m_toast.TryCreateShortcut(), E_FAIL);
    EXPECT_TRUE(Calls().empty());
}

TEST_F(DesktopToastShortcutFailureTest, Install_LongestProgramPathThatFits_IsLinkedTo)
{
    const Redirection<decltype(K32GetModuleFileNameExW)> redirection("K32GetModuleFileNameExW", &AnswerModuleFileName);
    g_answer = MAX_PATH - 1;
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_EQ(Details("IShellLinkW::SetPath")["path"], std::string(259, 'p'));
    EXPECT_EQ(g_pathQuestion.m_hProcess, GetCurrentProcess());
    EXPECT_EQ(g_pathQuestion.m_hModule, nullptr);
    EXPECT_EQ(g_pathQuestion.m_dwSize, 260u);
}

TEST_F(DesktopToastShortcutFailureTest, Install_ProgramPathIsCut_FailsInsteadOfLinkingToThePart)
{
    const Redirection<decltype(K32GetModuleFileNameExW)> redirection("K32GetModuleFileNameExW", &AnswerModuleFileName);
    g_answer = MAX_PATH;
    EXPECT_EQ(m_toast.TryCreateShortcut(), HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_TRUE(Calls().empty());
}

TEST_F(DesktopToastShortcutFailureTest, TryCreate_CannotTellWhetherItExists_GivesThatErrorAndCallsNothing)
{
    const Redirection<decltype(GetFileAttributesW)> redirection("GetFileAttributesW", &AnswerFileAttributes);
    g_answer = INVALID_FILE_ATTRIBUTES;
    for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_INVALID_NAME})
    {
        g_error = error;
        EXPECT_EQ(m_toast.TryCreateShortcut(), HRESULT_FROM_WIN32(error));
        EXPECT_TRUE(Calls().empty());
    }
}

TEST_F(DesktopToastShortcutFailureTest, TryCreate_FolderMissing_TriesToInstall)
{
    const Redirection<decltype(GetFileAttributesW)> redirection("GetFileAttributesW", &AnswerFileAttributes);
    g_answer = INVALID_FILE_ATTRIBUTES;
    for (const DWORD error : {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND})
    {
        StartOver();
        g_error = error;
        EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
        EXPECT_EQ(Calls().back(), "IPersistFile::Save");
    }
}

TEST_F(DesktopToastShortcutFailureTest, Install_SaveBreaksOff_LeavesNoFile)
{
    Facts::Instance().Set("/shell-link/half-written", true);
    CallPlan::Instance().Fail("IPersistFile::Save", STG_E_MEDIUMFULL);
    EXPECT_EQ(m_toast.TryCreateShortcut(), STG_E_MEDIUMFULL);
    EXPECT_FALSE(PathExists(m_startMenu.ShortcutPath()));
}

TEST_F(DesktopToastShortcutFailureTest, TryCreate_AfterABrokenSave_InstallsTheWholeShortcut)
{
    Facts::Instance().Set("/shell-link/half-written", true);
    CallPlan::Instance().Fail("IPersistFile::Save", STG_E_MEDIUMFULL);
    EXPECT_EQ(m_toast.TryCreateShortcut(), STG_E_MEDIUMFULL);
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
    EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), "a whole shortcut");
}

TEST_F(DesktopToastShortcutFailureTest, Install_SaveFailsOverAFile_TheFileStays)
{
    WriteBytes(m_startMenu.ShortcutPath(), "somebody's file");
    CallPlan::Instance().Fail("IPersistFile::Save", E_ACCESSDENIED);
    EXPECT_EQ(m_toast.InstallShortcut(m_startMenu.ShortcutPath()), E_ACCESSDENIED);
    EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), "somebody's file");
}

TEST_F(DesktopToastShortcutFailureTest, Install_SaveFailsAndNobodyKnowsWhatWasThere_TheFileStays)
{
    WriteBytes(m_startMenu.ShortcutPath(), "somebody's file");
    const Redirection<decltype(GetFileAttributesW)> redirection("GetFileAttributesW", &AnswerFileAttributes);
    g_answer = INVALID_FILE_ATTRIBUTES;
    g_error = ERROR_ACCESS_DENIED;
    CallPlan::Instance().Fail("IPersistFile::Save", E_ACCESSDENIED);
    EXPECT_EQ(m_toast.InstallShortcut(m_startMenu.ShortcutPath()), E_ACCESSDENIED);
    EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), "somebody's file");
}
