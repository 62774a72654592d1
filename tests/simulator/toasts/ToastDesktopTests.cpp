#include "tests/simulator/toasts/RecordingHandler.h"
#include "tests/simulator/toasts/ToastsTest.h"

#include <thread>

using Simulator::Facts;
using Simulator::LiveObjects;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using ToastDesktopTest = ToastsTest;
} // namespace

TEST_F(ToastDesktopTest, Show_JournalsWhatThePersonSees)
{
    Show(Toast(L"Title & more", L"Some \"text\"", L"file:///C:\\none.png"));
    EXPECT_THAT(ToastEntries(), ElementsAre("shown"));
    const nlohmann::json details = LastToastDetails();
    EXPECT_EQ(details["number"], 1);
    EXPECT_EQ(details["app-id"], "Orvik Notifications");
    EXPECT_EQ(details["title"], "Title & more");
    EXPECT_EQ(details["texts"], (nlohmann::json{"Title & more", "Some \"text\"", ""}));
    EXPECT_EQ(details["image"], "file:///C:\\none.png");
    EXPECT_THAT(details["xml"].get<std::string>(), testing::HasSubstr("<text id=\"1\">Title &amp; more</text>"));
}

TEST_F(ToastDesktopTest, Show_TextsBeyondAscii_AreUtf8)
{
    Show(Toast(L"\x00DC\x4F60\xD83D\xDE00", L""));
    EXPECT_EQ(LastToastDetails()["title"], "\xC3\x9C\xE4\xBD\xA0\xF0\x9F\x98\x80");
}

TEST_F(ToastDesktopTest, Show_LaterChangeOfTheDocument_IsNotSeen)
{
    const ToastAbi::IToastNotificationPtr toast = Toast(L"before", L"");
    Show(toast);
    ToastAbi::IXmlDocumentPtr document;
    ASSERT_EQ(toast->get_Content(&document), S_OK);
    AppendText(document, Element(document, L"text"), L" after");
    EXPECT_EQ(m_desktop.Snapshot().front().m_content.Title(), L"before");
}

TEST_F(ToastDesktopTest, SeveralToasts_AreNumberedAndEndSeparately)
{
    for (const wchar_t* title : {L"one", L"two", L"three"})
        Show(Toast(title, L""));
    EXPECT_EQ(m_desktop.VisibleCount(), 3u);
    EXPECT_EQ(m_desktop.Dismiss(2), S_OK);
    EXPECT_THAT(m_desktop.Visible(), ElementsAre(1, 3));
    EXPECT_EQ(LastToastDetails()["title"], "two");
    EXPECT_EQ(m_desktop.Click(3), S_OK);
    EXPECT_EQ(m_desktop.TimeOut(1), S_OK);
    EXPECT_THAT(ToastEntries(), ElementsAre("shown", "shown", "shown", "dismissed", "clicked", "timed-out"));
}

TEST_F(ToastDesktopTest, Endings_AreJournalledWithTheirReason)
{
    const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"");
    Show(toast);
    EXPECT_EQ(m_desktop.Dismiss(1), S_OK);
    EXPECT_EQ(LastToastDetails(), (nlohmann::json{{"number", 1}, {"title", "title"}, {"reason", "UserCanceled"}}));
    Show(toast);
    EXPECT_EQ(Notifier()->Hide(toast), S_OK);
    EXPECT_EQ(LastToastDetails(), (nlohmann::json{{"number", 2}, {"title", "title"}, {"reason", "ApplicationHidden"}}));
    Show(toast);
    EXPECT_EQ(m_desktop.TimeOut(3), S_OK);
    EXPECT_EQ(LastToastDetails(), (nlohmann::json{{"number", 3}, {"title", "title"}, {"reason", "TimedOut"}}));
    Show(toast);
    EXPECT_EQ(m_desktop.Fail(4, E_ACCESSDENIED), S_OK);
    EXPECT_EQ(LastToastDetails(), (nlohmann::json{{"number", 4}, {"title", "title"}, {"error", "0x80070005"}}));
    Show(toast);
    EXPECT_EQ(m_desktop.Click(5), S_OK);
    EXPECT_EQ(LastToastDetails(), (nlohmann::json{{"number", 5}, {"title", "title"}}));
}

TEST_F(ToastDesktopTest, NumberThatIsNotThere_IsRefusedAndNotJournalled)
{
    Show(Toast(L"title", L""));
    EXPECT_EQ(m_desktop.Click(1), S_OK);
    for (const unsigned number : {0u, 1u, 2u})
    {
        EXPECT_EQ(m_desktop.Click(number), NotFound);
        EXPECT_EQ(m_desktop.Dismiss(number), NotFound);
        EXPECT_EQ(m_desktop.TimeOut(number), NotFound);
        EXPECT_EQ(m_desktop.Fail(number, E_FAIL), NotFound);
    }
    EXPECT_THAT(ToastEntries(), ElementsAre("shown", "clicked"));
}

TEST_F(ToastDesktopTest, Hide_ToastThatIsNotShown_IsNoError)
{
    EXPECT_EQ(Notifier()->Hide(Toast(L"title", L"")), S_OK);
    EXPECT_THAT(ToastEntries(), IsEmpty());
}

TEST_F(ToastDesktopTest, TimeOutFact_EndsTheToastByItself)
{
    HandlerCalls calls;
    Facts::Instance().Set("/toasts/timeout-ms", 200);
    const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"");
    RegisterHandler(toast, calls, "handler");
    const ULONGLONG before = GetTickCount64();
    Show(toast);
    for (int i = 0; i < 500 && m_desktop.VisibleCount() != 0; ++i)
        Sleep(10);
    EXPECT_GE(GetTickCount64() - before, 200u);
    // The screen's thread may be between taking the toast away and raising its event.
    for (int i = 0; i < 500 && calls.All().empty(); ++i)
        Sleep(10);
    EXPECT_THAT(calls.Lines(), ElementsAre("handler: dismissed 2"));
    EXPECT_THAT(ToastEntries(), ElementsAre("shown", "timed-out"));
}

TEST_F(ToastDesktopTest, TimeOutFact_EachToastHasItsOwn)
{
    Facts::Instance().Set("/toasts/timeout-ms", 60000);
    Show(Toast(L"long", L""));
    Facts::Instance().Set("/toasts/timeout-ms", 100);
    Show(Toast(L"short", L""));
    for (int i = 0; i < 500 && m_desktop.VisibleCount() != 1; ++i)
        Sleep(10);
    EXPECT_THAT(m_desktop.Visible(), ElementsAre(1));
}

TEST_F(ToastDesktopTest, ManyThreads_EveryToastEndsOnce)
{
    constexpr unsigned count = 40;
    HandlerCalls calls;
    const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"");
    RegisterHandler(toast, calls, "handler");
    for (unsigned i = 0; i < count; ++i)
        Show(toast);
    std::atomic<unsigned> ended = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [&]
            {
                for (unsigned number = 1; number <= count; ++number)
                    ended += SUCCEEDED(number % 2 == 0 ? m_desktop.Click(number) : m_desktop.Dismiss(number)) ? 1 : 0;
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(ended, count);
    m_desktop.WaitForEvents();
    EXPECT_EQ(calls.All().size(), count);
}

TEST_F(ToastDesktopTest, Reset_TakesAllAwayWithoutEventsAndStartsOver)
{
    HandlerCalls calls;
    {
        const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"");
        RegisterHandler(toast, calls, "handler");
        Show(toast);
        Show(toast);
    }
    m_desktop.Reset();
    EXPECT_EQ(m_desktop.VisibleCount(), 0u);
    EXPECT_THAT(calls.All(), IsEmpty());
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
    Show(Toast(L"title", L""));
    EXPECT_THAT(m_desktop.Visible(), ElementsAre(1));
}

TEST_F(ToastDesktopTest, Setting_IsTheFact)
{
    ToastAbi::NotificationSetting setting{};
    EXPECT_EQ(Notifier()->get_Setting(&setting), S_OK);
    EXPECT_EQ(setting, ToastAbi::NotificationSetting::Enabled);
    Facts::Instance().Set("/toasts/setting", 3);
    EXPECT_EQ(Notifier()->get_Setting(&setting), S_OK);
    EXPECT_EQ(setting, ToastAbi::NotificationSetting::DisabledByGroupPolicy);
}

TEST_F(ToastDesktopTest, NotDrawn_HasNeitherPlaceNorPicture)
{
    Show(Toast(L"title", L""));
    RECT place{};
    EXPECT_EQ(m_desktop.Place(1, place), E_FAIL);
    EXPECT_EQ(m_desktop.Picture(1, L"C:\\never.png"), E_FAIL);
    EXPECT_EQ(m_desktop.PictureAll(L"C:\\never.png"), E_FAIL);
    EXPECT_EQ(GetFileAttributesW(L"C:\\never.png"), INVALID_FILE_ATTRIBUTES);
}
