#include "simulator/doubles/PlixCommandDouble.h"

#include "tests/simulator/doubles/DoublesTest.h"

namespace Simulator
{
namespace
{
class PlixErrorInfoTest : public DoublesTest
{
protected:
    static void Offer()
    {
        Facts::Instance().Set("/platform/error-info", {{"source", "library"}, {"description", "broken"}});
    }
    static IErrorInfo* Taken()
    {
        IErrorInfo* info = nullptr;
        return GetErrorInfo(0, &info) == S_OK ? info : nullptr;
    }
    static HRESULT ExecuteUnknown(PlixCommandDouble& command)
    {
        VARIANT output{};
        return command.Execute(_bstr_t(L"No.Such"), &output);
    }
};

TEST_F(PlixErrorInfoTest, WithoutTheFact_NothingIsOffered)
{
    auto* command = new PlixCommandDouble;
    void* support = nullptr;
    EXPECT_EQ(command->QueryInterface(IID_ISupportErrorInfo, &support), E_NOINTERFACE);
    EXPECT_LT(ExecuteUnknown(*command), 0);
    EXPECT_EQ(Taken(), nullptr);
    command->Release();
}

TEST_F(PlixErrorInfoTest, WithTheFact_AFailureLeavesItBehind)
{
    Offer();
    auto* command = new PlixCommandDouble;
    EXPECT_EQ(ExecuteUnknown(*command), static_cast<HRESULT>(0x80000003));
    IErrorInfo* info = Taken();
    ASSERT_NE(info, nullptr);
    _bstr_t description;
    _bstr_t source;
    GUID id{};
    EXPECT_EQ(info->GetDescription(description.GetAddress()), S_OK);
    EXPECT_EQ(info->GetSource(source.GetAddress()), S_OK);
    EXPECT_EQ(info->GetGUID(&id), S_OK);
    EXPECT_STREQ(description.GetBSTR(), L"broken");
    EXPECT_STREQ(source.GetBSTR(), L"library");
    EXPECT_TRUE(id == __uuidof(IPlixCommandServer));
    EXPECT_EQ(info->Release(), 0u);
    command->Release();
}

TEST_F(PlixErrorInfoTest, WithTheFact_APlannedFailureLeavesItToo)
{
    Offer();
    auto* command = new PlixCommandDouble;
    CallPlan::Instance().Fail("IPlixCommand::Execute", PlannedFailure);
    EXPECT_EQ(ExecuteUnknown(*command), PlannedFailure);
    IErrorInfo* info = Taken();
    ASSERT_NE(info, nullptr);
    info->Release();
    command->Release();
}

TEST_F(PlixErrorInfoTest, Support_IsForTheCommandInterfaceAlone)
{
    Offer();
    auto* command = new PlixCommandDouble;
    ISupportErrorInfo* support = nullptr;
    ASSERT_EQ(command->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&support)), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(__uuidof(IPlixCommandServer)), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
    CallPlan::Instance().Fail("ISupportErrorInfo::InterfaceSupportsErrorInfo", PlannedFailure);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(__uuidof(IPlixCommandServer)), PlannedFailure);
    support->Release();
    command->Release();
}

TEST_F(PlixErrorInfoTest, TheFact_CountsWhenTheObjectIsMade)
{
    auto* command = new PlixCommandDouble;
    Offer();
    void* support = nullptr;
    EXPECT_EQ(command->QueryInterface(IID_ISupportErrorInfo, &support), E_NOINTERFACE);
    command->Release();
}
} // namespace
} // namespace Simulator
