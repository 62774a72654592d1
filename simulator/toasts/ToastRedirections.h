#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <roapi.h>
#include <winstring.h>

namespace Simulator
{
// For the life of the object the program itself, whether it imports or looks up RoGetActivationFactory, gets the toast
// doubles without a registry; every other class is asked of Windows. WindowsCreateString and
// WindowsCreateStringReference stay the real ones behind an entry in the call plan under their own names.
class ToastRedirections
{
public:
    ToastRedirections();

private:
    // prepared: the real functions are found before the look-ups are redirected.
    explicit ToastRedirections(bool prepared);

    const Redirection<decltype(RoGetActivationFactory)> m_factory;
    const Redirection<decltype(WindowsCreateString)> m_createString;
    const Redirection<decltype(WindowsCreateStringReference)> m_createReference;
};
} // namespace Simulator
