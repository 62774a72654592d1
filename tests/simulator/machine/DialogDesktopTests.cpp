#include "simulator/machine/DialogDesktop.h"

#include "res/Resource.h"
#include "shared/OwnerTypes.h"
#include "simulator/machine/AgentThreads.h"
#include "simulator/model/Journal.h"
#include "tests/simulator/machine/ShownDialog.h"
#include "tests/simulator/toasts/PixelImage.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <stdexcept>

namespace
{
using namespace Simulator;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto g_limit = 60s;

class DialogDesktopTest : public testing::Test
{
protected:
    DialogDesktopTest() { Journal::Instance().Clear(); }
};

DialogDesktop& Desktop()
{
    return DialogDesktop::Instance();
}

std::string Entry(const char* what, unsigned number, const char* with = "")
{
    return std::string(what) + " " + std::to_string(number) + with;
}

// Notes the commands that it gets and ends as any other.
DialogBehaviour Noting(std::vector<WPARAM>& commands)
{
    return [&commands](HWND, UINT message, WPARAM wParam)
    {
        if (message == WM_COMMAND)
            commands.push_back(LOWORD(wParam));
        return false;
    };
}

// Stays open at every command but OK.
bool StaysOpen(HWND, UINT message, WPARAM wParam)
{
    return message == WM_COMMAND && LOWORD(wParam) != IDOK;
}

// Its text is a link that shows a message box.
bool HasLink(HWND dialog, UINT message, WPARAM wParam)
{
    const HWND link = GetDlgItem(dialog, IDC_MORE_INFORMATION);
    if (message == WM_INITDIALOG)
    {
        SetWindowLongPtrW(link, GWL_STYLE, GetWindowLongPtrW(link, GWL_STYLE) | SS_NOTIFY);
        SetPropW(link, L"_Hyperlink_From_Static_", dialog);
    }
    if (message != WM_COMMAND || LOWORD(wParam) != IDC_MORE_INFORMATION)
        return false;
    ShowBox(L"more", L"");
    return true;
}
} // namespace

TEST_F(DialogDesktopTest, OpenedAndClosed_IsJournalled)
{
    unsigned number = 0;
    {
        const ShownDialog shown(IDD_MESSAGE);
        number = shown.Number();
        EXPECT_THAT(Desktop().Open(), ElementsAre(number));
        const JournalEntry opened = Journal::Instance().Entries().back();
        EXPECT_EQ(opened.m_details["text"], "message");
        EXPECT_EQ(opened.m_details["thread"], 0u);
        EXPECT_EQ(opened.m_details["foreground"], true);
        shown.Answer(DialogAnswer::Ok);
    }
    EXPECT_THAT(Desktop().Open(), IsEmpty());
    EXPECT_THAT(DialogEntries(),
                ElementsAre(Entry("opened", number), Entry("answered", number, " ok"), Entry("closed", number)));
}

TEST_F(DialogDesktopTest, AnswersThatEndIt_ItIsClosedWhenTheyReturn)
{
    const std::pair<DialogAnswer, std::vector<WPARAM>> answers[] = {
        {DialogAnswer::Ok, {IDOK}}, {DialogAnswer::Esc, {IDCANCEL}}, {DialogAnswer::Close, {}}};
    for (const auto& [answer, expected] : answers)
    {
        std::vector<WPARAM> commands;
        {
            const ShownDialog shown(IDD_MESSAGE, Noting(commands));
            shown.Answer(answer);
            EXPECT_FALSE(shown.IsOpen());
        }
        EXPECT_EQ(commands, expected);
    }
}

TEST_F(DialogDesktopTest, CheckBox_FollowsEachClick)
{
    const ShownDialog shown(IDD_PRIVACY_PANEL, &StaysOpen);
    for (const bool ticked : {true, false, true})
    {
        shown.Answer(DialogAnswer::Check);
        EXPECT_EQ(shown.Describe()["check-box"]["checked"], ticked);
    }
}

TEST_F(DialogDesktopTest, AnswerThatDoesNotEndIt_IsHandledWhenItReturns)
{
    int commands = 0;
    const ShownDialog shown(IDD_PRIVACY_PANEL,
                            [&](HWND, UINT message, WPARAM wParam)
                            {
                                if (message != WM_COMMAND || LOWORD(wParam) != IDCANCEL)
                                    return false;
                                Sleep(50);
                                ++commands;
                                return true;
                            });
    shown.Answer(DialogAnswer::Esc);
    EXPECT_EQ(commands, 1);
    EXPECT_TRUE(shown.IsOpen());
}

TEST_F(DialogDesktopTest, Link_ItsMessageBoxIsOpenWhenTheAnswerReturns)
{
    const ShownDialog shown(IDD_MESSAGE, &HasLink);
    shown.Answer(DialogAnswer::Link);
    ASSERT_EQ(Desktop().Open().size(), 2u);
    const unsigned box = Desktop().Open().back();
    EXPECT_EQ(Desktop().Describe(box)["text"], "more");
    EXPECT_EQ(shown.Describe()["text"], "message");
    Desktop().Answer(box, DialogAnswer::Ok, g_limit);
    EXPECT_THAT(Desktop().Open(), ElementsAre(shown.Number()));
}

TEST_F(DialogDesktopTest, MessageBox_IsClosedByEveryAnswer)
{
    for (const DialogAnswer answer : {DialogAnswer::Ok, DialogAnswer::Close, DialogAnswer::Esc})
    {
        const ShownDialog shown([] { ShowBox(L"text", L""); });
        shown.Answer(answer);
        EXPECT_FALSE(shown.IsOpen());
    }
}

TEST_F(DialogDesktopTest, NothingToClick_Throws)
{
    const ShownDialog shown(IDD_MESSAGE);
    EXPECT_THROW(shown.Answer(DialogAnswer::Check), std::runtime_error);
    EXPECT_THROW(shown.Answer(DialogAnswer::Link), std::runtime_error);
    EXPECT_TRUE(shown.IsOpen());
}

TEST_F(DialogDesktopTest, NoSuchDialog_Throws)
{
    unsigned number = 0;
    {
        number = ShownDialog(IDD_MESSAGE).Number();
    }
    for (const unsigned none : {0u, number, number + 1})
    {
        EXPECT_THROW(Desktop().Answer(none, DialogAnswer::Ok, g_limit), std::runtime_error);
        EXPECT_THROW((void)Desktop().Describe(none), std::runtime_error);
        EXPECT_THROW((void)Desktop().Picture(none, L"picture.png"), std::runtime_error);
    }
}

TEST_F(DialogDesktopTest, DialogHangs_AnswerThrowsAfterItsLimit)
{
    const Orvik::Shared::UniqueHandle release(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    {
        const ShownDialog shown(IDD_MESSAGE,
                                [&release](HWND, UINT message, WPARAM)
                                {
                                    if (message == WM_COMMAND)
                                        WaitForSingleObject(release.get(), INFINITE);
                                    return false;
                                });
        EXPECT_THROW(Desktop().Answer(shown.Number(), DialogAnswer::Ok, 50ms), std::runtime_error);
        SetEvent(release.get());
        while (shown.IsOpen())
            std::this_thread::yield();
    }
}

TEST_F(DialogDesktopTest, EndsBeforeItIsShown_NobodyHearsOfIt)
{
    ShowDialog(IDD_MESSAGE,
               [](HWND dialog, UINT message, WPARAM)
               {
                   if (message == WM_INITDIALOG)
                       EndDialog(dialog, 0);
                   return false;
               });
    EXPECT_THAT(DialogEntries(), IsEmpty());
    EXPECT_THAT(Desktop().Open(), IsEmpty());
}

TEST_F(DialogDesktopTest, SeveralAtOnce_AreAnsweredByNumber)
{
    const ShownDialog first(IDD_MESSAGE);
    const ShownDialog second(IDD_PRIVACY_PANEL);
    const ShownDialog third(IDD_MESSAGE);
    EXPECT_THAT(Desktop().Open(), ElementsAre(first.Number(), second.Number(), third.Number()));
    EXPECT_LT(first.Number(), second.Number());
    second.Answer(DialogAnswer::Ok);
    EXPECT_THAT(Desktop().Open(), ElementsAre(first.Number(), third.Number()));
    first.Answer(DialogAnswer::Close);
    EXPECT_THAT(Desktop().Open(), ElementsAre(third.Number()));
}

TEST_F(DialogDesktopTest, Picture_ShowsTheDialogWithItsFrame)
{
    const std::wstring file =
        (std::filesystem::temp_directory_path() / (L"orvik-dialog-" + std::to_wstring(GetCurrentProcessId()) + L".png"))
            .wstring();
    RECT place{};
    RECT inside{};
    const ShownDialog shown(IDD_MESSAGE,
                            [&](HWND dialog, UINT message, WPARAM)
                            {
                                if (message == WM_INITDIALOG)
                                {
                                    GetWindowRect(dialog, &place);
                                    GetClientRect(dialog, &inside);
                                }
                                return false;
                            });
    ASSERT_EQ(Desktop().Picture(shown.Number(), file), S_OK);
    const PixelImage picture(file);
    DeleteFileW(file.c_str());
    EXPECT_EQ(picture.Width(), place.right - place.left);
    EXPECT_EQ(picture.Height(), place.bottom - place.top);
    EXPECT_GT(picture.Height(), inside.bottom);
    if (picture.Colours().size() < 2)
        GTEST_SKIP() << "No window can be shown here.";
    EXPECT_GT(picture.Count(GetSysColor(COLOR_BTNFACE) & 0xFFFFFF), 1000u);
}

TEST_F(DialogDesktopTest, OnAnAgentsThread_ItsNumberIsTold)
{
    std::array<unsigned, 1> number{};
    const auto routine = [](void* parameter) -> DWORD
    {
        static_cast<unsigned*>(parameter)[0] = CurrentAgentThread();
        ShowDialog(IDD_MESSAGE);
        return 0;
    };
    Orvik::Shared::UniqueHandle thread;
    const ShownDialog shown(
        [&]
        {
            thread.reset(StartAgentThread(nullptr, 0, routine, number.data(), 0, nullptr));
            WaitForSingleObject(thread.get(), INFINITE);
        });
    const auto entries = Journal::Instance().Entries();
    const auto opened = std::find_if(entries.begin(), entries.end(),
                                     [](const JournalEntry& entry) { return entry.m_strSubject == "opened"; });
    ASSERT_NE(opened, entries.end());
    EXPECT_EQ(opened->m_details["thread"], number[0]);
}
