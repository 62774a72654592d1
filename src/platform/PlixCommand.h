#pragma once

#include "platform/ComError.h"
#include "shared/TraceScope.h"

// One command to the maker's platform command library, a COM server outside this program. The order of the methods is
// the library's: it is the only thing by which both sides agree.
MIDL_INTERFACE("233A5811-AB16-4A74-8D08-2D148ABE089C")
IPlixCommand : public IUnknown
{
public:
    // Runs a command without input; the caller initialises the output and clears it.
    virtual HRESULT STDMETHODCALLTYPE Execute(BSTR command, VARIANT * output) = 0;
    // Never called; it keeps ExecuteWithInput in its place.
    virtual HRESULT STDMETHODCALLTYPE Reserved() = 0;
    virtual HRESULT STDMETHODCALLTYPE ExecuteWithInput(BSTR command, VARIANT input, VARIANT * output) = 0;
};
__CRT_UUID_DECL(IPlixCommand, 0x233A5811, 0xAB16, 0x4A74, 0x8D, 0x08, 0x2D, 0x14, 0x8A, 0xBE, 0x08, 0x9C)
_COM_SMARTPTR_TYPEDEF(IPlixCommand, __uuidof(IPlixCommand));

inline constexpr CLSID CLSID_PlixCommand = {
    0xCA490AE1, 0x8C69, 0x45D5, {0x95, 0x33, 0xD4, 0x69, 0x27, 0x26, 0xF2, 0xFB}};

// A new command object, one for each command, on a thread that has initialised COM. What the slot held is released
// first; on failure the slot is null. Success with a null slot is possible: callers end there with that code.
[[nodiscard]] HRESULT CreatePlixCommand(IPlixCommandPtr& spCommand);

// Runs a command without input and gives its output, of whatever type the library chose. result: where the library's
// success code goes, or null; left alone by what raises. Raises _com_error: E_OUTOFMEMORY when the name cannot be
// allocated, E_POINTER for a null command, else the library's own failure.
[[nodiscard]] _variant_t ExecutePlixCommand(IPlixCommand* command, const wchar_t* name, HRESULT* result = nullptr);

// The same with one input value, which the library gets by value: it stays the caller's.
[[nodiscard]] _variant_t ExecutePlixCommandWithInput(IPlixCommand* command, const wchar_t* name, const VARIANT& input,
                                                     HRESULT* result = nullptr);

// Logs what a command raised, under the caller's name, and gives its code for the caller to return. Only a failure with
// exactly g_hrInvalidCommand is an invalid command; both formats take the code.
HRESULT LogCommandFailure(const Orvik::Shared::TraceScope& trace, const _com_error& error,
                          Orvik::Shared::WideFormat<HRESULT> invalidCommand,
                          Orvik::Shared::WideFormat<HRESULT> otherFailure);
