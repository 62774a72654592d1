#pragma once

#include "notifications/ToastAbi.h"

#include <windows.h>

#include <span>
#include <string>

// Shows Windows toasts from a desktop program. Any thread with or without an apartment; an object belongs to one
// thread. Every operation returns the first failing HRESULT of its steps and shows nothing then; nothing is retried.
// None raises: a lack of memory is E_OUTOFMEMORY.
class DesktopToast
{
public:
    // Both windows may be null. They are handed to the event handler of each toast.
    DesktopToast(HWND toastWindow, HWND mainWindow) : m_hwndToast(toastWindow), m_hwndMain(mainWindow) {}

    // Installs the Start-menu shortcut whose application id lets Windows show this program's toasts, unless a file of
    // that name exists or cannot be told to be missing. Threads that come together wait for each other, and one of them
    // installs it. E_INVALIDARG without the variable APPDATA, or when its value
    // and the name of the shortcut have 260 or more characters together. Needs an apartment on the calling thread.
    [[nodiscard]] HRESULT TryCreateShortcut();

    // Writes the shortcut to this program at the given full path; a failure leaves no new file there. One thread at a
    // time writes. Needs an apartment on the calling thread.
    [[nodiscard]] HRESULT InstallShortcut(const std::wstring& shortcutPath);

    // Shows one toast. A thread without an apartment is in the multithreaded one meanwhile. On systems without toasts
    // the result is the error of looking their functions up.
    [[nodiscard]] HRESULT DisplayToast(const std::wstring& title, const std::wstring& text);

    // Builds the document of a toast with the program's image, the title and the text.
    [[nodiscard]] HRESULT CreateToastXml(ToastAbi::IToastNotificationManagerStatics* manager,
                                         ToastAbi::IXmlDocumentPtr& spDocument, const std::wstring& title,
                                         const std::wstring& text);

    // Points the document's first "image" element at a file, given by its path without "file:///". E_INVALIDARG when
    // there is no such element or it has no "src".
    [[nodiscard]] HRESULT SetImageSrc(const std::wstring& imagePath, ToastAbi::IXmlDocument* document);

    // Gives the i-th value to the i-th "text" element. E_INVALIDARG when the document has fewer than two of them or
    // fewer than there are values.
    [[nodiscard]] HRESULT SetTextValues(std::span<const std::wstring> values, ToastAbi::IXmlDocument* document);

    // Appends a text node that holds the value to the node.
    [[nodiscard]] HRESULT SetNodeValueString(const std::wstring& value, ToastAbi::IXmlNode* node,
                                             ToastAbi::IXmlDocument* document);

    // Makes a toast of the document, registers one event handler for its three events and shows it.
    [[nodiscard]] HRESULT CreateToast(ToastAbi::IToastNotificationManagerStatics* manager,
                                      ToastAbi::IXmlDocument* document);

private:
    HWND m_hwndToast;
    HWND m_hwndMain;
};
