#pragma once

// The application user model id: the Start-menu shortcut carries it and toasts are shown under it, so both must agree.
inline constexpr wchar_t ApplicationUserModelId[] = L"Orvik Notifications";
