#include "simulator/doubles/PlixCommandDouble.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/JsonVariant.h"
#include "simulator/doubles/Refusals.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"

#include <oleauto.h>

namespace Simulator
{
namespace
{
constexpr HRESULT InvalidCommand = static_cast<HRESULT>(0x80000003);

// "~" and "/" have a meaning in JSON pointers.
std::string Pointer(const std::string& command)
{
    std::string pointer = "/commands/";
    for (const char character : command)
    {
        if (character == '~')
            pointer += "~0";
        else if (character == '/')
            pointer += "~1";
        else
            pointer += character;
    }
    return pointer;
}

void WaitAsTold(const std::string& pointer, const nlohmann::json& fact)
{
    if (!fact.is_object())
        return;
    Sleep(fact.value("delay-ms", 0u));
    while (Facts::Instance().Get(pointer + "/hang") == true)
        Sleep(5);
}

nlohmann::json CallDetails(BSTR command, const VARIANT* output)
{
    nlohmann::json details = {{"command", NarrowBstr(command)}};
    // A caller that forgot to initialise its VARIANT shows here.
    if (output != nullptr && output->vt != VT_EMPTY)
        details["output-type-before"] = output->vt;
    return details;
}

void LeaveErrorInfo(std::wstring source, std::wstring description)
{
    ICreateErrorInfo* create = nullptr;
    if (FAILED(CreateErrorInfo(&create)))
        return;
    create->SetGUID(__uuidof(IPlixCommandServer));
    create->SetSource(source.data());
    create->SetDescription(description.data());
    IErrorInfo* info = nullptr;
    if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info))))
    {
        SetErrorInfo(0, info);
        info->Release();
    }
    create->Release();
}

std::string InputText(const VARIANT& input)
{
    const nlohmann::json value = JsonFromVariant(input).value("value", nlohmann::json());
    return value.is_string() ? value.get<std::string>() : value.dump();
}
} // namespace

PlixCommandDouble::PlixCommandDouble()
    : ComDouble("PlixCommand"), m_errorInfo(Facts::Instance().Get("/platform/error-info"))
{
}

bool PlixCommandDouble::Offers(REFIID iid) const
{
    return iid != IID_ISupportErrorInfo || m_errorInfo.is_object();
}

HRESULT PlixCommandDouble::Execute(BSTR command, VARIANT* output)
{
    if (const HRESULT hr = CallPlan::Instance().Enter("IPlixCommand::Execute", CallDetails(command, output));
        FAILED(hr))
        return Failed(hr);
    const std::string pointer = Pointer(NarrowBstr(command));
    const nlohmann::json fact = Facts::Instance().Get(pointer);
    WaitAsTold(pointer, fact);
    return Answer(fact, output);
}

HRESULT PlixCommandDouble::SecondMethod()
{
    const HRESULT hr = CallPlan::Instance().Enter("IPlixCommand::SecondMethod");
    return Failed(FirstFailure(hr, E_NOTIMPL));
}

HRESULT PlixCommandDouble::ExecuteWithInput(BSTR command, VARIANT input, VARIANT* output)
{
    nlohmann::json details = CallDetails(command, output);
    details["input"] = JsonFromVariant(input);
    if (const HRESULT hr = CallPlan::Instance().Enter("IPlixCommand::ExecuteWithInput", std::move(details)); FAILED(hr))
        return Failed(hr);
    const std::string pointer = Pointer(NarrowBstr(command));
    nlohmann::json fact = Facts::Instance().Get(pointer);
    WaitAsTold(pointer, fact);
    if (const nlohmann::json choice = Facts::Instance().Get(pointer + "/by-input"); choice.contains(InputText(input)))
        fact.merge_patch(choice.at(InputText(input)));
    return Answer(fact, output);
}

HRESULT PlixCommandDouble::Answer(const nlohmann::json& fact, VARIANT* output)
{
    if (output == nullptr)
        return Failed(E_POINTER);
    if (!fact.is_object())
        return Failed(InvalidCommand);
    const HRESULT hr = fact.contains("hr") ? HResultFromJson(fact.at("hr"), E_FAIL) : S_OK;
    if (FAILED(hr))
        return Failed(hr);
    if (!fact.contains("answer"))
        return hr;
    const HRESULT made = VariantFromJson(fact.at("answer"), *output);
    return FAILED(made) ? Failed(made) : hr;
}

HRESULT PlixCommandDouble::Failed(HRESULT hr) const
{
    if (m_errorInfo.is_object())
        LeaveErrorInfo(Wide(m_errorInfo.value("source", "")), Wide(m_errorInfo.value("description", "")));
    return hr;
}

HRESULT PlixCommandDouble::InterfaceSupportsErrorInfo(REFIID iid)
{
    const HRESULT hr =
        CallPlan::Instance().Enter("ISupportErrorInfo::InterfaceSupportsErrorInfo", {{"iid", GuidText(iid)}}, "com");
    if (FAILED(hr))
        return hr;
    return iid == __uuidof(IPlixCommandServer) ? S_OK : S_FALSE;
}

HRESULT PlixCommandDouble::GetRunningClass(LPCLSID classId)
{
    *classId = PlixCommandClassId;
    return S_OK;
}

HRESULT PlixCommandDouble::Run(LPBINDCTX)
{
    const HRESULT hr = CallPlan::Instance().Enter("IRunnableObject::Run", {{"class", "PlixCommand"}}, "com");
    m_bRunning = SUCCEEDED(hr);
    return hr;
}

WINBOOL PlixCommandDouble::IsRunning()
{
    return m_bRunning ? TRUE : FALSE;
}

HRESULT PlixCommandDouble::LockRunning(WINBOOL, WINBOOL)
{
    return S_OK;
}

HRESULT PlixCommandDouble::SetContainedObject(WINBOOL)
{
    return S_OK;
}
} // namespace Simulator
