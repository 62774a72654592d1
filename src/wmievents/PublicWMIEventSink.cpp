#include "wmievents/PublicWMIEventSink.h"

#include "shared/TraceScope.h"

#include <comdef.h>

#include <algorithm>
#include <string>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
// Empty for a value of another type.
CStringW TextOf(const VARIANT& value)
{
    return value.vt == VT_BSTR && value.bstrVal != nullptr ? CStringW(value.bstrVal) : CStringW();
}

// In the system's code page, for "%S".
std::string Narrow(const CStringW& text)
{
    // An overlong text is cut by the logger anyway; this keeps its length an int.
    const int length = static_cast<int>(std::min<std::size_t>(text.size(), 4096));
    std::string narrow(
        static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), length, narrow.data(), static_cast<int>(narrow.size()), nullptr,
                        nullptr);
    return narrow;
}

void ReadClassName(const TraceScope& trace, IWbemClassObject* object, CStringW& eventClass)
{
    _variant_t value;
    if (FAILED(object->Get(L"__Class", 0, &value, nullptr, nullptr)))
        return;
    _com_util::CheckError(VariantChangeType(&value, &value, 0, VT_BSTR));
    eventClass = TextOf(value);
    trace.Verbose(L"Event Name : %S", Narrow(eventClass).c_str());
}

HRESULT ReadDescription(const TraceScope& trace, IWbemClassObject* object, VARIANT* data)
{
    _variant_t description;
    const HRESULT hr = object->Get(L"Description", 0, &description, nullptr, nullptr);
    if (SUCCEEDED(hr))
    {
        _com_util::CheckError(VariantCopy(data, &description));
        trace.Verbose(L"Event data/Description : %S", Narrow(TextOf(*data)).c_str());
    }
    return hr;
}

// dataStatus: in, the previous entry's; out, this entry's.
void Deliver(const TraceScope& trace, bool isPresent, IWbemClassObject* first, HRESULT& dataStatus,
             const PublicEventCallbacks& callbacks)
{
    trace.Verbose(L"Event occured");
    CStringW eventClass;
    _variant_t data;
    // Names nothing that is read; kept because its allocation fails first when memory runs out.
    const _bstr_t unusedName(L"EventData");

    if (isPresent)
    {
        if (first != nullptr)
        {
            ReadClassName(trace, first, eventClass);
            dataStatus = ReadDescription(trace, first, &data);
        }
        else
            dataStatus = E_POINTER;
    }
    callbacks.Dispatch(dataStatus, eventClass, &data);
}
} // namespace

PublicWMIEventSink::PublicWMIEventSink(COrvikWmiEvents* owner, PublicEventCallbacks::Plain callback)
    : EventSink({callback, nullptr, owner})
{
}

PublicWMIEventSink::PublicWMIEventSink(COrvikWmiEvents* owner, PublicEventCallbacks::WithParams callback)
    : EventSink({nullptr, callback, owner})
{
}

PublicWMIEventSink::~PublicWMIEventSink()
{
    TraceScope trace(ORVIK_FUNCTION);
}

HRESULT PublicWMIEventSink::Indicate(long lObjectCount, IWbemClassObject** apObjArray)
{
    TraceScope trace(ORVIK_FUNCTION);
    HRESULT dataStatus = S_OK;
    for (long i = 0; i < lObjectCount; ++i)
    {
        const bool isPresent = apObjArray != nullptr && apObjArray[i] != nullptr;
        // Every entry of a batch is reported with the first entry's values: the hub's handler is written for that.
        Deliver(trace, isPresent, isPresent ? apObjArray[0] : nullptr, dataStatus, m_callbacks);
    }
    return trace.Exit(static_cast<HRESULT>(WBEM_S_NO_ERROR));
}

HRESULT PublicWMIEventSink::SetStatus(long lFlags, HRESULT hResult, BSTR, IWbemClassObject*)
{
    return LogStatus(ORVIK_FUNCTION, lFlags, hResult);
}
} // namespace Notifications::OrvikWmiEvents
