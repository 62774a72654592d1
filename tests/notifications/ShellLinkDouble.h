#pragma once

#include "simulator/doubles/ComDouble.h"
#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <propsys.h>
#include <shlobj.h>

// A shell link that only tells the journal what is done to it: "IShellLinkW::SetPath" {"path"},
// "IPropertyStore::SetValue"
// {"key", "pid", "vt", "text"}, "IPropertyStore::Commit", "IPersistFile::Save" {"path", "remember"}, and
// "ShellLink::QueryInterface". Save makes a file; a Save that fails leaves the beginning of one when the fact
// /shell-link/half-written is true. QueryInterface succeeds without an object for the IID that the fact
// /shell-link/nothing-for names. What the agent does not call answers E_NOTIMPL.
class ShellLinkDouble : public Simulator::ComDouble<IShellLinkW, IPropertyStore, IPersistFile>
{
public:
    ShellLinkDouble() : ComDouble("ShellLink") {}

    STDMETHOD(QueryInterface)(REFIID iid, void** object) override;
    STDMETHOD(SetPath)(LPCWSTR path) override;
    STDMETHOD(SetValue)(REFPROPERTYKEY key, REFPROPVARIANT value) override;
    STDMETHOD(Commit)() override;
    STDMETHOD(Save)(LPCOLESTR path, BOOL remember) override;

    STDMETHOD(GetPath)(LPWSTR, int, WIN32_FIND_DATAW*, DWORD) override { return E_NOTIMPL; }
    STDMETHOD(GetIDList)(PIDLIST_ABSOLUTE*) override { return E_NOTIMPL; }
    STDMETHOD(SetIDList)(PCIDLIST_ABSOLUTE) override { return E_NOTIMPL; }
    STDMETHOD(GetDescription)(LPWSTR, int) override { return E_NOTIMPL; }
    STDMETHOD(SetDescription)(LPCWSTR) override { return E_NOTIMPL; }
    STDMETHOD(GetWorkingDirectory)(LPWSTR, int) override { return E_NOTIMPL; }
    STDMETHOD(SetWorkingDirectory)(LPCWSTR) override { return E_NOTIMPL; }
    STDMETHOD(GetArguments)(LPWSTR, int) override { return E_NOTIMPL; }
    STDMETHOD(SetArguments)(LPCWSTR) override { return E_NOTIMPL; }
    STDMETHOD(GetHotkey)(WORD*) override { return E_NOTIMPL; }
    STDMETHOD(SetHotkey)(WORD) override { return E_NOTIMPL; }
    STDMETHOD(GetShowCmd)(int*) override { return E_NOTIMPL; }
    STDMETHOD(SetShowCmd)(int) override { return E_NOTIMPL; }
    STDMETHOD(GetIconLocation)(LPWSTR, int, int*) override { return E_NOTIMPL; }
    STDMETHOD(SetIconLocation)(LPCWSTR, int) override { return E_NOTIMPL; }
    STDMETHOD(SetRelativePath)(LPCWSTR, DWORD) override { return E_NOTIMPL; }
    STDMETHOD(Resolve)(HWND, DWORD) override { return E_NOTIMPL; }
    STDMETHOD(GetCount)(DWORD*) override { return E_NOTIMPL; }
    STDMETHOD(GetAt)(DWORD, PROPERTYKEY*) override { return E_NOTIMPL; }
    STDMETHOD(GetValue)(REFPROPERTYKEY, PROPVARIANT*) override { return E_NOTIMPL; }
    STDMETHOD(GetClassID)(CLSID*) override { return E_NOTIMPL; }
    STDMETHOD(IsDirty)() override { return E_NOTIMPL; }
    STDMETHOD(Load)(LPCOLESTR, DWORD) override { return E_NOTIMPL; }
    STDMETHOD(SaveCompleted)(LPCOLESTR) override { return E_NOTIMPL; }
    STDMETHOD(GetCurFile)(LPOLESTR*) override { return E_NOTIMPL; }
};

// For the life of the object CoCreateInstance of the program is the call "CoCreateInstance" {"clsid", "iid", "context",
// "outer"} of the plan and gives such a shell link out, or success without one while the fact /shell-link/nothing-for
// names the IID; every other class is asked of Windows.
class ShellLinkRedirection
{
public:
    ShellLinkRedirection();

private:
    Simulator::Redirection<decltype(CoCreateInstance)> m_redirection;
};
