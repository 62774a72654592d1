#include "simulator/machine/DialogReading.h"

#include "res/Resource.h"
#include "tests/simulator/machine/ShownDialog.h"

#include <gmock/gmock.h>

namespace
{
using namespace Simulator;

// Does something to the dialog before it is shown.
DialogBehaviour Prepared(std::function<void(HWND dialog)> prepare)
{
    return [prepare = std::move(prepare)](HWND dialog, UINT message, WPARAM)
    {
        if (message == WM_INITDIALOG)
            prepare(dialog);
        return false;
    };
}

DialogBehaviour WithIcon(HICON icon)
{
    return Prepared([icon](HWND dialog)
                    { SendDlgItemMessageW(dialog, IDC_KIND_ICON, STM_SETICON, reinterpret_cast<WPARAM>(icon), 0); });
}

// As the agent loads them.
HICON SystemIcon(LPCWSTR name)
{
    return static_cast<HICON>(LoadImageW(nullptr, name, IMAGE_ICON, 32, 32, LR_SHARED | LR_DEFAULTSIZE));
}

nlohmann::json Control(int id, const char* className, const char* text)
{
    return {{"id", id}, {"class", className}, {"text", text}};
}
} // namespace

TEST(DialogReading, Message_EverythingIsTold)
{
    const nlohmann::json dialog = ShownDialog(IDD_MESSAGE).Describe();
    EXPECT_EQ(dialog["title"], "Orvik Notifications");
    EXPECT_EQ(dialog["text"], "message");
    EXPECT_EQ(dialog["box"], false);
    EXPECT_EQ(dialog["icon"], "none");
    EXPECT_EQ(dialog["link"], nullptr);
    EXPECT_EQ(dialog["check-box"], nullptr);
    EXPECT_EQ(dialog["topmost"], true);
    const auto controls = dialog["controls"].get<std::vector<nlohmann::json>>();
    EXPECT_THAT(controls, testing::Contains(Control(IDOK, "Button", "OK")));
    EXPECT_THAT(controls, testing::Contains(Control(IDC_MESSAGE_TEXT, "Edit", "message")));
    EXPECT_THAT(controls,
                testing::Contains(Control(IDC_MORE_INFORMATION, "Static", "For More Information Click Here")));
}

TEST(DialogReading, HiddenControl_IsNotTold)
{
    const ShownDialog shown(
        IDD_MESSAGE, Prepared([](HWND dialog) { ShowWindow(GetDlgItem(dialog, IDC_MORE_INFORMATION), SW_HIDE); }));
    for (const nlohmann::json& control : shown.Describe()["controls"])
        EXPECT_NE(control["id"], IDC_MORE_INFORMATION);
}

TEST(DialogReading, NotAboveOthers_IsTold)
{
    const ShownDialog shown(
        IDD_MESSAGE,
        Prepared([](HWND dialog)
                 { SetWindowPos(dialog, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE); }));
    EXPECT_EQ(shown.Describe()["topmost"], false);
}

TEST(DialogReading, SystemIcons_AreToldApart)
{
    EXPECT_EQ(ShownDialog(IDD_MESSAGE, WithIcon(SystemIcon(IDI_INFORMATION))).Describe()["icon"], "information");
    EXPECT_EQ(ShownDialog(IDD_MESSAGE, WithIcon(SystemIcon(IDI_WARNING))).Describe()["icon"], "warning");
    EXPECT_EQ(ShownDialog(IDD_MESSAGE, WithIcon(SystemIcon(IDI_ERROR))).Describe()["icon"], "error");
    EXPECT_EQ(ShownDialog(IDD_MESSAGE, WithIcon(SystemIcon(IDI_QUESTION))).Describe()["icon"], "unknown");
}

TEST(DialogReading, Link_IsToldByItsMark)
{
    const ShownDialog shown(
        IDD_MESSAGE,
        Prepared([](HWND dialog)
                 { SetPropW(GetDlgItem(dialog, IDC_MORE_INFORMATION), L"_Hyperlink_From_Static_", dialog); }));
    EXPECT_EQ(shown.Describe()["link"], "For More Information Click Here");
}

TEST(DialogReading, CheckBox_IsToldWithItsState)
{
    const ShownDialog clear(IDD_PRIVACY_PANEL,
                            Prepared([](HWND dialog) { SetDlgItemTextW(dialog, IDC_DO_NOT_DISPLAY, L"never"); }));
    EXPECT_EQ(clear.Describe()["check-box"], (nlohmann::json{{"text", "never"}, {"checked", false}}));
    const ShownDialog ticked(IDD_PRIVACY_PANEL,
                             Prepared([](HWND dialog) { CheckDlgButton(dialog, IDC_DO_NOT_DISPLAY, BST_CHECKED); }));
    EXPECT_EQ(ticked.Describe()["check-box"], (nlohmann::json{{"text", ""}, {"checked", true}}));
}

TEST(DialogReading, MessageBox_IsTold)
{
    const nlohmann::json box = ShownDialog([] { ShowBox(L"first line\r\nsecond", L"title"); }).Describe();
    EXPECT_EQ(box["title"], "title");
    EXPECT_EQ(box["text"], "first line\r\nsecond");
    EXPECT_EQ(box["box"], true);
    EXPECT_EQ(box["icon"], "none");
    EXPECT_EQ(box["link"], nullptr);
}

TEST(DialogReading, OtherWindows_AreNoDialogs)
{
    const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    EXPECT_FALSE(IsDialog(window));
    DestroyWindow(window);
    bool isDialog = false;
    bool isChildDialog = true;
    ShowDialog(IDD_MESSAGE,
               [&](HWND dialog, UINT message, WPARAM)
               {
                   if (message != WM_INITDIALOG)
                       return false;
                   isDialog = IsDialog(dialog);
                   const HWND child =
                       CreateWindowExW(0, L"#32770", L"", WS_CHILD, 0, 0, 10, 10, dialog, nullptr, nullptr, nullptr);
                   isChildDialog = child == nullptr || IsDialog(child);
                   EndDialog(dialog, 0);
                   return true;
               });
    EXPECT_TRUE(isDialog);
    EXPECT_FALSE(isChildDialog);
}
