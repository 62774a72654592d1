#pragma once

#include "simulator/doubles/ComRedirections.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"

#include <windows.h>

#include <comdef.h>
#include <wbemcli.h>

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

_COM_SMARTPTR_TYPEDEF(IUnknown, IID_IUnknown);
_COM_SMARTPTR_TYPEDEF(IWbemLocator, IID_IWbemLocator);
_COM_SMARTPTR_TYPEDEF(IWbemServices, IID_IWbemServices);
_COM_SMARTPTR_TYPEDEF(IWbemObjectSink, IID_IWbemObjectSink);
_COM_SMARTPTR_TYPEDEF(IWbemClassObject, IID_IWbemClassObject);
_COM_SMARTPTR_TYPEDEF(IEnumWbemClassObject, IID_IEnumWbemClassObject);
_COM_SMARTPTR_TYPEDEF(IUnsecuredApartment, IID_IUnsecuredApartment);

namespace Simulator
{
inline constexpr HRESULT PlannedFailure = static_cast<HRESULT>(0x8004D00D);

// An empty machine, this thread in a single-threaded apartment, and at the end no double alive.
class DoublesTest : public testing::Test
{
protected:
    DoublesTest();
    ~DoublesTest() override;

    // The details of the last journal entry of that kind and subject; null when there is none.
    [[nodiscard]] static nlohmann::json LastDetails(const std::string& kind, const std::string& subject);
    [[nodiscard]] static std::vector<std::string> Calls() { return Journal::Instance().Subjects("call"); }
    // A connection, made past COM.
    [[nodiscard]] static IWbemServicesPtr Connect(const wchar_t* path = L"ROOT\\WMI");

    // Runs work on a thread with that apartment (COINIT_...) or, without, on one that never initialises COM.
    static void OnThread(DWORD apartment, const std::function<void()>& work);
    static void OnBareThread(const std::function<void()>& work);

private:
    bool m_bInitialised;
};
} // namespace Simulator
