#include "wmievents/EventRegistration.h"

namespace Notifications::OrvikWmiEvents
{
HRESULT AskPlatform(const Orvik::Shared::TraceScope& trace, const wchar_t* supportCommand,
                    std::atomic<bool>* showPrivacyDialog, bool& isWanted)
{
    isWanted = false;
    IPlixCommandPtr spCommand;
    HRESULT hr = CreateCommand(trace, spCommand);
    if (FAILED(hr) || !spCommand)
        return hr;
    if (showPrivacyDialog != nullptr)
        *showPrivacyDialog = true;
    isWanted = supportCommand == nullptr || IsTrue(SendCommand(trace, spCommand, supportCommand, &hr));
    return hr;
}
} // namespace Notifications::OrvikWmiEvents
