#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <deque>

namespace Simulator
{
// Where the classes of the simulated machine come from.
enum class Activation
{
    InProcess, // from this module, without a registration: CoCreateInstance and CLSIDFromProgID answer for them
    Registry   // from where COM finds them: RegistryEntries() were written, UnsecuredApartmentServer runs
};

// Redirects what a module calls of COM, for the life of the object: each call is journalled and may be made to fail by
// the plan under its own name, then the system's function is called. CoInitialize, CoInitializeEx, CoUninitialize (only
// journalled), CoInitializeSecurity, CoCreateInstance, CLSIDFromProgID, OleRun, CoSetProxyBlanket,
// CoMarshalInterThreadInterfaceInStream, CoGetInterfaceAndReleaseStream.
//
// A class that a fact switches off is not registered, with either kind of activation: REGDB_E_CLASSNOTREG from
// CoCreateInstance, CO_E_CLASSSTRING from CLSIDFromProgID. A thread that belongs to no apartment gets
// CO_E_NOTINITIALIZED. One such object at a time.
class ComRedirections
{
public:
    // module: null means the program itself.
    explicit ComRedirections(Activation activation, HMODULE module = nullptr);
    ComRedirections(const ComRedirections&) = delete;
    ComRedirections& operator=(const ComRedirections&) = delete;
    ~ComRedirections();

private:
    std::deque<ImportRedirection> m_lstRedirections;
};
} // namespace Simulator
