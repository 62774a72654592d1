#include "simulator/doubles/JournalText.h"
#include "simulator/model/Facts.h"
#include "tests/faults/FaultableFunction.h"
#include "tests/faults/FaultSweep.h"
#include "tests/notifications/ShellLinkMachine.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"

#include <windows.h>

#include <psapi.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

using Simulator::Facts;
using Simulator::Repeat;
using testing::Contains;

namespace
{
// A shell link whose Save breaks off in the middle when it fails.
class InstallShortcutSweepTest : public ShellLinkMachine
{
protected:
    InstallShortcutSweepTest()
    {
        Facts::Instance().Set("/shell-link/half-written", true);
        m_sweep.m_lstCodes = {static_cast<HRESULT>(0x80041234)}; // all are handed on alike
    }

    void RemoveShortcut() { std::filesystem::remove(m_startMenu.ShortcutPath()); }

    HRESULT m_hrResult = E_UNEXPECTED;
    FaultSweep m_sweep;
    FaultableFunction<struct VariableTag, decltype(GetEnvironmentVariableW)> m_variable{"GetEnvironmentVariableW", 0,
                                                                                        ERROR_ENVVAR_NOT_FOUND};
    FaultableFunction<struct AttributesTag, decltype(GetFileAttributesW)> m_attributes{
        "GetFileAttributesW", INVALID_FILE_ATTRIBUTES, ERROR_ACCESS_DENIED};
    FaultableFunction<struct ProgramTag, decltype(K32GetModuleFileNameExW)> m_program{"K32GetModuleFileNameExW", 0,
                                                                                      ERROR_INVALID_HANDLE};
    FaultableFunction<struct MemoryTag, decltype(CoTaskMemAlloc)> m_memory{"CoTaskMemAlloc", nullptr};
};

// What the failing call becomes as the result.
HRESULT ExpectedResult(const FaultStep& step)
{
    static const std::map<std::string, HRESULT> ownResults = {
        {"GetEnvironmentVariableW", E_INVALIDARG},
        {"GetFileAttributesW", E_ACCESSDENIED},
        {"K32GetModuleFileNameExW", HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE)},
        {"CoTaskMemAlloc", E_OUTOFMEMORY},
    };
    const auto found = ownResults.find(step.m_strCall);
    return found != ownResults.end() ? found->second : step.m_hr;
}

std::wstring TraceOut(const char* function, HRESULT hr)
{
    return L"TraceOut|" + Simulator::Wide(function) + L"|hr: " + Simulator::Wide(Simulator::HResultText(hr));
}
} // namespace

TEST_F(InstallShortcutSweepTest, TryCreate_EachCallFails_GivesItsCodeAndLeavesNoFile)
{
    m_sweep.m_operation = [this] { m_hrResult = m_toast.TryCreateShortcut(); };
    m_sweep.m_cleanUp = [this] { RemoveShortcut(); };
    m_sweep.m_checkSuccess = [this]
    {
        EXPECT_EQ(m_hrResult, S_OK);
        EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), "a whole shortcut");
    };
    m_sweep.m_checkFailure = [&](const FaultStep& step)
    {
        // The second look only asks whether a broken file may be removed.
        const bool isSecondLook = step.m_strCall == "GetFileAttributesW" && step.m_nCall > 2;
        if (isSecondLook && step.m_repeat == Repeat::Once)
        {
            EXPECT_EQ(m_hrResult, S_OK);
            return;
        }
        EXPECT_EQ(m_hrResult, isSecondLook ? step.m_hr : ExpectedResult(step));
        // A file of which nobody knows whose it is stays.
        EXPECT_EQ(PathExists(m_startMenu.ShortcutPath()), isSecondLook);
        EXPECT_EQ(TestSupport::LogLines().front(), L"TraceIn|DesktopToast::TryCreateShortcut|");
        EXPECT_EQ(TestSupport::LogLines().back(), TraceOut("DesktopToast::TryCreateShortcut", m_hrResult));
    };
    const std::vector<std::string> reached = m_sweep.Run();
    EXPECT_THAT(reached,
                testing::ElementsAre("GetEnvironmentVariableW", "GetFileAttributesW", "K32GetModuleFileNameExW",
                                     "CoCreateInstance", "IShellLinkW::SetPath", "ShellLink::QueryInterface",
                                     "CoTaskMemAlloc", "IPropertyStore::SetValue", "IPropertyStore::Commit",
                                     "ShellLink::QueryInterface", "GetFileAttributesW", "IPersistFile::Save"));
}

TEST_F(InstallShortcutSweepTest, Install_EachCallFailsOverAFile_TheFileStays)
{
    Facts::Instance().Set("/shell-link/half-written", false);
    const std::wstring path = m_startMenu.ShortcutPath();
    WriteBytes(path, "somebody's file");
    m_sweep.m_operation = [&] { m_hrResult = m_toast.InstallShortcut(path); };
    m_sweep.m_cleanUp = [&] { WriteBytes(path, "somebody's file"); };
    m_sweep.m_checkSuccess = [&]
    {
        EXPECT_EQ(m_hrResult, S_OK);
        EXPECT_EQ(ReadBytes(path), "a whole shortcut");
    };
    m_sweep.m_checkFailure = [&](const FaultStep& step)
    {
        const bool isAbsorbed = step.m_strCall == "GetFileAttributesW" && step.m_repeat == Repeat::Once;
        EXPECT_EQ(SUCCEEDED(m_hrResult), isAbsorbed);
        EXPECT_EQ(ReadBytes(path), isAbsorbed ? "a whole shortcut" : "somebody's file");
        EXPECT_EQ(TestSupport::LogLines(),
                  (std::vector<std::wstring>{L"TraceIn|DesktopToast::InstallShortcut|",
                                             TraceOut("DesktopToast::InstallShortcut", m_hrResult)}));
    };
    EXPECT_THAT(m_sweep.Run(), Contains("IPersistFile::Save"));
}

TEST_F(InstallShortcutSweepTest, TryCreate_SweptTwice_LeavesNothingOnTheHeap)
{
    m_sweep.m_operation = [this] { m_hrResult = m_toast.TryCreateShortcut(); };
    m_sweep.m_cleanUp = [this] { RemoveShortcut(); };
    m_sweep.m_checkSuccess = [this] { EXPECT_EQ(m_hrResult, S_OK); };
    m_sweep.m_checkFailure = [](const FaultStep&) {};
    m_sweep.Run();
    const std::size_t blocks = LiveHeapBlocks();
    m_sweep.Run();
    EXPECT_EQ(LiveHeapBlocks(), blocks);
}
