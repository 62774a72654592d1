#pragma once

#include "simulator/toasts/ToastPainter.h"
#include "tests/simulator/toasts/PixelImage.h"
#include "tests/simulator/toasts/RecordingHandler.h"
#include "tests/simulator/toasts/ToastsTest.h"

// Toasts that are drawn. Where windows cannot be shown at all the test is skipped.
class ScreenTest : public ToastsTest
{
protected:
    ScreenTest() { Simulator::Facts::Instance().Set("/toasts/draw", true); }
    ~ScreenTest() override;
    void SetUp() override;

    // Shows a toast and answers its number.
    unsigned ShowDrawn(std::wstring_view title, std::wstring_view text, std::wstring_view image = L"");
    RECT Place(unsigned number);
    // A picture of one toast, or of all with 0.
    PixelImage Picture(unsigned number);
    // A file name in the temporary folder; the file is deleted after the test.
    std::wstring TemporaryFile(const std::wstring& name);

    HandlerCalls m_calls;

private:
    std::vector<std::wstring> m_lstFiles;
};
