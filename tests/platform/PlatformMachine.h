#pragma once

#include "platform/ComApartment.h"
#include "simulator/doubles/ComRedirections.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <comdef.h>

#include <string>
#include <vector>

// What Windows answers when it has neither an object, nor memory for a text.
HRESULT WINAPI CreateNoObject(REFCLSID, LPUNKNOWN, DWORD, REFIID, LPVOID* object);
BSTR WINAPI AllocateNoBstr(const OLECHAR*);

// The code that the call raises; S_OK when it raises nothing.
template <class Call>
[[nodiscard]] HRESULT RaisedCode(Call&& call)
{
    try
    {
        call();
        return S_OK;
    }
    catch (const _com_error& error)
    {
        return error.Error();
    }
}

// A machine with the platform library, the notification component and WMI, on a thread that is in an apartment. After
// each test no double may be alive.
class PlatformMachine : public testing::Test
{
protected:
    PlatformMachine();
    ~PlatformMachine() override;

    // Forgets what the machine saw so far.
    static void StartJournal();
    // The names of the calls that the code under test made, in order.
    [[nodiscard]] static std::vector<std::string> Calls();
    // The same with what COM called on its behalf, and the references that were taken and given back.
    [[nodiscard]] static std::vector<std::string> CallsAndReferences();
    // What the n-th call of that name was given, COM's among them; 0 is the first.
    [[nodiscard]] static nlohmann::json CallDetails(const std::string& call, std::size_t n = 0);

    Simulator::ComRedirections m_redirections{Simulator::Activation::InProcess};
    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
};
