#include "platform/PlatformCommand.h"

#include "shared/LogLevel.h"
#include "simulator/doubles/JsonVariant.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/EmptyHandedCommand.h"
#include "tests/wmievents/MachineTest.h"

#include <gmock/gmock.h>

using Orvik::Shared::TraceScope;
using testing::ElementsAre;
using TestSupport::Logged;
namespace Level = Orvik::Shared::Level;

namespace
{
// On a thread with COM, as every caller of commands is.
using PlatformCommandTest = Tests::HubTest;

bool IsTrueOf(const nlohmann::json& value)
{
    _variant_t variant;
    EXPECT_EQ(Simulator::VariantFromJson(value, variant), S_OK);
    return IsTrue(variant);
}
} // namespace

TEST_F(PlatformCommandTest, CreateCommand_NoLibrary_LogsUnderTheCallersName)
{
    Simulator::Facts::Instance().Set("/platform/registered", false);
    const TraceScope trace("Caller");
    IPlixCommandPtr spCommand;
    EXPECT_EQ(CreateCommand(trace, spCommand), REGDB_E_CLASSNOTREG);
    EXPECT_FALSE(spCommand);
    EXPECT_TRUE(Logged(Level::Information, "Caller", L"Create Plix instance cmd failed.  HR=0X80040154"));
}

TEST_F(PlatformCommandTest, CreateCommand_Works_LogsNothing)
{
    const TraceScope trace("Caller");
    IPlixCommandPtr spCommand;
    EXPECT_EQ(CreateCommand(trace, spCommand), S_OK);
    EXPECT_TRUE(spCommand);
    EXPECT_THAT(TestSupport::OperationalLines(), testing::IsEmpty());
}

TEST_F(PlatformCommandTest, CreateCommand_SuccessWithoutAnObject_IsLogged)
{
    const Tests::EmptyHandedCommand emptyHanded;
    const TraceScope trace("Caller");
    IPlixCommandPtr spCommand;
    EXPECT_EQ(CreateCommand(trace, spCommand), S_OK);
    EXPECT_FALSE(spCommand);
    EXPECT_TRUE(Logged(Level::Information, "Caller", L"Create Plix instance cmd failed.  HR=0X0"));
}

TEST_F(PlatformCommandTest, SendCommand_LogsBeforeAndAfterUnderTheCallersName)
{
    const TraceScope trace("Caller");
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreateCommand(trace, spCommand), S_OK);
    StartWatching();
    HRESULT result = E_UNEXPECTED;
    EXPECT_EQ(static_cast<long>(SendCommand(trace, spCommand, L"SmartAdapter.Status", &result)), 3);
    EXPECT_EQ(result, S_OK);
    EXPECT_THAT(TestSupport::LogLines(), ElementsAre(L"TraceIn|Caller|Before Calling SmartAdapter.Status",
                                                     L"TraceOut|Caller|After Calling SmartAdapter.Status"));
}

TEST_F(PlatformCommandTest, SendCommand_SuccessOtherThanOk_IsHandedOut)
{
    Simulator::Facts::Instance().Set("/commands/SmartAdapter.Status", {{"answer", {{"i4", 5}}}, {"hr", "0x00000001"}});
    const TraceScope trace("Caller");
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreateCommand(trace, spCommand), S_OK);
    HRESULT result = E_UNEXPECTED;
    EXPECT_EQ(static_cast<long>(SendCommand(trace, spCommand, L"SmartAdapter.Status", &result)), 5);
    EXPECT_EQ(result, S_FALSE);
}

TEST_F(PlatformCommandTest, SendCommand_Fails_RaisesTheCodeAndLogsNothingBehindIt)
{
    const TraceScope trace("Caller");
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreateCommand(trace, spCommand), S_OK);
    StartWatching();
    HRESULT result = E_UNEXPECTED;
    EXPECT_THROW(static_cast<void>(SendCommand(trace, spCommand, L"No.Such", &result)), _com_error);
    EXPECT_THROW(static_cast<void>(SendCommand(trace, nullptr, L"No.Command", &result)), _com_error);
    EXPECT_EQ(result, E_UNEXPECTED);
    EXPECT_THAT(TestSupport::LogLines(),
                ElementsAre(L"TraceIn|Caller|Before Calling No.Such", L"TraceIn|Caller|Before Calling No.Command"));
}

TEST_F(PlatformCommandTest, Interface_MethodsLieInTheLibrarysSlots)
{
    EXPECT_EQ(SlotOf(&IPlixCommand::Execute), 3u);
    EXPECT_EQ(SlotOf(&IPlixCommand::ExecuteWithInput), 5u);
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreatePlixCommand(spCommand), S_OK);
    StartWatching();
    const _bstr_t name(L"SmartAdapter.Status");
    const _variant_t input(2L);
    _variant_t output;
    EXPECT_EQ(spCommand->ExecuteWithInput(name, input, &output), S_OK);
    EXPECT_EQ(output.lVal, 3);
    EXPECT_THAT(Calls(), ElementsAre("IPlixCommand::ExecuteWithInput"));
    EXPECT_EQ(Details("IPlixCommand::ExecuteWithInput")["input"]["value"], 2);
}

TEST_F(PlatformCommandTest, IsTrue_OnlyTheBooleanTrue)
{
    EXPECT_TRUE(IsTrueOf(true));
    for (const nlohmann::json& value : std::vector<nlohmann::json>{false,
                                                                   -1,
                                                                   1,
                                                                   "true",
                                                                   {{"empty", true}},
                                                                   {{"null", true}},
                                                                   {{"i2", -1}},
                                                                   {{"unknown", true}},
                                                                   {{"raw", {{"vt", VT_BOOL}, {"value", 1}}}}})
        EXPECT_FALSE(IsTrueOf(value)) << value;
}
