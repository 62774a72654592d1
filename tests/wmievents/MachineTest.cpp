#include "tests/wmievents/MachineTest.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/model/Facts.h"
#include "tests/support/LogCapture.h"

#include <algorithm>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::Journal;

namespace Tests
{
MachineTest::MachineTest()
{
    m_programFiles.Text(L"ProgramFilesDir (x86)", L"C:\\Program Files (x86)");
    Facts::Instance().Clear();
    Facts::Instance().Set("/toasts/draw", false);
    Answer("SmartAdapter.Supported", {{"bool", true}});
    Answer("SmartAdapter.Status", {{"i4", 3}});
    Answer("F10Setting.WMIEvents.Enabled", {{"bool", true}});
    StartWatching();
}

MachineTest::~MachineTest()
{
    CallPlan::Instance().Reset();
}

void MachineTest::Answer(const std::string& command, const nlohmann::json& answer)
{
    Facts::Instance().Set("/commands/" + command, {{"answer", answer}});
}

void MachineTest::Fail(const std::string& command, HRESULT hr)
{
    Facts::Instance().Set("/commands/" + command, {{"hr", Simulator::HResultText(hr)}});
}

void MachineTest::StartWatching()
{
    CallPlan::Instance().Reset();
    Journal::Instance().Clear();
    TestSupport::ClearLog();
}

std::vector<std::string> MachineTest::Calls()
{
    return Journal::Instance().Subjects("call");
}

bool MachineTest::WasCalled(std::string_view call)
{
    const auto calls = Calls();
    return std::find(calls.begin(), calls.end(), call) != calls.end();
}

nlohmann::json MachineTest::Details(std::string_view call, unsigned nth)
{
    for (const auto& entry : Journal::Instance().Entries())
    {
        if (entry.m_strSubject == call && --nth == 0)
            return entry.m_details;
    }
    return {};
}

std::vector<std::string> MachineTest::Commands()
{
    std::vector<std::string> names;
    for (const auto& entry : Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "IPlixCommand::Execute")
            names.push_back(entry.m_details.at("command"));
    }
    return names;
}

std::vector<std::vector<std::string>> MachineTest::Toasts()
{
    std::vector<std::vector<std::string>> toasts;
    for (const auto& entry : Journal::Instance().Entries())
    {
        if (entry.m_strKind == "toast" && entry.m_strSubject == "shown")
            toasts.push_back(entry.m_details.at("texts"));
    }
    return toasts;
}
} // namespace Tests
