#include "tests/simulator/toasts/ScreenTest.h"

#include <filesystem>

void ScreenTest::SetUp()
{
    const unsigned number = ShowDrawn(L"probe", L"");
    RECT place{};
    if (FAILED(m_desktop.Place(number, place)))
        GTEST_SKIP() << "No window can be shown here.";
    m_desktop.Reset();
    Simulator::Journal::Instance().Clear();
}

ScreenTest::~ScreenTest()
{
    for (const std::wstring& file : m_lstFiles)
        DeleteFileW(file.c_str());
}

unsigned ScreenTest::ShowDrawn(std::wstring_view title, std::wstring_view text, std::wstring_view image)
{
    const ToastAbi::IToastNotificationPtr toast = Toast(title, text, image);
    RegisterHandler(toast, m_calls, "handler");
    Show(toast);
    return m_desktop.Visible().back();
}

RECT ScreenTest::Place(unsigned number)
{
    RECT place{};
    EXPECT_EQ(m_desktop.Place(number, place), S_OK);
    return place;
}

PixelImage ScreenTest::Picture(unsigned number)
{
    const std::wstring file = TemporaryFile(L"picture" + std::to_wstring(number) + L".png");
    EXPECT_EQ(number == 0 ? m_desktop.PictureAll(file) : m_desktop.Picture(number, file), S_OK);
    return PixelImage(file);
}

std::wstring ScreenTest::TemporaryFile(const std::wstring& name)
{
    const std::wstring file = (std::filesystem::temp_directory_path() /
                               (L"orvik-toasts-" + std::to_wstring(GetCurrentProcessId()) + L"-" + name))
                                  .wstring();
    m_lstFiles.push_back(file);
    return file;
}
