#include "platform/ComError.h"

namespace
{
_COM_SMARTPTR_TYPEDEF(ISupportErrorInfo, __uuidof(ISupportErrorInfo));

// The caller owns the result; null when the object offers nothing.
IErrorInfo* TakeErrorInfo(IUnknown* object, REFIID iid)
{
    if (object == nullptr)
        return nullptr;
    ISupportErrorInfoPtr spSupport;
    if (FAILED(object->QueryInterface(__uuidof(ISupportErrorInfo), reinterpret_cast<void**>(&spSupport))) || !spSupport)
        return nullptr;
    if (spSupport->InterfaceSupportsErrorInfo(iid) != S_OK)
        return nullptr;
    IErrorInfo* errorInfo = nullptr;
    return GetErrorInfo(0, &errorInfo) == S_OK ? errorInfo : nullptr;
}
} // namespace

void WINAPI _com_issue_errorex(HRESULT hr, IUnknown* object, REFIID iid)
{
    throw _com_error(hr, TakeErrorInfo(object, iid));
}
