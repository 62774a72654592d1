#include "app/dialogs/MessageDialog.h"
#include "app/dialogs/PrivacyPanelDialog.h"
#include "res/Resource.h"
#include "tests/app/dialogs/FontLedger.h"
#include "tests/app/system/TemporaryFolder.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/HandleCount.h"

#include <psapi.h>

#include <gmock/gmock.h>

// A thousand dialogs leave nothing behind.
namespace
{
// Every dialog of this thread has the pointer on its link for a moment, and is then closed.
class HastyPerson
{
public:
    HastyPerson() : m_hHook(SetWindowsHookExW(WH_CALLWNDPROCRET, &OnReturn, nullptr, GetCurrentThreadId())) {}
    HastyPerson(const HastyPerson&) = delete;
    HastyPerson& operator=(const HastyPerson&) = delete;
    ~HastyPerson() { UnhookWindowsHookEx(m_hHook); }

    [[nodiscard]] static unsigned Seen() { return s_nSeen; }

private:
    static LRESULT CALLBACK OnReturn(int code, WPARAM wParam, LPARAM lParam)
    {
        const auto& call = *reinterpret_cast<const CWPRETSTRUCT*>(lParam);
        if (call.message == WM_INITDIALOG)
        {
            ++s_nSeen;
            SendDlgItemMessageW(call.hwnd, IDC_MORE_INFORMATION, WM_MOUSEMOVE, 0, MAKELPARAM(2, 2));
            PostMessageW(call.hwnd, WM_CLOSE, 0, 0);
        }
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }

    inline static unsigned s_nSeen = 0;

    HHOOK m_hHook;
};

struct Counts
{
    unsigned m_nHandles = TestSupport::OpenHandleCount();
    std::size_t m_nHeapBlocks = LiveHeapBlocks();
    std::size_t m_nGraphicsObjects = Tests::GraphicsObjectCount();

    bool operator==(const Counts&) const = default;
};

void PrintTo(const Counts& counts, std::ostream* stream)
{
    *stream << counts.m_nHandles << " handles, " << counts.m_nHeapBlocks << " blocks, " << counts.m_nGraphicsObjects
            << " graphics objects";
}

std::size_t PrivateBytes()
{
    PROCESS_MEMORY_COUNTERS_EX counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof(counters));
    return counters.PrivateUsage;
}

void ShowDialogs(unsigned count)
{
    const Tests::FontLedger fonts;
    for (unsigned i = 0; i < count; ++i)
    {
        Tests::FontLedger::Clear();
        if (i % 7 == 6)
            ShowPrivacyPanelDialog(555, MessageKind::Notice);
        else
            ShowMessageDialog(525, static_cast<MessageKind>(i % 7));
        ASSERT_EQ(Tests::FontLedger::Alive(), 0u) << "dialog " << i;
        const bool hasLink = i % 7 <= 2 || i % 7 == 5;
        ASSERT_EQ(Tests::FontLedger::Made(), hasLink ? 1u : 0u) << "dialog " << i;
    }
}
} // namespace

TEST(DialogLeak, GraphicsObjectCount_SeesAFont)
{
    const std::size_t before = Tests::GraphicsObjectCount();
    LOGFONTW shape{};
    const HFONT font = CreateFontIndirectW(&shape);
    EXPECT_EQ(Tests::GraphicsObjectCount(), before + 1);
    DeleteObject(font);
    EXPECT_EQ(Tests::GraphicsObjectCount(), before);
}

TEST(DialogLeak, ThousandDialogs_CountsAndMemoryStayFlat)
{
    const TemporaryFolder folder;
    const HastyPerson person;
    ShowDialogs(35);
    const Counts before;
    const std::size_t bytesBefore = PrivateBytes();
    ShowDialogs(1000);
    EXPECT_EQ(Counts(), before);
    // Far below what a thousand of the smallest objects take.
    EXPECT_LT(PrivateBytes(), bytesBefore + 512 * 1024);
    EXPECT_EQ(HastyPerson::Seen(), 1035u);
}
