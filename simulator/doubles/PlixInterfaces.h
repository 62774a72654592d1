#pragma once

#include <windows.h>

#include <objbase.h>
#include <oleauto.h>

namespace Simulator
{
// The command library's interface as its maker fixed it, declared once more on purpose and not taken from the product:
// a slot or an identifier that is wrong on either side then shows.
struct IPlixCommandServer : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE Execute(BSTR command, VARIANT* output) = 0;
    // Nobody calls the second method; its signature is not known here.
    virtual HRESULT STDMETHODCALLTYPE SecondMethod() = 0;
    virtual HRESULT STDMETHODCALLTYPE ExecuteWithInput(BSTR command, VARIANT input, VARIANT* output) = 0;
};

// The notification component's interface; no method of it is ever called.
struct IPlixNotificationServer : public IUnknown
{
};

inline constexpr CLSID PlixCommandClassId = {
    0xCA490AE1, 0x8C69, 0x45D5, {0x95, 0x33, 0xD4, 0x69, 0x27, 0x26, 0xF2, 0xFB}};
inline constexpr wchar_t PlixNotificationProgId[] = L"orvikplixutils.orvikPlixNotification";
// The simulator's own: the product knows this component by its ProgID alone.
inline constexpr CLSID PlixNotificationClassId = {
    0x7E5C21D4, 0x90B6, 0x4A1F, {0x8C, 0x33, 0x5B, 0x0E, 0xD7, 0x64, 0x19, 0xA2}};
} // namespace Simulator

__CRT_UUID_DECL(Simulator::IPlixCommandServer, 0x233A5811, 0xAB16, 0x4A74, 0x8D, 0x08, 0x2D, 0x14, 0x8A, 0xBE, 0x08,
                0x9C)
__CRT_UUID_DECL(Simulator::IPlixNotificationServer, 0x3ABCD024, 0x1E97, 0x48C4, 0xA7, 0xD4, 0xC1, 0x16, 0x94, 0x4A,
                0x49, 0x67)
