#pragma once

#include "simulator/toasts/ToastDesktop.h"
#include "tests/wmievents/MachineTest.h"

#include <string>

namespace Tests
{
// The handler of the smart adapter's event, in a machine that has everything.
class SmartAdapterTest : public HubTest
{
protected:
    static constexpr const char* Handler = "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessSmartAdapterEvent";
    static constexpr const wchar_t* Before = L"TraceIn|Before Calling SmartAdapter.Status";
    static constexpr const wchar_t* After = L"TraceOut|After Calling SmartAdapter.Status";
    // What an event with status 3 writes.
    static inline const std::vector<std::wstring> ShownRecords = {
        L"TraceIn|",
        Before,
        After,
        L"Verbose|SmartAdapterData: 3",
        L"Information|szTitle: Orvik Notifications",
        L"Information|szStatus: Smart AC adapter power output is too low for this computer.",
        L"TraceOut|"};

    ~SmartAdapterTest() override { Simulator::ToastDesktop::Instance().Reset(); }

    void Process(const nlohmann::json& answer)
    {
        Answer("SmartAdapter.Status", answer);
        m_hub.ProcessSmartAdapterEvent();
    }
};
} // namespace Tests
