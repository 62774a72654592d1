#pragma once

// Policy by which administrators silence the agent. Read anew at each call; any thread.
class CSettingsControl
{
public:
    // True when the first policy key that opens holds a string of that name which is "true" in any case.
    static bool GetRegistrySetting(const wchar_t* valueName);
};

// True when no message of any kind may be shown.
bool AreAllNotificationsSuppressed();
