#include "app/dialogs/MessageDialog.h"
#include "app/dialogs/PrivacyPanelDialog.h"
#include "tests/app/dialogs/DialogCalls.h"
#include "tests/app/dialogs/FontLedger.h"
#include "tests/app/dialogs/OpenDialog.h"
#include "tests/app/system/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Tests::OpenDialog;
using Tests::ProgramString;

// Dialogs that are open at the same time, each on a thread of its own.
namespace
{
class DialogThreadsTest : public testing::Test
{
protected:
    DialogThreadsTest() { g_nLinkKind = -1; }

    static std::unique_ptr<OpenDialog> Open(UINT stringId, MessageKind kind)
    {
        return std::make_unique<OpenDialog>([=] { ShowMessageDialog(stringId, kind); });
    }

    TemporaryFolder m_folder;
    Tests::FontLedger m_fonts;
    Tests::DialogCalls m_calls;
};
} // namespace

TEST_F(DialogThreadsTest, SeveralDialogs_EachShowsItsOwnMessage)
{
    const std::pair<UINT, MessageKind> messages[] = {
        {524, MessageKind::Recovered}, {525, MessageKind::NotRecovered}, {523, MessageKind::RuntimeIntrusion},
        {529, MessageKind::PowerOff},  {515, MessageKind::Notice},       {552, MessageKind::Warning}};
    std::vector<std::unique_ptr<OpenDialog>> dialogs;
    for (const auto& [id, kind] : messages)
        dialogs.push_back(Open(id, kind));
    const OpenDialog privacy([] { ShowPrivacyPanelDialog(555, MessageKind::Notice); });

    for (std::size_t i = 0; i < dialogs.size(); ++i)
    {
        ASSERT_NE(dialogs[i]->Window(), nullptr);
        EXPECT_EQ(dialogs[i]->Text(139), ProgramString(messages[i].first));
        EXPECT_TRUE(IsWindow(dialogs[i]->Window()));
    }
    EXPECT_EQ(privacy.Text(139), ProgramString(555));
    EXPECT_THAT(m_calls.Foreground(), SizeIs(7));
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
}

TEST_F(DialogThreadsTest, ClosingOne_LeavesTheOthersOpen)
{
    const auto first = Open(524, MessageKind::Recovered);
    const auto second = Open(525, MessageKind::NotRecovered);
    const auto third = Open(523, MessageKind::RuntimeIntrusion);
    second->Close();
    EXPECT_THAT(m_calls.Ends(), ElementsAre(0));
    EXPECT_EQ(first->Text(139), ProgramString(524));
    EXPECT_EQ(third->Text(139), ProgramString(523));
    first->Close();
    EXPECT_EQ(third->Text(139), ProgramString(523));
    EXPECT_THAT(m_calls.Ends(), ElementsAre(0, 0));
}

TEST_F(DialogThreadsTest, Link_OfEveryOpenDialogTellsWhatTheLastOneIsAbout)
{
    const auto first = Open(524, MessageKind::Recovered);
    const auto second = Open(552, MessageKind::Warning);
    const auto third = Open(525, MessageKind::NotRecovered);
    const auto last = Open(515, MessageKind::Notice);
    for (const OpenDialog* const dialog : {first.get(), second.get(), third.get()})
    {
        dialog->Click(140);
        EXPECT_TRUE(dialog->HasEnded());
    }
    EXPECT_THAT(m_calls.BoxTexts(), SizeIs(3));
    EXPECT_THAT(m_calls.BoxTexts(), Each(ProgramString(531)));
}

TEST_F(DialogThreadsTest, Link_FollowsADialogThatIsClosedAgain)
{
    const auto first = Open(524, MessageKind::Recovered);
    Open(523, MessageKind::RuntimeIntrusion)->Close();
    first->Click(140);
    EXPECT_TRUE(first->HasEnded());
    EXPECT_THAT(m_calls.BoxTexts(), ElementsAre(ProgramString(508)));
}

TEST_F(DialogThreadsTest, TwoPrivacyPanels_MarkerFollowsTheLastClick)
{
    const OpenDialog first([] { ShowPrivacyPanelDialog(555, MessageKind::Notice); });
    const OpenDialog second([] { ShowPrivacyPanelDialog(555, MessageKind::Notice); });
    SendDlgItemMessageW(first.Window(), 141, BM_CLICK, 0, 0);
    EXPECT_EQ(m_folder.ReadFile(L"IgnoreLumbraDialog.txt"), "true");
    SendDlgItemMessageW(second.Window(), 141, BM_CLICK, 0, 0);
    EXPECT_EQ(m_folder.ReadFile(L"IgnoreLumbraDialog.txt"), "true");
    SendDlgItemMessageW(first.Window(), 141, BM_CLICK, 0, 0);
    EXPECT_EQ(m_folder.ReadFile(L"IgnoreLumbraDialog.txt"), "(none)");
}

TEST_F(DialogThreadsTest, FourThreadsOfDialogs_AllAreShownAndNothingIsLeft)
{
    constexpr unsigned each = 10;
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < 4; ++thread)
    {
        threads.emplace_back(
            [thread]
            {
                for (unsigned i = 0; i < each; ++i)
                {
                    const auto kind = static_cast<MessageKind>((thread + i) % 6);
                    const auto dialog = Open(525, kind);
                    EXPECT_EQ(dialog->Text(139), ProgramString(525));
                    dialog->Close();
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(m_calls.Foreground(), SizeIs(4 * each));
    EXPECT_THAT(m_calls.Ends(), SizeIs(4 * each));
    EXPECT_THAT(m_calls.Ends(), Each(0));
    EXPECT_GT(m_fonts.Made(), 0u);
    EXPECT_EQ(m_fonts.Alive(), 0u);
    EXPECT_GE(g_nLinkKind, 0);
    EXPECT_LE(g_nLinkKind, 2);
}
