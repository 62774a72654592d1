#include "wmievents/AuditLogCopy.h"

#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "tests/auditlog/AuditLogTest.h"
#include "tests/support/BstrLedger.h"
#include "tests/wmievents/EmptyHandedCommand.h"
#include "tests/wmievents/FailingBstr.h"

#include <gmock/gmock.h>

#include <thread>

using Notifications::OrvikWmiEvents::GetVeritorLogFromPlix;
using Simulator::CallPlan;
using Simulator::Facts;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using TestSupport::LogLines;

namespace
{
constexpr const wchar_t* g_pBefore = L"TraceIn|Before Calling EmbeddedController.AuditLog";
constexpr const wchar_t* g_pAfter = L"TraceOut|After Calling EmbeddedController.AuditLog";
constexpr const wchar_t* g_pPassed = L"Verbose|Calling EmbeddedController.AuditLog passed.";
constexpr const wchar_t* g_pData = L"Verbose|VR Log Data:";

class AuditLogFetchTest : public Tests::AuditLogTest
{
protected:
    ~AuditLogFetchTest() override
    {
        EXPECT_EQ(Simulator::LiveObjects::Count("PlixCommand"), 0);
        EXPECT_THAT(m_ledger.LiveTexts(), IsEmpty());
    }

    HRESULT Fetch()
    {
        m_strText = L"from before";
        return GetVeritorLogFromPlix(m_strText);
    }

    const TestSupport::BstrLedger m_ledger;
    std::wstring m_strText;
};
} // namespace

TEST_F(AuditLogFetchTest, Answer_IsGivenAndLogged)
{
    FirmwareHas(L"<a>\x20AC</a>");
    EXPECT_EQ(Fetch(), S_OK);
    EXPECT_EQ(m_strText, L"<a>\x20AC</a>");
    EXPECT_THAT(Commands(), ElementsAre("EmbeddedController.AuditLog"));
    EXPECT_THAT(LogLines(Tests::g_pFetcher), ElementsAre(L"TraceIn|", g_pBefore, g_pAfter, g_pPassed, g_pData,
                                                         L"Verbose|<a>\x20AC</a>", L"TraceOut|hr: 0x00000000"));
}

TEST_F(AuditLogFetchTest, Answer_EndsAtItsFirstZero)
{
    Answer("EmbeddedController.AuditLog", {{"utf16", {60, 97, 0, 98}}});
    EXPECT_EQ(Fetch(), S_OK);
    EXPECT_EQ(m_strText, L"<a");
}

TEST_F(AuditLogFetchTest, Answer_WithUnpairedSurrogates_IsGivenAsItIs)
{
    Answer("EmbeddedController.AuditLog", {{"utf16", {0xD800, 65, 0xDC00}}});
    EXPECT_EQ(Fetch(), S_OK);
    EXPECT_EQ(m_strText, L"\xD800"
                         L"A\xDC00");
}

TEST_F(AuditLogFetchTest, AnswerOfAnotherType_IsNoTextAndNoFailure)
{
    const nlohmann::json answers[] = {{{"empty", true}}, {{"null-bstr", true}}, {{"i4", 3}},
                                      {{"bool", true}},  {{"r8", 1.5}},         {{"ui1-array", {60, 97}}},
                                      {{"null", true}},  {{"unknown", true}},   {{"bstr", ""}}};
    for (const nlohmann::json& answer : answers)
    {
        StartWatching();
        Answer("EmbeddedController.AuditLog", answer);
        EXPECT_EQ(Fetch(), S_OK) << answer;
        EXPECT_EQ(m_strText, L"") << answer;
        EXPECT_THAT(LogLines(Tests::g_pFetcher), ElementsAre(L"TraceIn|", g_pBefore, g_pAfter, g_pPassed, g_pData,
                                                             L"Verbose|", L"TraceOut|hr: 0x00000000"));
    }
    EXPECT_EQ(Simulator::LiveObjects::Count(), 0);
}

TEST_F(AuditLogFetchTest, OtherSuccess_IsTheResult)
{
    Facts::Instance().Set("/commands/EmbeddedController.AuditLog",
                          {{"hr", "0x00000001"}, {"answer", {{"bstr", "<a/>"}}}});
    EXPECT_EQ(Fetch(), S_FALSE);
    EXPECT_EQ(m_strText, L"<a/>");
    EXPECT_EQ(LogLines(Tests::g_pFetcher).back(), L"TraceOut|hr: 0x00000001");
}

TEST_F(AuditLogFetchTest, InvalidCommand_HasALineOfItsOwn)
{
    Fail("EmbeddedController.AuditLog", static_cast<HRESULT>(0x80000003));
    EXPECT_EQ(Fetch(), static_cast<HRESULT>(0x80000003));
    EXPECT_EQ(m_strText, L"");
    EXPECT_THAT(LogLines(Tests::g_pFetcher),
                ElementsAre(L"TraceIn|", g_pBefore,
                            L"Information|Invalid Command EmbeddedController.AuditLog. hr = 0x80000003",
                            L"TraceOut|hr: 0x80000003"));
}

TEST_F(AuditLogFetchTest, OtherFailure_IsAnException)
{
    const std::pair<HRESULT, std::wstring> codes[] = {{E_INVALIDARG, L"80070057"},
                                                      {E_FAIL, L"80004005"},
                                                      {E_ACCESSDENIED, L"80070005"},
                                                      {static_cast<HRESULT>(0x80000004), L"80000004"},
                                                      {RPC_E_SERVERFAULT, L"80010105"}};
    for (const auto& [hr, code] : codes)
    {
        StartWatching();
        Fail("EmbeddedController.AuditLog", hr);
        EXPECT_EQ(Fetch(), hr);
        EXPECT_EQ(m_strText, L"");
        EXPECT_THAT(
            LogLines(Tests::g_pFetcher),
            ElementsAre(L"TraceIn|", g_pBefore,
                        L"Information|Exception occurred during call for EmbeddedController.AuditLog. hr = 0x" + code,
                        L"TraceOut|hr: 0x" + code));
    }
}

TEST_F(AuditLogFetchTest, NoPlatformLibrary_HasTheLineOfItsCreationOnly)
{
    Facts::Instance().Set("/platform/registered", false);
    EXPECT_EQ(Fetch(), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(m_strText, L"");
    EXPECT_THAT(LogLines(Tests::g_pFetcher),
                ElementsAre(L"TraceIn|", L"Information|Create Plix instance cmd failed.  HR=0X80040154",
                            L"TraceOut|hr: 0x80040154"));
    EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(AuditLogFetchTest, CreationThatFails_IsTheResult)
{
    for (const char* call : {"CoCreateInstance", "OleRun"})
    {
        StartWatching();
        FirmwareHas(L"<a/>");
        CallPlan::Instance().Fail(call, E_ACCESSDENIED);
        EXPECT_EQ(Fetch(), E_ACCESSDENIED) << call;
        EXPECT_THAT(LogLines(Tests::g_pFetcher),
                    ElementsAre(L"TraceIn|", L"Information|Create Plix instance cmd failed.  HR=0X80070005",
                                L"TraceOut|hr: 0x80070005"));
    }
}

TEST_F(AuditLogFetchTest, CreationThatGivesNothing_EndsThereWithItsSuccess)
{
    FirmwareHas(L"<a/>");
    const Tests::EmptyHandedCommand emptyHanded;
    StartWatching();
    EXPECT_EQ(Fetch(), S_OK);
    EXPECT_EQ(m_strText, L"");
    EXPECT_THAT(
        LogLines(Tests::g_pFetcher),
        ElementsAre(L"TraceIn|", L"Information|Create Plix instance cmd failed.  HR=0X0", L"TraceOut|hr: 0x00000000"));
    EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(AuditLogFetchTest, NoMemoryForTheCommandsName_IsAnException)
{
    FirmwareHas(L"<a/>");
    const Tests::FailingBstr fault(1);
    EXPECT_EQ(Fetch(), E_OUTOFMEMORY);
    EXPECT_THAT(LogLines(Tests::g_pFetcher),
                ElementsAre(L"TraceIn|", g_pBefore,
                            L"Information|Exception occurred during call for EmbeddedController.AuditLog. hr = "
                            L"0x8007000E",
                            L"TraceOut|hr: 0x8007000E"));
}

TEST_F(AuditLogFetchTest, ThreadWithoutCom_GetsNoCommand)
{
    FirmwareHas(L"<a/>");
    HRESULT hr = S_OK;
    const auto fetch = [&] { hr = Fetch(); };
    std::thread(fetch).join();
    EXPECT_EQ(hr, CO_E_NOTINITIALIZED);
    EXPECT_THAT(LogLines(Tests::g_pFetcher), Contains(L"Information|Create Plix instance cmd failed.  HR=0X800401f0"));
}

TEST_F(AuditLogFetchTest, LongText_IsGivenWholeAndLoggedAsFarAsARecordGoes)
{
    const std::wstring text = L"<a>" + std::wstring(1000000, L'x') + L"</a>";
    FirmwareHas(text);
    EXPECT_EQ(Fetch(), S_OK);
    EXPECT_EQ(m_strText, text);
    const auto lines = LogLines(Tests::g_pFetcher);
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_TRUE((L"Verbose|" + text).starts_with(lines[5]));
    EXPECT_GT(lines[5].size(), 400u);
}
