#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/EmptyHandedCommand.h"
#include "tests/wmievents/FailingBstr.h"
#include "tests/wmievents/MachineTest.h"
#include "tests/wmievents/RegistrationRows.h"

#include <comdef.h>

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Logged;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace Tests
{
namespace
{
constexpr HRESULT g_hrInvalidCommand = static_cast<HRESULT>(0x80000003);

// No step of a subscription raises this code by itself: a call on the way does it here.
HRESULT WINAPI RaiseInvalidCommand(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD, RPC_AUTH_IDENTITY_HANDLE, DWORD)
{
    _com_issue_error(g_hrInvalidCommand);
    return E_UNEXPECTED;
}
} // namespace

template <class Row>
class RegistrationTest : public HubTest
{
protected:
    HRESULT Register() { return Row::Register(m_hub); }

    // No command object came about: the one line, and neither WMI nor a command was called.
    static void ExpectOnlyCreationFailed(const std::wstring& code, const std::wstring& result)
    {
        EXPECT_THAT(LogLines(Row::Operation),
                    ElementsAre(L"TraceIn|", L"Information|Create Plix instance cmd failed.  HR=0X" + code,
                                L"TraceOut|hr: 0x" + result));
        EXPECT_EQ(TestSupport::OperationalLines().size(), 1u);
        EXPECT_FALSE(MachineTest::WasCalled("IPlixCommand::Execute"));
        EXPECT_FALSE(MachineTest::WasCalled("IWbemLocator::ConnectServer"));
        EXPECT_THAT(LiveObjects::All(), IsEmpty());
    }
};

using Rows = testing::Types<SmartAdapterRow, VeritorRow, FirmwareRow, PrivacyPanelRow, FirmwareRuntimeRow, GpioRow>;
TYPED_TEST_SUITE(RegistrationTest, Rows);

TYPED_TEST(RegistrationTest, Works_SubscribesAndTraces)
{
    ASSERT_EQ(this->Register(), S_OK);
    EXPECT_EQ(this->Details("IWbemServices::ExecNotificationQueryAsync")["query"], TypeParam::Query);
    auto lines = LogLines(TypeParam::Operation);
    std::erase_if(lines, [](const std::wstring& line) { return line.find(L" Calling ") != std::wstring::npos; });
    EXPECT_THAT(lines, ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x00000000"));
    EXPECT_EQ(Simulator::WmiEventSource::SubscriptionCount(), 1u);
    EXPECT_EQ(LiveObjects::Count("PlixCommand"), 0);
}

TYPED_TEST(RegistrationTest, NoPlatformLibrary_NoSubscriptionAndTheCreationsResult)
{
    Facts::Instance().Set("/platform/registered", false);
    EXPECT_EQ(this->Register(), REGDB_E_CLASSNOTREG);
    this->ExpectOnlyCreationFailed(L"80040154", L"80040154");
}

TYPED_TEST(RegistrationTest, NoApartment_CodeHasSmallLettersInTheCreationsLine)
{
    CallPlan::Instance().Fail("CoCreateInstance", CO_E_NOTINITIALIZED);
    EXPECT_EQ(this->Register(), CO_E_NOTINITIALIZED);
    this->ExpectOnlyCreationFailed(L"800401f0", L"800401F0");
}

TYPED_TEST(RegistrationTest, SuccessWithoutACommandObject_IsLoggedAndNothingElseHappens)
{
    const EmptyHandedCommand emptyHanded;
    this->StartWatching();
    EXPECT_EQ(this->Register(), S_OK);
    this->ExpectOnlyCreationFailed(L"0", L"00000000");
}

TYPED_TEST(RegistrationTest, CommandObject_IsGivenBackBeforeWmiIsCalled)
{
    ASSERT_EQ(this->Register(), S_OK);
    std::vector<std::string> order;
    for (const auto& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "IWbemLocator::ConnectServer" ||
            (entry.m_strSubject == "PlixCommand::Release" && entry.m_details.at("count") == 0))
            order.push_back(entry.m_strSubject);
    }
    EXPECT_THAT(order, ElementsAre("PlixCommand::Release", "IWbemLocator::ConnectServer"));
}

TYPED_TEST(RegistrationTest, SubscriptionRefused_LogsAndReturnsTheCode)
{
    CallPlan::Instance().Fail("IWbemServices::ExecNotificationQueryAsync", Hr(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(this->Register(), Hr(WBEM_E_ACCESS_DENIED));
    EXPECT_TRUE(Logged(Level::Verbose, TypeParam::Operation, TypeParam::RegisterFailed));
    EXPECT_TRUE(Logged(Level::TraceOut, TypeParam::Operation, L"hr: 0x80041003"));
    // The half-set subscription stays where it is.
    EXPECT_EQ(LiveObjects::Count("UnsecuredApartmentStub"), 1);
}

TYPED_TEST(RegistrationTest, TextOfTheSubscriptionCannotBeAllocated_IsCaughtAndLogged)
{
    const FailingBstr noMemory(TypeParam::FirstTextOfSubscription);
    EXPECT_EQ(this->Register(), E_OUTOFMEMORY);
    EXPECT_TRUE(Logged(Level::Information, TypeParam::Operation, TypeParam::OtherFailure));
    EXPECT_TRUE(Logged(Level::TraceOut, TypeParam::Operation, L"hr: 0x8007000E"));
    EXPECT_FALSE(this->WasCalled("IWbemLocator::ConnectServer"));
}

TYPED_TEST(RegistrationTest, Again_ReplacesTheOldSubscriptionWithoutUnregisteringIt)
{
    ASSERT_EQ(this->Register(), S_OK);
    ASSERT_EQ(this->Register(), S_OK);
    EXPECT_FALSE(this->WasCalled("IWbemServices::CancelAsyncCall"));
    EXPECT_EQ(Simulator::WmiEventSource::SubscriptionCount(), 2u);
}

using SmartAdapterRegistrationTest = HubTest;

TEST_F(SmartAdapterRegistrationTest, AsksWhetherTheAdapterIsSupportedBeforeWmi)
{
    ASSERT_EQ(SmartAdapterRow::Register(m_hub), S_OK);
    EXPECT_THAT(Commands(), ElementsAre("SmartAdapter.Supported"));
    const auto calls = Calls();
    EXPECT_LT(std::find(calls.begin(), calls.end(), "IPlixCommand::Execute"),
              std::find(calls.begin(), calls.end(), "IWbemLocator::ConnectServer"));
}

TEST_F(SmartAdapterRegistrationTest, CommandsName_CannotBeAllocated_IsOutOfMemoryAndNoSubscription)
{
    const FailingBstr noMemory(1);
    EXPECT_EQ(SmartAdapterRow::Register(m_hub), E_OUTOFMEMORY);
    EXPECT_TRUE(Logged(Level::Information, SmartAdapterRow::Operation, SmartAdapterRow::OtherFailure));
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_FALSE(WasCalled("IWbemLocator::ConnectServer"));
}

TEST_F(SmartAdapterRegistrationTest, NotSupportedWithAnotherSuccess_IsTheCommandsOwnResult)
{
    Facts::Instance().Set("/commands/SmartAdapter.Supported", {{"answer", {{"bool", false}}}, {"hr", "0x00000001"}});
    EXPECT_EQ(SmartAdapterRow::Register(m_hub), S_FALSE);
    EXPECT_TRUE(Logged(Level::TraceOut, SmartAdapterRow::Operation, L"hr: 0x00000001"));
    EXPECT_FALSE(WasCalled("IWbemLocator::ConnectServer"));
}

TEST_F(SmartAdapterRegistrationTest, SupportedWithAnotherSuccess_SubscribesAndIsTheRegistrationsResult)
{
    Facts::Instance().Set("/commands/SmartAdapter.Supported", {{"answer", {{"bool", true}}}, {"hr", "0x00000001"}});
    EXPECT_EQ(SmartAdapterRow::Register(m_hub), S_OK);
    EXPECT_EQ(Simulator::WmiEventSource::SubscriptionCount(), 1u);
}

TEST_F(SmartAdapterRegistrationTest, NotSupported_IsTheCommandsOwnResultAndNoSubscription)
{
    for (const nlohmann::json& answer : std::vector<nlohmann::json>{
             {{"bool", false}}, {{"i4", 1}}, {{"bstr", "true"}}, {{"empty", true}}, {{"null-bstr", true}}})
    {
        StartWatching();
        Answer("SmartAdapter.Supported", answer);
        EXPECT_EQ(SmartAdapterRow::Register(m_hub), S_OK) << answer;
        EXPECT_THAT(LogLines(SmartAdapterRow::Operation),
                    ElementsAre(L"TraceIn|", L"TraceIn|Before Calling SmartAdapter.Supported",
                                L"TraceOut|After Calling SmartAdapter.Supported", L"TraceOut|hr: 0x00000000"));
        EXPECT_THAT(TestSupport::OperationalLines(), IsEmpty());
    }
    EXPECT_EQ(Simulator::WmiEventSource::SubscriptionCount(), 0u);
    EXPECT_FALSE(WasCalled("IWbemLocator::ConnectServer"));
}

TEST_F(SmartAdapterRegistrationTest, CommandUnknown_LogsInvalidCommandAndReturnsTheCode)
{
    Fail("SmartAdapter.Supported", g_hrInvalidCommand);
    EXPECT_EQ(SmartAdapterRow::Register(m_hub), g_hrInvalidCommand);
    EXPECT_TRUE(Logged(Level::Information, SmartAdapterRow::Operation, SmartAdapterRow::InvalidCommand));
    EXPECT_FALSE(WasCalled("IWbemLocator::ConnectServer"));
}

TEST_F(SmartAdapterRegistrationTest, CommandFailsOtherwise_LogsException)
{
    Fail("SmartAdapter.Supported", E_INVALIDARG);
    EXPECT_EQ(SmartAdapterRow::Register(m_hub), E_INVALIDARG);
    EXPECT_THAT(LogLines(SmartAdapterRow::Operation),
                ElementsAre(L"TraceIn|", L"TraceIn|Before Calling SmartAdapter.Supported",
                            L"Information|Exception occurred when calling SmartAdapter.Supported, [hr:0x80070057]",
                            L"TraceOut|hr: 0x80070057"));
}

TEST_F(SmartAdapterRegistrationTest, CommandFails_OtherRegistrationIsUnaffected)
{
    Fail("SmartAdapter.Supported", E_FAIL);
    EXPECT_EQ(SmartAdapterRow::Register(m_hub), E_FAIL);
    EXPECT_EQ(GpioRow::Register(m_hub), S_OK);
    EXPECT_EQ(Simulator::WmiEventSource::SubscriptionCount(), 1u);
}

// Registrations that ask nothing of the platform first.
template <class Row>
class UnaskedRegistrationTest : public HubTest
{
};

using UnaskedRows = testing::Types<VeritorRow, FirmwareRow, PrivacyPanelRow, FirmwareRuntimeRow, GpioRow>;
TYPED_TEST_SUITE(UnaskedRegistrationTest, UnaskedRows);

TYPED_TEST(UnaskedRegistrationTest, SendsNoCommand)
{
    ASSERT_EQ(TypeParam::Register(this->m_hub), S_OK);
    EXPECT_THAT(this->Commands(), IsEmpty());
}

TYPED_TEST(UnaskedRegistrationTest, InvalidCommandCodeIsRaised_HasItsOwnText)
{
    const Simulator::Redirection<decltype(CoSetProxyBlanket)> raising("CoSetProxyBlanket", &RaiseInvalidCommand);
    EXPECT_EQ(TypeParam::Register(this->m_hub), g_hrInvalidCommand);
    EXPECT_TRUE(Logged(Level::Information, TypeParam::Operation, TypeParam::InvalidCommand));
    EXPECT_TRUE(Logged(Level::TraceOut, TypeParam::Operation, L"hr: 0x80000003"));
}

TYPED_TEST(UnaskedRegistrationTest, AfterARefusal_OtherRegistrationsAreUnaffected)
{
    CallPlan::Instance().Fail("IWbemServices::ExecNotificationQueryAsync", Hr(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(TypeParam::Register(this->m_hub), Hr(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(SmartAdapterRow::Register(this->m_hub), S_OK);
    EXPECT_EQ(TypeParam::Register(this->m_hub), S_OK);
    EXPECT_EQ(Simulator::WmiEventSource::SubscriptionCount(), 2u);
}
} // namespace Tests
