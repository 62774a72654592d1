#include "tests/notifications/ShellLinkDouble.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/RealFunctions.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "tests/notifications/ScratchFolder.h"

using Simulator::CallPlan;
using Simulator::Facts;

namespace
{
bool GivesNothingFor(REFIID iid)
{
    return Facts::Instance().Get("/shell-link/nothing-for") == Simulator::GuidText(iid);
}
} // namespace

HRESULT ShellLinkDouble::QueryInterface(REFIID iid, void** object)
{
    if (!GivesNothingFor(iid))
        return ComDouble::QueryInterface(iid, object);
    *object = nullptr;
    return S_OK;
}

HRESULT ShellLinkDouble::SetPath(LPCWSTR path)
{
    return CallPlan::Instance().Enter("IShellLinkW::SetPath", {{"path", Simulator::Narrow(path)}});
}

HRESULT ShellLinkDouble::SetValue(REFPROPERTYKEY key, REFPROPVARIANT value)
{
    nlohmann::json details = {{"key", Simulator::GuidText(key.fmtid)}, {"pid", key.pid}, {"vt", value.vt}};
    if (value.vt == VT_LPWSTR)
        details["text"] = Simulator::Narrow(value.pwszVal);
    return CallPlan::Instance().Enter("IPropertyStore::SetValue", details);
}

HRESULT ShellLinkDouble::Commit()
{
    return CallPlan::Instance().Enter("IPropertyStore::Commit");
}

HRESULT ShellLinkDouble::Save(LPCOLESTR path, BOOL remember)
{
    const HRESULT hr =
        CallPlan::Instance().Enter("IPersistFile::Save", {{"path", Simulator::Narrow(path)}, {"remember", remember}});
    if (SUCCEEDED(hr))
        WriteBytes(path, "a whole shortcut");
    else if (Facts::Instance().Get("/shell-link/half-written") == true)
        WriteBytes(path, "half a sh");
    return hr;
}

namespace
{
HRESULT WINAPI CreateShellLink(REFCLSID classId, IUnknown* outer, DWORD context, REFIID iid, void** object)
{
    if (!IsEqualCLSID(classId, CLSID_ShellLink))
        return Simulator::RealFunctions::Instance().CoCreateInstance(classId, outer, context, iid, object);
    const HRESULT hr = CallPlan::Instance().Enter("CoCreateInstance", {{"clsid", Simulator::GuidText(classId)},
                                                                       {"iid", Simulator::GuidText(iid)},
                                                                       {"context", context},
                                                                       {"outer", outer != nullptr}});
    *object = nullptr;
    return FAILED(hr) || GivesNothingFor(iid) ? hr : Simulator::MakeDouble<ShellLinkDouble>(iid, object);
}
} // namespace

ShellLinkRedirection::ShellLinkRedirection() : m_redirection("CoCreateInstance", &CreateShellLink) {}
