#include "notifications/NotificationsHandler.h"

#include "notifications/DesktopToast.h"
#include "platform/ComError.h"
#include "platform/PlixNotification.h"
#include "res/Resource.h"
#include "shared/TraceScope.h"
#include "usbc/UsbCBiosInfo.h"

#include <exception>
#include <iterator>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikNotifications
{
namespace
{
// Room for a title and for a text, in wide characters with the terminating zero.
constexpr int g_nTitleCapacity = 128;
constexpr int g_nTextCapacity = 520;
// Deliberately never shown, though its text is loaded: the smart adapter's own event tells of the adapter's capacity.
constexpr std::int32_t g_nSilentMessageId = 1;

template <int capacity>
std::wstring LoadText(HINSTANCE module, UINT id)
{
    wchar_t text[capacity]{};
    LoadStringW(module, id, text, capacity);
    return text;
}

// Runs a step of an operation that raises nothing; what the step raises is recorded under the operation's name.
template <class Step>
void EndWithRecord(const TraceScope& trace, Step step)
{
    HRESULT hr = E_OUTOFMEMORY;
    try
    {
        step();
        return;
    }
    catch (const _com_error& error)
    {
        hr = error.Error();
    }
    catch (const std::exception&) // NOLINT(bugprone-empty-catch)
    {
        // Only want of memory raises one here.
    }
    trace.Information(L"Exception occurred, [hr:0x%08X]", hr);
}
} // namespace

UINT UsbCMessageText(std::int32_t messageId) noexcept
{
    static constexpr UINT texts[] = {0,
                                     IDS_ADAPTER_HIGHER_CAPACITY,
                                     IDS_USBC_CANNOT_CHARGE,
                                     IDS_USBC_MORE_POWER_REQUESTED,
                                     IDS_USBC_MULTIPLE_CHARGERS,
                                     IDS_USBC_MULTIPLE_CHARGERS,
                                     IDS_USBC_DOCK_CABLE,
                                     IDS_USBC_ADAPTER_INCOMPATIBLE,
                                     0,
                                     IDS_USBC_MODE_NOT_SUPPORTED,
                                     IDS_USBC_USE_ORVIK_POWER,
                                     IDS_POWER_SOURCE_TOO_WEAK,
                                     IDS_USBC_POWER_LIMIT_EXCEEDED,
                                     IDS_USBC_POWER_SURGE,
                                     IDS_USBC_MODULE_NOT_SUPPORTED,
                                     IDS_USBC_TOO_MANY_MODULES,
                                     IDS_USBC_THUNDERBOLT_ORDER};
    return messageId >= 0 && messageId < static_cast<int>(std::size(texts)) ? texts[messageId] : 0;
}

void CNotificationsHandler::ShowUsbCMessages(unsigned portNumber)
{
    TraceScope trace(ORVIK_FUNCTION, L"portNumber = %d", portNumber);
    m_lstPortMessages.clear();
    EndWithRecord(trace, [&] { ReadAndShow(trace, portNumber); });
}

void CNotificationsHandler::ReadAndShow(const TraceScope& trace, unsigned portNumber)
{
    // A new reader each time: it keeps what it has read, and a message that is over would be shown again.
    CUsbCBiosInfo biosInfo;
    biosInfo.GetMessages(static_cast<int>(portNumber));
    m_lstPortMessages = biosInfo.Messages();
    if (m_lstPortMessages.empty())
    {
        trace.Verbose(L"There is no USB Type -C messages to show.");
        return;
    }
    const std::wstring title = LoadText<g_nTitleCapacity>(m_hModule, IDS_USBC_TITLE);
    // The reader's list, not the member: a toast can let a window message in that reads the messages anew.
    for (std::size_t i = 0; i < biosInfo.Messages().size(); ++i)
    {
        const std::int32_t messageId = biosInfo.Messages()[i].iMessageId;
        trace.Verbose(L"message #%d, message id = %d", static_cast<int>(i), messageId);
        // Each for itself: when memory runs out in one message, the next ones are shown all the same.
        EndWithRecord(trace, [&] { ShowMessage(i, messageId, title); });
    }
}

void CNotificationsHandler::ShowMessage(std::size_t position, std::int32_t messageId, const std::wstring& title)
{
    const UINT textId = UsbCMessageText(messageId);
    if (textId == 0)
        return;
    const std::wstring text = LoadText<g_nTextCapacity>(m_hModule, textId);
    if (messageId != g_nSilentMessageId)
        ShowToaster(0, UsbCToastId(position), title, text, m_strConfigurationToolPath, {});
}

void CNotificationsHandler::ShowBillboardMessage()
{
    const TraceScope trace(ORVIK_FUNCTION);
    EndWithRecord(trace,
                  [this]
                  {
                      const std::wstring title = LoadText<g_nTitleCapacity>(m_hModule, IDS_USBC_TITLE);
                      const std::wstring text = LoadText<g_nTextCapacity>(m_hModule, IDS_USBC_MODE_NOT_SUPPORTED);
                      ShowToaster(0, g_nBillboardToastId, title, text, m_strConfigurationToolPath, {});
                  });
}

int CNotificationsHandler::HandleACPIUSbCEvent()
{
    TraceScope trace(ORVIK_FUNCTION);
    ShowUsbCMessages(0);
    return trace.Exit(0);
}

void CNotificationsHandler::ShowToaster(std::uint64_t, std::uint32_t, const std::wstring& title,
                                        const std::wstring& text, const std::wstring&, const std::wstring&)
{
    TraceScope trace(ORVIK_FUNCTION);
    EndWithRecord(trace, [&] { ShowIfInstalled(trace, title, text); });
}

void CNotificationsHandler::ShowIfInstalled(const TraceScope& trace, const std::wstring& title,
                                            const std::wstring& text)
{
    // Held until the toast is shown, and never called: that it is installed is what counts.
    IUnknownPtr spNotification;
    if (const HRESULT hr = CreatePlixNotification(spNotification); FAILED(hr))
    {
        trace.Information(
            L"pIPlixNotification.CreateInstance of orvikplixutils.orvikPlixNotification failed., hr = 0x%X", hr);
        return;
    }
    trace.Verbose(L"Call Windows Toaster Message");
    trace.Verbose(L"Title: %s", title.c_str());
    trace.Verbose(L"Text: %s", text.c_str());
    // The toast's own records tell what became of it.
    static_cast<void>(DesktopToast(nullptr, nullptr).DisplayToast(title, text));
}
} // namespace Notifications::OrvikNotifications
