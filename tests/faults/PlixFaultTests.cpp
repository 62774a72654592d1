#include "platform/PlatformCommand.h"
#include "platform/PlixCommand.h"
#include "platform/PlixNotification.h"
#include "simulator/doubles/ComRedirections.h"
#include "simulator/model/Facts.h"
#include "tests/faults/FaultSweep.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>

using Orvik::Shared::TraceScope;
using Simulator::Facts;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr HRESULT g_hrInvalid = static_cast<HRESULT>(0x80000003);
constexpr const wchar_t* g_before = L"TraceIn|Caller|Before Calling Platform.MachineID";

// The platform library answers a command with a text and explains each failure.
class PlixFaultTest : public testing::Test
{
protected:
    PlixFaultTest()
    {
        Facts::Instance().Clear();
        Facts::Instance().Set("/commands/Platform.MachineID", {{"answer", {{"bstr", "8042"}}}});
        Facts::Instance().Set("/platform/error-info", {{"source", "library"}, {"description", "why it failed"}});
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    }
    ~PlixFaultTest() override { CoUninitialize(); }

    Simulator::ComRedirections m_redirections{Simulator::Activation::InProcess};
    FaultSweep m_sweep;
};

std::wstring Formatted(const wchar_t* format, HRESULT hr)
{
    wchar_t text[128];
    _snwprintf(text, std::size(text), format, hr);
    return text;
}

// OleRun asks an object whether it has a running state and takes a refusal for a no.
bool IsAbsorbed(const FaultStep& step)
{
    return step.m_strCall == "PlixCommand::QueryInterface" &&
           step.m_details.at("iid") != "{233A5811-AB16-4A74-8D08-2D148ABE089C}";
}

bool IsAllocation(const FaultStep& step)
{
    return step.m_strCall.starts_with("SysAllocString");
}

// A routine that asks the platform for a text as the handlers ask for their answers.
HRESULT AskForText(std::wstring& text)
{
    TraceScope trace("Caller");
    text.clear();
    try
    {
        IPlixCommandPtr spCommand;
        HRESULT hr = CreateCommand(trace, spCommand);
        if (FAILED(hr) || !spCommand)
            return trace.Exit(hr);
        const _variant_t output = SendCommand(trace, spCommand, L"Platform.MachineID", &hr);
        text = output.vt == VT_BSTR && output.bstrVal != nullptr ? output.bstrVal : L"";
        return trace.Exit(hr);
    }
    catch (const _com_error& error)
    {
        return trace.Exit(
            LogCommandFailure(trace, error, L"Invalid Command. hr = 0x%X", L"Exception occurred, [hr:0x%08X]"));
    }
}
} // namespace

TEST_F(PlixFaultTest, Create_EachCallFails_GivesCodeNullSlotAndTrace)
{
    IPlixCommandPtr spCommand;
    HRESULT result = E_UNEXPECTED;
    m_sweep.m_operation = [&] { result = CreatePlixCommand(spCommand); };
    m_sweep.m_cleanUp = [&] { spCommand = nullptr; };
    m_sweep.m_checkSuccess = [&]
    {
        EXPECT_EQ(result, S_OK);
        EXPECT_TRUE(spCommand);
    };
    m_sweep.m_checkFailure = [&](const FaultStep& step)
    {
        const bool absorbed = IsAbsorbed(step) && step.m_repeat == Simulator::Repeat::Once;
        EXPECT_EQ(result, absorbed ? S_OK : step.m_hr);
        EXPECT_EQ(static_cast<bool>(spCommand), absorbed);
        EXPECT_THAT(TestSupport::LogLines(), ElementsAre(L"TraceIn|CreatePlixCommand|",
                                                         Formatted(L"TraceOut|CreatePlixCommand|hr: 0x%08X", result)));
    };
    const std::vector<std::string> reached = m_sweep.Run();
    for (const char* call : {"CoCreateInstance", "OleRun", "IRunnableObject::Run", "PlixCommand::QueryInterface"})
        EXPECT_THAT(reached, Contains(call));
}

TEST_F(PlixFaultTest, Execute_EachCallFails_LogsOneLineAndReturnsCode)
{
    std::wstring text;
    HRESULT result = E_UNEXPECTED;
    m_sweep.m_operation = [&] { result = AskForText(text); };
    m_sweep.m_checkSuccess = [&]
    {
        EXPECT_EQ(result, S_OK);
        EXPECT_EQ(text, L"8042");
        EXPECT_THAT(TestSupport::LogLines(), Contains(g_before));
        EXPECT_THAT(TestSupport::LogLines(), Contains(L"TraceOut|Caller|After Calling Platform.MachineID"));
        EXPECT_THAT(TestSupport::OperationalLines(), IsEmpty());
    };
    m_sweep.m_checkFailure = [&](const FaultStep& step)
    {
        if (IsAbsorbed(step) && step.m_repeat == Simulator::Repeat::Once)
        {
            EXPECT_EQ(result, S_OK);
            return;
        }
        EXPECT_EQ(text, L"");
        EXPECT_EQ(result, IsAllocation(step) ? E_OUTOFMEMORY : step.m_hr);
        const bool created = IsAllocation(step) || step.m_strCall == "IPlixCommand::Execute";
        const wchar_t* line = !created                ? L"Create Plix instance cmd failed.  HR=0X%x"
                              : result == g_hrInvalid ? L"Invalid Command. hr = 0x%X"
                                                      : L"Exception occurred, [hr:0x%08X]";
        EXPECT_EQ(std::ranges::count(TestSupport::LogLines(), g_before), created ? 1 : 0);
        EXPECT_THAT(TestSupport::OperationalLines(), ElementsAre(L"Information|Caller|" + Formatted(line, result)));
        EXPECT_THAT(TestSupport::LogLines("Caller").back(), Formatted(L"TraceOut|hr: 0x%08X", result));
    };
    const std::vector<std::string> reached = m_sweep.Run();
    for (const char* call : {"CoCreateInstance", "SysAllocString", "IPlixCommand::Execute"})
        EXPECT_THAT(reached, Contains(call));
}

TEST_F(PlixFaultTest, Notification_EachCallFails_GivesCodeAndNullSlot)
{
    IUnknownPtr spNotification;
    HRESULT result = E_UNEXPECTED;
    m_sweep.m_operation = [&] { result = CreatePlixNotification(spNotification); };
    m_sweep.m_cleanUp = [&] { spNotification = nullptr; };
    m_sweep.m_checkSuccess = [&] { EXPECT_TRUE(result == S_OK && spNotification); };
    m_sweep.m_checkFailure = [&](const FaultStep& step)
    {
        EXPECT_EQ(result, step.m_hr);
        EXPECT_FALSE(spNotification);
    };
    const std::vector<std::string> reached = m_sweep.Run();
    for (const char* call : {"CLSIDFromProgID", "CoCreateInstance", "OleRun", "PlixNotification::QueryInterface"})
        EXPECT_THAT(reached, Contains(call));
}
