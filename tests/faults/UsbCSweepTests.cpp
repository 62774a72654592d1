#include "notifications/NotificationsHandler.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/model/Facts.h"
#include "simulator/toasts/ToastDesktop.h"
#include "tests/faults/FaultSweep.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/MachineTest.h"
#include "usbc/UsbCBiosInfo.h"

#include <comdef.h>

#include <gmock/gmock.h>

#include <objbase.h>

#include <optional>

using Notifications::OrvikNotifications::CNotificationsHandler;
using Simulator::Repeat;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;

namespace
{
constexpr const char* g_pMessages =
    "<GetUsbCMessagesOutput><Output><Data NumberOfPorts=\"1\"><Port0 NumberOfMessages=\"2\">"
    "<Message0 MessageId=\"2\" Valid=\"true\"/>"
    "<Message1 MessageId=\"3\" Valid=\"true\" RequestedPower=\"5\" MaxSuppliedPower=\"6\"/>"
    "</Port0></Data></Output></GetUsbCMessagesOutput>";
constexpr PortMessage g_second{.iMessageId = 3, .iRequestedPower = 5, .iMaxSuppliedPower = 6};

// OleRun asks an object whether it has a running state and takes a refusal for a no.
bool IsAbsorbed(const FaultStep& step)
{
    if (step.m_repeat != Repeat::Once || !step.m_strCall.starts_with("Plix"))
        return false;
    const std::string iid = step.m_details.value("iid", "");
    return iid != "{233A5811-AB16-4A74-8D08-2D148ABE089C}" && iid != "{3ABCD024-1E97-48C4-A7D4-C116944A4967}";
}

// The reading of messages and their toasts, on a thread like the agent's main thread.
class UsbCSweep : public Tests::MachineTest
{
protected:
    UsbCSweep()
    {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        Answer("Platform.USBC.Messages", {{"bstr", g_pMessages}});
        Answer("Platform.MachineID", {{"bstr", "8042"}});
        Answer("Platform.USBC.Supported", {{"bool", true}});
        m_sweep.m_cleanUp = [] { Simulator::ToastDesktop::Instance().Reset(); };
    }
    ~UsbCSweep() override
    {
        Simulator::ToastDesktop::Instance().Reset();
        CoUninitialize();
    }

    // Some record tells of the failure.
    static void ExpectOneOf(const std::vector<const wchar_t*>& lines)
    {
        for (const std::wstring& written : TestSupport::LogLines())
        {
            for (const wchar_t* line : lines)
            {
                if (written.find(line) != std::wstring::npos)
                    return;
            }
        }
        ADD_FAILURE() << "no record tells of it";
    }

    FaultSweep m_sweep;
};
} // namespace

TEST_F(UsbCSweep, GetMessages_EachCallFails_SaysSoAndTheNextReadingIsWhole)
{
    std::optional<CUsbCBiosInfo> info;
    HRESULT raised = S_OK;
    m_sweep.m_operation = [&]
    {
        info.emplace();
        raised = S_OK;
        try
        {
            info->GetMessages(2);
        }
        catch (const _com_error& error)
        {
            raised = error.Error();
        }
    };
    m_sweep.m_checkSuccess = [&]
    {
        EXPECT_EQ(raised, S_OK);
        EXPECT_THAT(info->Messages(), ElementsAre(PortMessage{.iMessageId = 2}, g_second));
    };
    m_sweep.m_checkFailure = [&](const FaultStep& step)
    {
        if (IsAbsorbed(step))
        {
            EXPECT_EQ(info->Messages().size(), 2u);
            return;
        }
        EXPECT_LT(info->Messages().size(), 2u);
        if (raised != S_OK)
        {
            EXPECT_EQ(raised, E_OUTOFMEMORY);
            EXPECT_TRUE(step.m_strCall.starts_with("SysAllocString")) << step.m_strCall;
            return;
        }
        EXPECT_THAT(info->Messages(), IsEmpty());
        ExpectOneOf({L"|GetMsgDataFromPlix failed", L"|xml.GetDocument() failed"});
    };
    EXPECT_THAT(m_sweep.Run(), IsSupersetOf({"CoCreateInstance", "OleRun", "PlixCommand::QueryInterface",
                                             "SysAllocString", "IPlixCommand::ExecuteWithInput"}));
}

TEST_F(UsbCSweep, ShowToaster_EachCallFails_SaysSoAndShowsNothing)
{
    CNotificationsHandler handler;
    m_sweep.m_operation = [&] { EXPECT_NO_THROW(handler.ShowToaster(0, 341, L"Title", L"Text", L"", L"")); };
    m_sweep.m_checkSuccess = [] { EXPECT_EQ(Toasts().size(), 1u); };
    m_sweep.m_checkFailure = [](const FaultStep& step)
    {
        // An apartment cannot fail to be left.
        if (IsAbsorbed(step) || step.m_strCall == "CoUninitialize")
            return;
        EXPECT_THAT(Toasts(), IsEmpty());
        ExpectOneOf({L"|pIPlixNotification.CreateInstance of orvikplixutils.orvikPlixNotification failed., hr = 0x",
                     L"TraceOut|DesktopToast::DisplayToast|hr: 0x8"});
    };
    EXPECT_THAT(m_sweep.Run(),
                IsSupersetOf({"CLSIDFromProgID", "CoCreateInstance", "OleRun", "PlixNotification::QueryInterface",
                              "RoGetActivationFactory", "IToastNotifier::Show"}));
}

TEST_F(UsbCSweep, ShowUsbCMessages_EachCallFails_LetsNothingOutAndTheNextRoundIsWhole)
{
    CNotificationsHandler handler;
    m_sweep.m_lstCodes = {static_cast<HRESULT>(0x80041234)};
    m_sweep.m_operation = [&] { EXPECT_NO_THROW(handler.ShowUsbCMessages(2)); };
    m_sweep.m_checkSuccess = [&]
    {
        EXPECT_EQ(Toasts().size(), 2u);
        EXPECT_THAT(handler.PortMessages(), ElementsAre(PortMessage{.iMessageId = 2}, g_second));
    };
    m_sweep.m_checkFailure = [](const FaultStep&)
    {
        if (Toasts().size() == 2)
            return;
        ExpectOneOf({L"|GetMsgDataFromPlix failed", L"|xml.GetDocument() failed",
                     L"|Exception occurred, [hr:0x8007000E]", L"|pIPlixNotification.CreateInstance of ",
                     L"TraceOut|DesktopToast::DisplayToast|hr: 0x8"});
    };
    EXPECT_THAT(m_sweep.Run(), IsSupersetOf({"IPlixCommand::ExecuteWithInput", "SysAllocString", "CLSIDFromProgID",
                                             "IToastNotifier::Show"}));
}

TEST_F(UsbCSweep, Init_EachCallFails_SaysSoAndLeavesThatFlagFalse)
{
    CNotificationsHandler handler;
    m_sweep.m_operation = [&] { EXPECT_NO_THROW(handler.Init()); };
    m_sweep.m_checkSuccess = [&] { EXPECT_TRUE(handler.IsUsingACPIUsbCEvent() && handler.IsUSBCSupported()); };
    m_sweep.m_checkFailure = [&](const FaultStep& step)
    {
        if (IsAbsorbed(step))
            return;
        EXPECT_FALSE(handler.IsUsingACPIUsbCEvent() && handler.IsUSBCSupported());
        EXPECT_NE(handler.ConfigurationToolPath(), L"");
        ExpectOneOf({L"|Create Plix instance cmd failed.  HR=0X",
                     L"|Exception occurred when calling Platform.MachineID, [hr:0x",
                     L"|Exception occurred when calling Platform.USBC.Supported, [hr:0x"});
    };
    EXPECT_THAT(m_sweep.Run(), IsSupersetOf({"CoCreateInstance", "OleRun", "PlixCommand::QueryInterface",
                                             "SysAllocString", "IPlixCommand::Execute"}));
}
