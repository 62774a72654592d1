#include "shared/TraceScope.h"

#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace Traced
{
using Orvik::Shared::TraceScope;

struct Subject
{
    void Nothing() { const TraceScope trace(ORVIK_FUNCTION); }

    HRESULT Result(HRESULT hr)
    {
        TraceScope trace(ORVIK_FUNCTION);
        return trace.Exit(hr);
    }

    BOOL Number(BOOL value)
    {
        TraceScope trace(ORVIK_FUNCTION, L"value: %d", value);
        return trace.Exit(value);
    }

    bool Truth(bool value)
    {
        TraceScope trace(ORVIK_FUNCTION);
        return trace.Exit(value);
    }

    void Throws()
    {
        const TraceScope trace(ORVIK_FUNCTION);
        throw std::runtime_error("out of here");
    }

    void Lines()
    {
        const TraceScope trace(ORVIK_FUNCTION, L"entry %s", L"text");
        trace.Verbose(L"verbose %d", 1);
        trace.Information(L"information 0x%X", 0xABCu);
        trace.Warning(L"warning %S", "narrow");
        trace.Error(L"error");
        trace.Verbose(L"under %S", trace.FunctionName());
    }
};
} // namespace Traced

namespace
{
using testing::ElementsAre;
using TestSupport::LogLines;
using Traced::Subject;

TEST(TraceScope, VoidFunction_LeavesTwoEmptyRecords)
{
    Subject().Nothing();
    EXPECT_THAT(LogLines(), ElementsAre(L"TraceIn|Traced::Subject::Nothing|", L"TraceOut|Traced::Subject::Nothing|"));
}

TEST(TraceScope, HresultFunction_ShowsItInHexadecimal)
{
    EXPECT_EQ(Subject().Result(S_OK), S_OK);
    EXPECT_EQ(Subject().Result(E_OUTOFMEMORY), E_OUTOFMEMORY);
    EXPECT_THAT(LogLines("Traced::Subject::Result"),
                ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x00000000", L"TraceIn|", L"TraceOut|hr: 0x8007000E"));
}

TEST(TraceScope, NumberFunction_ShowsTheNumber)
{
    EXPECT_EQ(Subject().Number(-7), -7);
    EXPECT_THAT(LogLines("Traced::Subject::Number"), ElementsAre(L"TraceIn|value: -7", L"TraceOut|-7"));
}

TEST(TraceScope, TruthFunction_ShowsOneOrZero)
{
    EXPECT_TRUE(Subject().Truth(true));
    EXPECT_FALSE(Subject().Truth(false));
    EXPECT_THAT(LogLines("Traced::Subject::Truth"),
                ElementsAre(L"TraceIn|", L"TraceOut|1", L"TraceIn|", L"TraceOut|0"));
}

TEST(TraceScope, Exception_LeavesTheExitRecordToo)
{
    EXPECT_THROW(Subject().Throws(), std::runtime_error);
    EXPECT_THAT(LogLines("Traced::Subject::Throws"), ElementsAre(L"TraceIn|", L"TraceOut|"));
}

TEST(TraceScope, LinesOfEachLevel_StandBetween)
{
    Subject().Lines();
    EXPECT_THAT(LogLines("Traced::Subject::Lines"),
                ElementsAre(L"TraceIn|entry text", L"Verbose|verbose 1", L"Information|information 0xABC",
                            L"Warning|warning narrow", L"Error|error", L"Verbose|under Traced::Subject::Lines",
                            L"TraceOut|"));
}

TEST(TraceScope, LastError_Survives)
{
    Subject().Nothing();
    SetLastError(ERROR_FILE_NOT_FOUND);
    Subject().Lines();
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}
} // namespace
