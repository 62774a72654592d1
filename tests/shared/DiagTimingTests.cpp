#include "shared/Logger.h"

#include "tests/shared/ListenerDouble.h"

#include <gtest/gtest.h>

#include <utility>

namespace
{
using namespace Orvik::Shared;

struct Range
{
    const wchar_t* m_pMinimum;
    const wchar_t* m_pMaximum;
    unsigned m_nKind;
};

bool IsDiagTimingOn(std::initializer_list<Range> ranges)
{
    CLogger::Listeners listeners;
    auto next = listeners.begin();
    for (const Range& range : ranges)
        *next++ = ListenerDouble::Make(range.m_pMinimum, range.m_pMaximum, [](const auto&) {}, range.m_nKind);
    return CLogger(std::move(listeners)).IsDiagTimingOn();
}

TEST(DiagTiming, FileListenerThatTakesDiag_TurnsItOn)
{
    EXPECT_TRUE(IsDiagTimingOn({{L"TraceIn", L"Diag", ListenerKind::File}}));
    EXPECT_TRUE(IsDiagTimingOn({{L"TraceIn", L"Diag", ListenerKind::FileQueued}}));
    EXPECT_TRUE(IsDiagTimingOn({{L"Diag", L"Diag", ListenerKind::File}}));
    EXPECT_TRUE(IsDiagTimingOn({{L"Diag", L"Never", ListenerKind::File}}));
}

TEST(DiagTiming, FileListenerThatDoesNotTakeDiag_LeavesItOff)
{
    EXPECT_FALSE(IsDiagTimingOn({{L"TraceIn", L"Error", ListenerKind::File}}));
    EXPECT_FALSE(IsDiagTimingOn({{L"Never", L"Diag", ListenerKind::File}}));
}

TEST(DiagTiming, OtherListenersThatTakeDiag_LeaveItOff)
{
    EXPECT_FALSE(IsDiagTimingOn({{L"TraceIn", L"Diag", ListenerKind::Event},
                                 {L"TraceIn", L"Diag", ListenerKind::Debug},
                                 {L"TraceIn", L"Diag", ListenerKind::Console}}));
}

TEST(DiagTiming, TwoFileListeners_LastOneDecides)
{
    EXPECT_TRUE(
        IsDiagTimingOn({{L"Error", L"Error", ListenerKind::File}, {L"Error", L"Diag", ListenerKind::FileQueued}}));
    EXPECT_FALSE(
        IsDiagTimingOn({{L"Error", L"Diag", ListenerKind::File}, {L"Error", L"Error", ListenerKind::FileQueued}}));
}

TEST(DiagTiming, FileListenerBeforeAnother_IsRemembered)
{
    EXPECT_TRUE(IsDiagTimingOn({{L"Error", L"Diag", ListenerKind::File}, {L"Error", L"Error", ListenerKind::Debug}}));
}
} // namespace
