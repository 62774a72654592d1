#include "simulator/doubles/PlixCommandDouble.h"

#include "simulator/doubles/RealFunctions.h"
#include "tests/simulator/doubles/DoublesTest.h"

#include <atomic>
#include <thread>

namespace Simulator
{
namespace
{
using testing::ElementsAre;

constexpr HRESULT InvalidCommand = static_cast<HRESULT>(0x80000003);

class PlixCommandDoubleTest : public DoublesTest
{
protected:
    HRESULT Execute(const wchar_t* command) { return m_spCommand->Execute(_bstr_t(command), &m_output); }
    HRESULT ExecuteWithInput(const wchar_t* command, const _variant_t& input)
    {
        return m_spCommand->ExecuteWithInput(_bstr_t(command), input, &m_output);
    }
    static void Answer(const char* command, const nlohmann::json& fact)
    {
        Facts::Instance().Set(std::string("/commands/") + command, fact);
    }

    const _com_ptr_t<_com_IIID<IPlixCommandServer, &__uuidof(IPlixCommandServer)>> m_spCommand{new PlixCommandDouble,
                                                                                               false};
    _variant_t m_output;
};

TEST_F(PlixCommandDoubleTest, Slots_AreExecuteThenAnUnusedOneThenExecuteWithInput)
{
    Answer("A", {{"answer", 1}, {"by-input", {{"2", {{"answer", 2}}}}}});
    // The interface as a caller sees it who has only the order of the slots and the calling convention.
    void** table = *reinterpret_cast<void***>(m_spCommand.GetInterfacePtr());
    using ExecuteSlot = HRESULT(STDMETHODCALLTYPE*)(void*, BSTR, VARIANT*);
    using WithInputSlot = HRESULT(STDMETHODCALLTYPE*)(void*, BSTR, VARIANT, VARIANT*);
    void* const self = m_spCommand.GetInterfacePtr();
    EXPECT_EQ(reinterpret_cast<ExecuteSlot>(table[3])(self, _bstr_t(L"A"), &m_output), S_OK);
    EXPECT_EQ(m_output.lVal, 1);
    EXPECT_EQ(reinterpret_cast<WithInputSlot>(table[5])(self, _bstr_t(L"A"), _variant_t(2L), &m_output), S_OK);
    EXPECT_EQ(m_output.lVal, 2);
    using UnusedSlot = HRESULT(STDMETHODCALLTYPE*)(void*);
    EXPECT_EQ(reinterpret_cast<UnusedSlot>(table[4])(self), E_NOTIMPL);
    EXPECT_THAT(Calls(),
                ElementsAre("IPlixCommand::Execute", "IPlixCommand::ExecuteWithInput", "IPlixCommand::SecondMethod"));
}

TEST_F(PlixCommandDoubleTest, Interface_HasItsIdentifier)
{
    const IID id = {0x233A5811, 0xAB16, 0x4A74, {0x8D, 0x08, 0x2D, 0x14, 0x8A, 0xBE, 0x08, 0x9C}};
    EXPECT_TRUE(id == __uuidof(IPlixCommandServer));
}

TEST_F(PlixCommandDoubleTest, Execute_GivesTheAnswerOfEachType)
{
    Answer("Bool", {{"answer", {{"bool", true}}}});
    Answer("Number", {{"answer", {{"i4", 3}}}});
    Answer("Text", {{"answer", {{"bstr", "<a/>"}}}});
    Answer("Empty", {{"answer", {{"empty", true}}}});
    Answer("NullText", {{"answer", {{"null-bstr", true}}}});
    Answer("Real", {{"answer", {{"r8", 1.5}}}});
    Answer("Bytes", {{"answer", {{"ui1-array", {1, 2}}}}});
    const std::pair<const wchar_t*, int> expected[] = {
        {L"Bool", VT_BOOL},     {L"Number", VT_I4}, {L"Text", VT_BSTR},           {L"Empty", VT_EMPTY},
        {L"NullText", VT_BSTR}, {L"Real", VT_R8},   {L"Bytes", VT_ARRAY | VT_UI1}};
    for (const auto& [command, type] : expected)
    {
        EXPECT_EQ(Execute(command), S_OK) << command;
        EXPECT_EQ(m_output.vt, type) << command;
        m_output.Clear();
    }
}

TEST_F(PlixCommandDoubleTest, Execute_JournalsTheCommand)
{
    Answer("SmartAdapter.Status", {{"answer", 3}});
    EXPECT_EQ(Execute(L"SmartAdapter.Status"), S_OK);
    EXPECT_EQ(LastDetails("call", "IPlixCommand::Execute"), nlohmann::json({{"command", "SmartAdapter.Status"}}));
}

TEST_F(PlixCommandDoubleTest, Execute_JournalsAnOutputThatWasNotEmpty)
{
    Answer("A", {{"answer", 3}});
    m_output = 9L;
    EXPECT_EQ(Execute(L"A"), S_OK);
    EXPECT_EQ(LastDetails("call", "IPlixCommand::Execute").at("output-type-before"), VT_I4);
}

TEST_F(PlixCommandDoubleTest, Execute_OfAnUnknownCommandIsInvalid)
{
    EXPECT_EQ(Execute(L"No.Such"), InvalidCommand);
    EXPECT_EQ(m_spCommand->Execute(nullptr, &m_output), InvalidCommand);
    EXPECT_EQ(m_output.vt, VT_EMPTY);
}

TEST_F(PlixCommandDoubleTest, Execute_FailsWithTheGivenCode)
{
    Answer("A", {{"answer", 3}, {"hr", "0x80070057"}});
    EXPECT_EQ(Execute(L"A"), E_INVALIDARG);
    EXPECT_EQ(m_output.vt, VT_EMPTY);
}

TEST_F(PlixCommandDoubleTest, Execute_SucceedsWithTheGivenCode)
{
    Answer("A", {{"answer", 3}, {"hr", 1}});
    EXPECT_EQ(Execute(L"A"), S_FALSE);
    EXPECT_EQ(m_output.lVal, 3);
}

TEST_F(PlixCommandDoubleTest, Execute_WithoutAnswerLeavesTheOutputUntouched)
{
    Answer("A", nlohmann::json::object());
    m_output = 9L;
    EXPECT_EQ(Execute(L"A"), S_OK);
    EXPECT_EQ(m_output.lVal, 9);
}

TEST_F(PlixCommandDoubleTest, Execute_WithoutOutputIsRefused)
{
    Answer("A", {{"answer", 3}});
    EXPECT_EQ(m_spCommand->Execute(_bstr_t(L"A"), nullptr), E_POINTER);
}

TEST_F(PlixCommandDoubleTest, Execute_FailsByPlan)
{
    Answer("A", {{"answer", 3}});
    CallPlan::Instance().Fail("IPlixCommand::Execute", PlannedFailure, 2);
    EXPECT_EQ(Execute(L"A"), S_OK);
    m_output.Clear();
    EXPECT_EQ(Execute(L"A"), PlannedFailure);
    EXPECT_EQ(m_output.vt, VT_EMPTY);
    EXPECT_EQ(Execute(L"A"), S_OK);
}

TEST_F(PlixCommandDoubleTest, Execute_OfANameWithPointerSignsFindsItsFact)
{
    Facts::Instance().Set("/commands/a~1b~0c", {{"answer", 5}});
    EXPECT_EQ(Execute(L"a/b~c"), S_OK);
    EXPECT_EQ(m_output.lVal, 5);
}

TEST_F(PlixCommandDoubleTest, ExecuteWithInput_ChoosesTheAnswerAndJournalsTheInput)
{
    Answer("Ports", {{"answer", "other"}, {"by-input", {{"1", {{"answer", "one"}}}, {"two", {{"hr", "0x80004005"}}}}}});
    EXPECT_EQ(ExecuteWithInput(L"Ports", _variant_t(1L)), S_OK);
    EXPECT_STREQ(m_output.bstrVal, L"one");
    EXPECT_EQ(LastDetails("call", "IPlixCommand::ExecuteWithInput").at("input"),
              nlohmann::json({{"vt", VT_I4}, {"value", 1}}));
    m_output.Clear();
    EXPECT_EQ(ExecuteWithInput(L"Ports", _variant_t(7L)), S_OK);
    EXPECT_STREQ(m_output.bstrVal, L"other");
    m_output.Clear();
    EXPECT_EQ(ExecuteWithInput(L"Ports", _variant_t(L"two")), E_FAIL);
}

TEST_F(PlixCommandDoubleTest, ExecuteWithInput_FailsByPlan)
{
    CallPlan::Instance().Fail("IPlixCommand::ExecuteWithInput", PlannedFailure);
    EXPECT_EQ(ExecuteWithInput(L"A", _variant_t(1L)), PlannedFailure);
}

TEST_F(PlixCommandDoubleTest, Delay_TakesThatLong)
{
    Answer("A", {{"answer", 1}, {"delay-ms", 200}});
    const ULONGLONG before = GetTickCount64();
    EXPECT_EQ(Execute(L"A"), S_OK);
    // The clock has steps of up to 16 ms.
    EXPECT_GE(GetTickCount64() - before, 180u);
}

TEST_F(PlixCommandDoubleTest, Hang_LastsUntilTheFactChanges)
{
    Answer("A", {{"answer", 1}, {"hang", true}});
    std::atomic<bool> done = false;
    std::thread caller(
        [&]
        {
            VARIANT output{};
            EXPECT_EQ(m_spCommand->Execute(_bstr_t(L"A"), &output), S_OK);
            done = true;
        });
    Sleep(60);
    EXPECT_FALSE(done);
    Facts::Instance().Set("/commands/A/hang", false);
    caller.join();
    EXPECT_TRUE(done);
}

TEST_F(PlixCommandDoubleTest, OleRun_PutsItIntoTheRunningState)
{
    IRunnableObject* runnable = nullptr;
    ASSERT_EQ(m_spCommand->QueryInterface(IID_IRunnableObject, reinterpret_cast<void**>(&runnable)), S_OK);
    EXPECT_FALSE(runnable->IsRunning());
    EXPECT_EQ(RealFunctions::Instance().OleRun(m_spCommand), S_OK);
    EXPECT_TRUE(runnable->IsRunning());
    EXPECT_EQ(LastDetails("com", "IRunnableObject::Run").at("class"), "PlixCommand");
    runnable->Release();
}

TEST_F(PlixCommandDoubleTest, OleRun_FailsWhenRunFailsByPlan)
{
    CallPlan::Instance().Fail("IRunnableObject::Run", PlannedFailure);
    EXPECT_EQ(RealFunctions::Instance().OleRun(m_spCommand), PlannedFailure);
}
} // namespace
} // namespace Simulator
