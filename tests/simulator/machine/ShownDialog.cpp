#include "tests/simulator/machine/ShownDialog.h"

#include "res/Resource.h"
#include "simulator/model/Journal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace
{
using namespace std::chrono_literals;
using Simulator::DialogAnswer;
using Simulator::DialogDesktop;

constexpr auto g_limit = 60s;

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
    {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        SetDlgItemTextW(dialog, IDC_MESSAGE_TEXT, L"message");
    }
    const auto* behaviour = reinterpret_cast<const DialogBehaviour*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (behaviour != nullptr && *behaviour && (*behaviour)(dialog, message, wParam))
        return TRUE;
    if (message == WM_COMMAND || message == WM_CLOSE)
        EndDialog(dialog, 0);
    return message == WM_INITDIALOG || message == WM_COMMAND || message == WM_CLOSE ? TRUE : FALSE;
}

// The number of a dialog that was not open before.
unsigned WaitForAnother(const std::vector<unsigned>& before)
{
    const auto end = std::chrono::steady_clock::now() + g_limit;
    while (std::chrono::steady_clock::now() < end)
    {
        for (const unsigned number : DialogDesktop::Instance().Open())
        {
            if (std::find(before.begin(), before.end(), number) == before.end())
                return number;
        }
        std::this_thread::sleep_for(1ms);
    }
    ADD_FAILURE() << "nothing was opened";
    return 0;
}
} // namespace

void ShowDialog(UINT templateId, const DialogBehaviour& behaviour)
{
    DialogDesktop::Instance().Watch(
        [&]
        {
            return DialogBoxParamW(nullptr, MAKEINTRESOURCEW(templateId), nullptr, &Procedure,
                                   reinterpret_cast<LPARAM>(&behaviour));
        });
}

void ShowBox(const std::wstring& text, const std::wstring& title, UINT type)
{
    DialogDesktop::Instance().Watch([&] { return MessageBoxW(nullptr, text.c_str(), title.c_str(), type); });
}

ShownDialog::ShownDialog(std::function<void()> show)
{
    const std::vector<unsigned> before = DialogDesktop::Instance().Open();
    m_thread = std::thread(std::move(show));
    m_nNumber = WaitForAnother(before);
}

ShownDialog::ShownDialog(UINT templateId, DialogBehaviour behaviour)
    : ShownDialog([templateId, behaviour = std::move(behaviour)] { ShowDialog(templateId, behaviour); })
{
}

ShownDialog::~ShownDialog()
{
    if (IsOpen())
        Answer(DialogAnswer::Close);
    m_thread.join();
}

void ShownDialog::Answer(DialogAnswer answer) const
{
    DialogDesktop::Instance().Answer(m_nNumber, answer, g_limit);
}

bool ShownDialog::IsOpen() const
{
    const std::vector<unsigned> open = DialogDesktop::Instance().Open();
    return std::find(open.begin(), open.end(), m_nNumber) != open.end();
}

std::vector<std::string> DialogEntries()
{
    std::vector<std::string> entries;
    for (const Simulator::JournalEntry& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strKind != "dialog")
            continue;
        const std::string with = entry.m_details.value("with", "");
        entries.push_back(entry.m_strSubject + " " + std::to_string(entry.m_details.value("number", 0u)) +
                          (with.empty() ? "" : " " + with));
    }
    return entries;
}
