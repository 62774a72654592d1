#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "tests/faults/FaultSweep.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/MachineTest.h"
#include "wmievents/PublicWmiEvent.h"
#include "wmievents/WmiEvent.h"

#include <comdef.h>

#include <gmock/gmock.h>

#include <strsafe.h>

using testing::IsSupersetOf;
using Tests::HubProbe;
using TestSupport::Logged;
namespace Level = Orvik::Shared::Level;

namespace
{
// What the log says when this call fails, as a format of the code; null for what raises instead.
const wchar_t* LineOf(const FaultStep& step)
{
    const std::string madeClass = step.m_details.value("class", "");
    const std::pair<const char*, const wchar_t*> lines[] = {
        {"SysAllocString", nullptr},
        {"IWbemLocator::ConnectServer", L"ConnectServer failed: 0x%08X"},
        {"CoSetProxyBlanket", L"CoSetProxyBlanket failed: 0x%08X"},
        {"WbemServices::QueryInterface", L"CoSetProxyBlanket failed: 0x%08X"},
        {"IClientSecurity::SetBlanket", L"CoSetProxyBlanket failed: 0x%08X"},
        {"IUnsecuredApartment::CreateObjectStub", L"CreateObjectStub failed: 0x%08X"},
        {"UnsecuredApartmentStub::QueryInterface", L"QueryInterface failed: 0x%08X"},
        {"CoMarshalInterThreadInterfaceInStream", L"QueryInterface failed: 0x%08X"},
        {"CoGetInterfaceAndReleaseStream", L"QueryInterface failed: 0x%08X"},
        {"IWbemServices::ExecNotificationQueryAsync",
         L"ExecNotificationQueryAsync failed, Ignoring since still unbundling: 0x%08X"}};
    for (const auto& [call, line] : lines)
    {
        if (step.m_strCall == call)
            return line;
    }
    return madeClass == "UnsecuredApartment" ? L"CoCreateInstance(IID_IUnsecuredApartment) failed: 0x%08X"
                                             : L"CoCreateInstance(IID_IWbemLocator) failed: 0x%08X";
}

class RegisterSweep : public Tests::HubTest
{
protected:
    // Sweeps one kind of registration. worker: whose records tell of the failure.
    std::vector<std::string> Sweep(const char* worker, const std::function<HRESULT()>& registration,
                                   const std::function<HRESULT()>& unregistration,
                                   const Simulator::WmiEventBatch& event)
    {
        HRESULT result = S_OK;
        FaultSweep sweep;
        sweep.m_operation = [&]
        {
            try
            {
                result = registration();
            }
            catch (const _com_error& error)
            {
                result = error.Error();
            }
        };
        sweep.m_checkFailure = [&](const FaultStep& step)
        {
            const wchar_t* format = LineOf(step);
            EXPECT_EQ(result, format != nullptr ? step.m_hr : E_OUTOFMEMORY) << step.Description();
            if (format == nullptr)
                return;
            wchar_t line[128]{};
            StringCchPrintfW(line, std::size(line), format, step.m_hr);
            const bool isQuiet = step.m_strCall == "IWbemServices::ExecNotificationQueryAsync";
            EXPECT_TRUE(Logged(isQuiet ? Level::Verbose : Level::Information, worker, line)) << step.Description();
        };
        sweep.m_checkSuccess = [&]
        {
            EXPECT_EQ(result, S_OK);
            const std::size_t before = m_hub.Calls().size();
            Simulator::WmiEventSource::Raise(event);
            EXPECT_EQ(m_hub.Calls().size(), before + 1);
        };
        sweep.m_cleanUp = [&] { static_cast<void>(unregistration()); };
        return sweep.Run();
    }

    // The calls that a sweep must have reached.
    static constexpr const char* g_calls[] = {"CoCreateInstance",
                                              "SysAllocString",
                                              "IWbemLocator::ConnectServer",
                                              "CoSetProxyBlanket",
                                              "IUnsecuredApartment::CreateObjectStub",
                                              "UnsecuredApartmentStub::QueryInterface",
                                              "CoMarshalInterThreadInterfaceInStream",
                                              "CoGetInterfaceAndReleaseStream",
                                              "IWbemServices::ExecNotificationQueryAsync"};
};
} // namespace

TEST_F(RegisterSweep, WmiEvent_EachCallFails_LineResultAndNothingLeftOver)
{
    Notifications::OrvikWmiEvents::WmiEvent event;
    const auto reached = Sweep(
        "Notifications::OrvikWmiEvents::WmiEvent::RegisterWMIEvent",
        [&] { return event.Register(21, &m_hub, HubProbe::BiosHandler()); }, [&] { return event.Unregister(); },
        {.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", 21}, {"EventData", 7}}}});
    EXPECT_THAT(reached, IsSupersetOf(g_calls));
}

TEST_F(RegisterSweep, PublicWmiEvent_EachCallFails_LineResultAndNothingLeftOver)
{
    Notifications::OrvikWmiEvents::PublicWmiEvent event;
    const auto reached = Sweep(
        "Notifications::OrvikWmiEvents::PublicWmiEvent::RegisterPublicWMIEvent",
        [&] { return event.RegisterEvent(L"OrvikBIOS_BIOSEvent", &m_hub, HubProbe::PublicHandler()); },
        [&] { return event.Unregister(); },
        {.m_strClass = "OrvikBIOS_BIOSEvent", .m_lstObjects = {{{"Description", "Lid opened"}}}});
    EXPECT_THAT(reached, IsSupersetOf(g_calls));
}
