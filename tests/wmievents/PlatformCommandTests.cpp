#include "wmievents/PlatformCommand.h"

#include "shared/LogLevel.h"
#include "simulator/doubles/JsonVariant.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/MachineTest.h"

#include <gmock/gmock.h>

using namespace Notifications::OrvikWmiEvents;
using Orvik::Shared::TraceScope;
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

TEST_F(PlatformCommandTest, SendCommand_TracesTheNameAndAnswers)
{
    const TraceScope trace("Caller");
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreateCommand(trace, spCommand), S_OK);
    EXPECT_EQ(static_cast<long>(SendCommand(spCommand, L"SmartAdapter.Status")), 3);
    EXPECT_TRUE(Logged(Level::TraceIn, "Notifications::OrvikWmiEvents::SendCommand", L"SmartAdapter.Status"));
}

TEST_F(PlatformCommandTest, SendCommand_Fails_RaisesTheCode)
{
    const TraceScope trace("Caller");
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreateCommand(trace, spCommand), S_OK);
    EXPECT_THROW(static_cast<void>(SendCommand(spCommand, L"No.Such")), _com_error);
    EXPECT_THROW(static_cast<void>(SendCommand(nullptr, L"SmartAdapter.Status")), _com_error);
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
