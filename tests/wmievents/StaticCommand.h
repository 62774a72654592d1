#pragma once

#include "platform/PlixCommand.h"

#include <windows.h>

#include <oleauto.h>

#include <cwchar>

namespace Tests
{
// A platform command object that takes nothing from operator new. It has every interface that it is asked for, but
// tells of no errors, and is never destroyed: the smart adapter's status is 3, the machine is the one given, the
// firmware holds message 2 for whichever port is asked about and the audit log that is given, and everything else is
// true.
class StaticCommand final : public IPlixCommand
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        const bool hasIt = iid != IID_ISupportErrorInfo;
        *object = hasIt ? this : nullptr;
        return hasIt ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE Execute(BSTR command, VARIANT* output) override
    {
        if (std::wcscmp(command, L"SmartAdapter.Status") == 0)
        {
            output->vt = VT_I4;
            output->lVal = 3;
        }
        else if (std::wcscmp(command, L"Platform.MachineID") == 0)
            return Answer(m_pMachineId, output);
        else if (std::wcscmp(command, L"EmbeddedController.AuditLog") == 0)
            return Answer(m_pAuditLog, output);
        else
        {
            output->vt = VT_BOOL;
            output->boolVal = VARIANT_TRUE;
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ExecuteWithInput(BSTR, VARIANT, VARIANT* output) override
    {
        return Answer(L"<GetUsbCMessagesOutput><Output><Data NumberOfPorts='1'><Port0 NumberOfMessages='1'>"
                      L"<Message0 MessageId='2' Valid='true'/></Port0></Data></Output></GetUsbCMessagesOutput>",
                      output);
    }

    const wchar_t* m_pMachineId = L"8A11";
    const wchar_t* m_pAuditLog = L"<AuditLog/>";

private:
    static HRESULT Answer(const wchar_t* text, VARIANT* output)
    {
        output->bstrVal = SysAllocString(text);
        if (output->bstrVal == nullptr)
            return E_OUTOFMEMORY;
        output->vt = VT_BSTR;
        return S_OK;
    }
};
} // namespace Tests
