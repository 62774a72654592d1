#include "tests/notifications/ShellLinkMachine.h"
#include "tests/platform/MethodRedirection.h"

#include <windows.h>

#include <comdef.h>

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace
{
_COM_SMARTPTR_TYPEDEF(IPersistFile, IID_IPersistFile);

// How long the first Save gives another thread the time to save as well.
constexpr std::chrono::milliseconds g_patience{500};

// The saves of two threads: the first one waits until the second one has saved, or until it is clear that it will not.
struct Saves
{
    std::mutex m_lock;
    std::condition_variable m_changed;
    int m_nBegun = 0;
    bool m_bSecondDone = false;
    HRESULT m_hrFirst = S_OK;
};
Saves g_saves;

HRESULT STDMETHODCALLTYPE SaveInTurn(IPersistFile*, LPCOLESTR path, BOOL)
{
    std::unique_lock lock(g_saves.m_lock);
    const bool isFirst = ++g_saves.m_nBegun == 1;
    g_saves.m_changed.notify_all();
    if (!isFirst)
    {
        WriteBytes(path, "the second's shortcut");
        g_saves.m_bSecondDone = true;
        g_saves.m_changed.notify_all();
        return S_OK;
    }
    g_saves.m_changed.wait_for(lock, g_patience, [] { return g_saves.m_bSecondDone; });
    if (SUCCEEDED(g_saves.m_hrFirst))
        WriteBytes(path, "the first's shortcut");
    return g_saves.m_hrFirst;
}

// Two deliveries that show their first toast at the same moment.
class DesktopToastShortcutRaceTest : public ShellLinkMachine
{
protected:
    DesktopToastShortcutRaceTest()
    {
        g_saves.m_nBegun = 0;
        g_saves.m_bSecondDone = false;
        g_saves.m_hrFirst = S_OK;
    }

    void RunBoth()
    {
        std::thread first([this] { m_hrFirst = DesktopToast(nullptr, nullptr).TryCreateShortcut(); });
        {
            std::unique_lock lock(g_saves.m_lock);
            g_saves.m_changed.wait(lock, [] { return g_saves.m_nBegun == 1; });
        }
        std::thread second([this] { m_hrSecond = DesktopToast(nullptr, nullptr).TryCreateShortcut(); });
        first.join();
        second.join();
    }

    HRESULT m_hrFirst = E_UNEXPECTED;
    HRESULT m_hrSecond = E_UNEXPECTED;

private:
    const IPersistFilePtr m_spSample{static_cast<IPersistFile*>(new ShellLinkDouble), false};
    const MethodRedirection m_save{m_spSample.GetInterfacePtr(), &IPersistFile::Save, &SaveInTurn};
};
} // namespace

TEST_F(DesktopToastShortcutRaceTest, TryCreate_SaveFailsWhileAnotherThreadInstalls_ItsFileStays)
{
    g_saves.m_hrFirst = STG_E_MEDIUMFULL;
    RunBoth();
    EXPECT_EQ(m_hrFirst, STG_E_MEDIUMFULL);
    EXPECT_EQ(m_hrSecond, S_OK);
    EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), "the second's shortcut");
}

TEST_F(DesktopToastShortcutRaceTest, TryCreate_TwoThreadsAtOnce_OneInstallsAndTheOtherLeavesIt)
{
    RunBoth();
    EXPECT_EQ(m_hrFirst, S_OK);
    EXPECT_EQ(m_hrSecond, S_OK);
    EXPECT_EQ(g_saves.m_nBegun, 1);
    EXPECT_EQ(ReadBytes(m_startMenu.ShortcutPath()), "the first's shortcut");
}
