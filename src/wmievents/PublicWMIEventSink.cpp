#include "wmievents/PublicWMIEventSink.h"

#include "shared/TraceScope.h"

#include <comdef.h>

#include <algorithm>
#include <exception>
#include <string_view>

using Orvik::Shared::TraceScope;
using Orvik::Shared::WideFormat;

namespace Notifications::OrvikWmiEvents
{
namespace
{
// Empty for a value of another type; lives as long as the value.
std::wstring_view TextOf(const VARIANT& value)
{
    return value.vt == VT_BSTR && value.bstrVal != nullptr ? std::wstring_view(value.bstrVal) : std::wstring_view();
}

// The formatter widens each byte of a "%S" text by itself, in the runtime's "C" locale: what has no byte of its own
// there is shown as a question mark. The logger keeps less than the buffer holds.
void LogNarrow(const TraceScope& trace, WideFormat<const char*> format, std::wstring_view text)
{
    if (!Orvik::Shared::IsLevelEnabled(Orvik::Shared::Level::Verbose))
        return;
    char narrow[512]{};
    const std::size_t length = std::min(text.size(), sizeof(narrow) - 1);
    std::ranges::transform(text.substr(0, length), narrow,
                           [](wchar_t c) { return c < 0x80 || (c >= 0xA0 && c <= 0xFF) ? static_cast<char>(c) : '?'; });
    trace.Verbose(format, static_cast<const char*>(narrow));
}

void ReadClassName(const TraceScope& trace, IWbemClassObject* object, CStringW& eventClass)
{
    _variant_t value;
    if (FAILED(object->Get(L"__Class", 0, &value, nullptr, nullptr)))
        return;
    _com_util::CheckError(VariantChangeType(&value, &value, 0, VT_BSTR));
    eventClass = TextOf(value);
    LogNarrow(trace, L"Event Name : %S", eventClass);
}

HRESULT ReadDescription(const TraceScope& trace, IWbemClassObject* object, VARIANT* data)
{
    _variant_t description;
    const HRESULT hr = object->Get(L"Description", 0, &description, nullptr, nullptr);
    if (SUCCEEDED(hr))
    {
        _com_util::CheckError(VariantCopy(data, &description));
        LogNarrow(trace, L"Event data/Description : %S", TextOf(*data));
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
    const TraceScope trace(ORVIK_FUNCTION);
}

HRESULT PublicWMIEventSink::Indicate(long lObjectCount, IWbemClassObject** apObjArray)
{
    TraceScope trace(ORVIK_FUNCTION);
    try
    {
        HRESULT dataStatus = S_OK;
        for (long i = 0; i < lObjectCount; ++i)
        {
            const bool isPresent = apObjArray != nullptr && apObjArray[i] != nullptr;
            // Every entry of a batch is reported with the first entry's values, as required.
            Deliver(trace, isPresent, isPresent ? apObjArray[0] : nullptr, dataStatus, m_callbacks);
        }
        return trace.Exit(static_cast<HRESULT>(WBEM_S_NO_ERROR));
    }
    catch (const std::exception&)
    {
        return trace.Exit(E_OUTOFMEMORY);
    }
}

HRESULT PublicWMIEventSink::SetStatus(long lFlags, HRESULT hResult, BSTR, IWbemClassObject*)
{
    return LogStatus(ORVIK_FUNCTION, lFlags, hResult);
}
} // namespace Notifications::OrvikWmiEvents
