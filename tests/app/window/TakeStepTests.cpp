#include "app/TakeStep.h"

#include "tests/support/LogCapture.h"

#include <comdef.h>

#include <gmock/gmock.h>

#include <new>
#include <string>
#include <vector>

using testing::ElementsAre;
using TestSupport::LogLines;

TEST(TakeStep, StepWithoutAnException_IsTakenOnceAndLeavesNoRecord)
{
    int taken = 0;
    TakeStep("wWinMain", [&taken] { ++taken; });
    EXPECT_EQ(taken, 1);
    EXPECT_TRUE(TestSupport::NothingLogged());
}

TEST(TakeStep, Exception_IsOneErrorUnderThatNameAndTheNextStepIsTaken)
{
    std::vector<std::string> taken;
    TakeStep("first",
             [&taken]
             {
                 taken.emplace_back("first");
                 throw std::bad_alloc();
             });
    TakeStep("second",
             [&taken]
             {
                 taken.emplace_back("second");
                 throw _com_error(E_FAIL);
             });
    TakeStep("third",
             [&taken]
             {
                 taken.emplace_back("third");
                 throw 3;
             });
    TakeStep("fourth", [&taken] { taken.emplace_back("fourth"); });
    EXPECT_THAT(taken, ElementsAre("first", "second", "third", "fourth"));
    EXPECT_THAT(LogLines(), ElementsAre(L"Error|first|A step ended with an exception.",
                                        L"Error|second|A step ended with an exception.",
                                        L"Error|third|A step ended with an exception."));
}
