#include "simulator/toasts/GdiObjects.h"
#include "simulator/toasts/ToastPicture.h"
#include "tests/simulator/toasts/ScreenTest.h"

#include <objidl.h>

#include <gdiplus.h>

#include <filesystem>
#include <fstream>

namespace
{
constexpr unsigned g_card = 0x1F1F1F;
constexpr unsigned g_white = 0xFFFFFF;
constexpr unsigned g_red = 0xFF0000;

class ToastPictureTest : public ScreenTest
{
protected:
    // A red square as a PNG file.
    std::wstring RedImage()
    {
        const std::wstring file = TemporaryFile(L"red.png");
        Gdiplus::Bitmap bitmap(64, 64, PixelFormat32bppARGB);
        Gdiplus::Graphics(&bitmap).Clear(Gdiplus::Color(255, 0, 0));
        const CLSID png = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
        EXPECT_EQ(bitmap.Save(file.c_str(), &png, nullptr), Gdiplus::Ok);
        return file;
    }
};
} // namespace

TEST_F(ToastPictureTest, Picture_ShowsACardWithText)
{
    const PixelImage picture = Picture(ShowDrawn(L"Smart adapter", L"It does not supply enough power."));
    EXPECT_EQ(picture.Width(), 364);
    EXPECT_GT(picture.Height(), 60);
    EXPECT_GT(picture.Count(g_card), 10000u);
    EXPECT_GT(picture.Count(g_white), 20u) << "no title";
    // Smoothed letters have shades between the colours of text and card.
    EXPECT_GT(picture.Colours().size(), 30u);
}

TEST_F(ToastPictureTest, Picture_DifferentTexts_LookDifferent)
{
    const unsigned first = ShowDrawn(L"A title", L"");
    const unsigned second = ShowDrawn(L"Another title, which is longer", L"");
    EXPECT_LT(Picture(first).Count(g_white), Picture(second).Count(g_white));
}

TEST_F(ToastPictureTest, LongText_WrapsToFourLinesAndEnds)
{
    std::wstring text;
    std::vector<int> heights;
    for (int i = 0; i < 60; ++i)
    {
        if (i % 10 == 0)
            heights.push_back(Picture(ShowDrawn(L"title", text)).Height());
        text += L"some more words ";
    }
    EXPECT_LT(heights[0], heights[1]);
    EXPECT_EQ(heights[3], heights[4]);
    EXPECT_EQ(heights[4], heights[5]);
}

TEST_F(ToastPictureTest, Image_IsDrawnWhenItsFileExists)
{
    const PixelImage picture = Picture(ShowDrawn(L"title", L"text", L"file:///" + RedImage()));
    EXPECT_EQ(picture.At(40, 40), g_red);
    EXPECT_GT(picture.Count(g_red), 2000u);
    EXPECT_GE(picture.Height(), 80);
}

TEST_F(ToastPictureTest, Image_MissingOrOfAnotherScheme_IsLeftOut)
{
    const std::wstring red = RedImage();
    for (const std::wstring& source : {std::wstring(), L"file:///" + red + L".missing", red, L"http://" + red})
    {
        const PixelImage picture = Picture(ShowDrawn(L"title", L"text", source));
        EXPECT_EQ(picture.Count(g_red), 0u);
        EXPECT_GT(picture.Count(g_white), 10u);
    }
}

TEST_F(ToastPictureTest, Image_NotAPicture_LeavesThePlaceEmpty)
{
    const std::wstring file = TemporaryFile(L"broken.png");
    std::ofstream(std::filesystem::path(file)) << "no picture";
    ASSERT_NE(GetFileAttributesW(file.c_str()), INVALID_FILE_ATTRIBUTES);
    const PixelImage picture = Picture(ShowDrawn(L"title", L"text", L"file:///" + file));
    EXPECT_EQ(picture.At(40, 40), g_card);
}

TEST_F(ToastPictureTest, All_HoldsEveryToastAtItsPlace)
{
    const unsigned first = ShowDrawn(L"first", L"text");
    const unsigned second = ShowDrawn(L"second", L"text\nof two lines");
    const PixelImage one = Picture(first);
    const PixelImage two = Picture(second);
    const PixelImage all = Picture(0);
    EXPECT_EQ(all.Width(), one.Width() + 2 * 16);
    EXPECT_EQ(all.Height(), one.Height() + two.Height() + 12 + 2 * 16);
    for (int y = 0; y < one.Height(); y += 7)
    {
        for (int x = 0; x < one.Width(); x += 7)
            ASSERT_EQ(all.At(x + 16, y + 16), one.At(x, y)) << x << "," << y;
    }
    EXPECT_EQ(all.Count(g_white), one.Count(g_white) + two.Count(g_white));
}

// Dialogs of languages that are written from right to left are pictured too.
TEST_F(ToastPictureTest, MirroredWindow_IsPicturedAsItLooks)
{
    constexpr LONG side = 100;
    const HWND window = CreateWindowExW(WS_EX_LAYOUTRTL, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, side, side,
                                        nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    UpdateWindow(window);
    // In coordinates of the screen: red at the left.
    const HDC context = GetDC(window);
    SetLayout(context, 0);
    const RECT left{0, 0, side / 2, side};
    const HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
    FillRect(context, &left, red);
    DeleteObject(red);
    ReleaseDC(window, context);
    const std::wstring file = TemporaryFile(L"mirrored.png");
    EXPECT_EQ(Simulator::SavePicture({window}, 0, file), S_OK);
    DestroyWindow(window);
    const PixelImage picture(file);
    EXPECT_EQ(picture.At(5, side / 2), g_red);
    EXPECT_NE(picture.At(side - 5, side / 2), g_red);
}

TEST_F(ToastPictureTest, UnknownToast_HasNoPicture)
{
    EXPECT_EQ(m_desktop.Picture(99, TemporaryFile(L"none.png")), E_FAIL);
    EXPECT_EQ(m_desktop.PictureAll(TemporaryFile(L"none.png")), E_FAIL);
}

TEST_F(ToastPictureTest, PathThatCannotBeWritten_Fails)
{
    const unsigned number = ShowDrawn(L"title", L"text");
    EXPECT_HRESULT_FAILED(m_desktop.Picture(number, L"Q:\\no\\such\\folder\\picture.png"));
}
