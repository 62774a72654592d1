#pragma once

#include "shared/OwnerTypes.h"
#include "usbc/UsbHub.h"

#include <string>
#include <vector>

// The hub's device file. Each request gives its error code, 0 for an answer.
class HubClient
{
public:
    HubClient();

    [[nodiscard]] bool IsOpen() const noexcept { return m_hHub != nullptr; }

    DWORD Send(DWORD code, void* buffer, DWORD size);
    DWORD AskNode(USB_NODE_INFORMATION& node);
    DWORD AskConnection(ULONG port, USB_NODE_CONNECTION_INFORMATION_EX& information);
    // The length that the hub declares, in bytes with the structure.
    DWORD AskDriverKeyLength(ULONG port, ULONG& bytes);
    // With room for so many bytes.
    DWORD AskDriverKey(ULONG port, ULONG bytes, std::wstring& name);

    // Bytes of the last answer.
    [[nodiscard]] DWORD Size() const noexcept { return m_dwSize; }

private:
    Orvik::Shared::UniqueHandle m_hHub;
    DWORD m_dwSize = 0;
};
