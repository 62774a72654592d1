#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>

namespace Simulator
{
// Whether the window is a dialog or a message box: a top-level window of class "#32770".
[[nodiscard]] bool IsDialog(HWND window);

// What a dialog shows and offers:
//   "title"; "text": its message; "box": true for a message box of Windows; "topmost", "foreground"
//   "icon": "information", "warning", "error", "none", "unknown" for one that is not the system's
//   "link": text of the control that the agent has made a link, "check-box": {"text", "checked"}; null without one
//   "controls": [{"id", "class", "text"}], those that can be seen, first to last
// On the dialog's own thread.
[[nodiscard]] nlohmann::json DescribeDialog(HWND dialog);

// The control that a person would use; null when the dialog has none.
[[nodiscard]] HWND FindOkButton(HWND dialog);
[[nodiscard]] HWND FindCheckBox(HWND dialog);
[[nodiscard]] HWND FindLink(HWND dialog);
} // namespace Simulator
