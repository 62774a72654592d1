#include "simulator/doubles/UnsecuredApartmentStubDouble.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"

#include <comdef.h>

#include <exception>

namespace Simulator
{
namespace
{
HRESULT Caught(std::string_view method, nlohmann::json what)
{
    Journal::Instance().Append("wmi", "exception", {{"method", method}, {"what", std::move(what)}});
    return RPC_E_SERVERFAULT;
}

template <class Call>
HRESULT Forward(std::string_view method, Call call)
{
    if (ApartmentText() == "none")
    {
        Journal::Instance().Append("wmi", "disconnected", {{"method", method}});
        return RPC_E_DISCONNECTED;
    }
    try
    {
        return call();
    }
    catch (const _com_error& error)
    {
        return Caught(method, HResultText(error.Error()));
    }
    catch (const std::exception& error)
    {
        return Caught(method, error.what());
    }
    catch (...)
    {
        return Caught(method, "unknown");
    }
}
} // namespace

UnsecuredApartmentStubDouble::UnsecuredApartmentStubDouble(std::shared_ptr<IWbemObjectSink> spSink)
    : ComDouble("UnsecuredApartmentStub"), m_spSink(std::move(spSink))
{
}

HRESULT UnsecuredApartmentStubDouble::Indicate(LONG count, IWbemClassObject** objects)
{
    return Forward("IWbemObjectSink::Indicate", [&] { return m_spSink->Indicate(count, objects); });
}

HRESULT UnsecuredApartmentStubDouble::SetStatus(LONG flags, HRESULT result, BSTR text, IWbemClassObject* object)
{
    return Forward("IWbemObjectSink::SetStatus", [&] { return m_spSink->SetStatus(flags, result, text, object); });
}

nlohmann::json UnsecuredApartmentStubDouble::ReleaseDetails()
{
    if (Facts::Instance().Get("/doubles/probe-sink") != true)
        return nlohmann::json::object();
    m_spSink->AddRef();
    return {{"sink-count", m_spSink->Release()}};
}
} // namespace Simulator
