#include "notifications/DesktopToast.h"
#include "platform/ComApartment.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/faults/FaultableFunction.h"
#include "tests/faults/FaultSweep.h"
#include "tests/notifications/ToastMachine.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"

#include <windows.h>

#include <shlobj.h>

#include <gmock/gmock.h>

using testing::Contains;
using testing::Not;

namespace
{
// Everything that one toast calls. Beside the toasts' own calls fail: entering the apartment, finding the functions of
// the Windows Runtime, and finding the folder of the image.
class DisplayToastSweepTest : public ToastMachine
{
protected:
    void Sweep();
    void CheckFailure(const FaultStep& step);
    void CheckSuccess();

    DesktopToast m_toast{nullptr, nullptr};
    HRESULT m_hrResult = E_UNEXPECTED;
    FaultSweep m_sweep;
    FaultableFunction<struct FolderTag, decltype(SHGetSpecialFolderPathW)> m_folder{"SHGetSpecialFolderPathW", FALSE};
    FaultableFunction<struct InitialiseTag, decltype(CoInitializeEx)> m_initialise{"CoInitializeEx", E_OUTOFMEMORY};
    FaultableFunction<struct ModuleTag, decltype(GetModuleHandleW)> m_module{"GetModuleHandleW", nullptr,
                                                                             ERROR_MOD_NOT_FOUND};
};

// What the failing call becomes as the result of the toast.
HRESULT ExpectedResult(const FaultStep& step)
{
    if (step.m_strCall == "SHGetSpecialFolderPathW")
        return HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
    if (step.m_strCall == "GetModuleHandleW")
        return HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);
    return step.m_strCall == "CoInitializeEx" ? E_OUTOFMEMORY : step.m_hr;
}

std::wstring TraceOut(const char* function, HRESULT hr)
{
    return L"TraceOut|" + Simulator::Wide(function) + L"|hr: " + Simulator::Wide(Simulator::HResultText(hr));
}

constexpr wchar_t ShownLine[] = L"Verbose|DesktopToast::CreateToast|Toast Notifier Shown";

void DisplayToastSweepTest::CheckFailure(const FaultStep& step)
{
    EXPECT_EQ(m_hrResult, ExpectedResult(step));
    EXPECT_TRUE(Shown().empty());
    EXPECT_EQ(Calls().back(), step.m_strCall); // nothing is tried after it
    EXPECT_EQ(TestSupport::LogLines().front(), L"TraceIn|DesktopToast::DisplayToast|");
    EXPECT_EQ(TestSupport::LogLines().back(), TraceOut("DesktopToast::DisplayToast", m_hrResult));
    EXPECT_THAT(TestSupport::LogLines(), Not(Contains(ShownLine)));
    EXPECT_EQ(Leftovers(), "");
}

void DisplayToastSweepTest::CheckSuccess()
{
    EXPECT_EQ(m_hrResult, S_OK);
    ASSERT_EQ(Shown().size(), 1u);
    EXPECT_EQ(Shown()[0]["texts"], (nlohmann::json{"Title", "Text", ""}));
    EXPECT_THAT(TestSupport::LogLines(), Contains(ShownLine));
}

void DisplayToastSweepTest::Sweep()
{
    m_sweep.m_operation = [this] { m_hrResult = m_toast.DisplayToast(L"Title", L"Text"); };
    m_sweep.m_checkFailure = [this](const FaultStep& step) { CheckFailure(step); };
    m_sweep.m_checkSuccess = [this] { CheckSuccess(); };
    m_sweep.m_cleanUp = [this] { m_desktop.Reset(); };
    m_sweep.m_lstCodes = {static_cast<HRESULT>(0x80041234)}; // all are handed on alike
    const std::vector<std::string> reached = m_sweep.Run();
    for (const char* call : {"CoInitializeEx", "GetModuleHandleW", "WindowsCreateString", "RoGetActivationFactory",
                             "IToastNotificationManagerStatics::GetTemplateContent", "SHGetSpecialFolderPathW",
                             "IXmlNode::AppendChild", "IToastNotification::add_Failed", "IToastNotifier::Show"})
        EXPECT_THAT(reached, Contains(call));
}
} // namespace

TEST_F(DisplayToastSweepTest, NoApartment_EachCallFails_GivesItsCodeNoToastAndLeavesNothing)
{
    Sweep();
}

TEST_F(DisplayToastSweepTest, MainThreadsApartment_EachCallFails_GivesItsCodeNoToastAndLeavesNothing)
{
    const ComApartment apartment(COINIT_APARTMENTTHREADED);
    Sweep();
}

TEST_F(DisplayToastSweepTest, DeliveryThreadsApartment_EachCallFails_GivesItsCodeNoToastAndLeavesNothing)
{
    const ComApartment apartment(COINIT_MULTITHREADED);
    Sweep();
}

// Event handlers are counted by nobody else.
TEST_F(DisplayToastSweepTest, SweptTwice_LeavesNothingOnTheHeap)
{
    Sweep();
    StartOver();
    const std::size_t blocks = LiveHeapBlocks();
    Sweep();
    StartOver();
    EXPECT_EQ(LiveHeapBlocks(), blocks);
}
