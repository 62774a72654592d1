#pragma once

#include "wmievents/OrvikWmiEvents.h"

#include <windows.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace Tests
{
// One call that a sink made.
struct ProbedCall
{
    std::string m_strHandler; // "plain", "bios", "public"
    int m_nEventId = 0;
    std::wstring m_strEventClass{};
    bool m_bHasData = false;
    VARTYPE m_vt = VT_EMPTY;
    long m_nValue = 0;         // lVal of VT_I4
    std::wstring m_strValue{}; // of VT_BSTR
    DWORD m_dwThreadId = 0;
};

// A hub whose member functions can stand for handlers: it notes every call.
class HubProbe : public Notifications::OrvikWmiEvents::COrvikWmiEvents
{
public:
    using Plain = void (COrvikWmiEvents::*)();
    using Bios = void (COrvikWmiEvents::*)(int, VARIANT*);
    using Public = void (COrvikWmiEvents::*)(const CStringW&, VARIANT*);

    static Plain PlainHandler() { return static_cast<Plain>(&HubProbe::OnPlain); }
    static Bios BiosHandler() { return static_cast<Bios>(&HubProbe::OnBios); }
    static Public PublicHandler() { return static_cast<Public>(&HubProbe::OnPublic); }

    [[nodiscard]] std::vector<ProbedCall> Calls() const;

    // Runs inside each handler, after the call was noted.
    std::function<void()> m_onCall;

private:
    void OnPlain();
    void OnBios(int eventId, VARIANT* eventData);
    void OnPublic(const CStringW& eventClass, VARIANT* eventData);
    void Note(ProbedCall call, const VARIANT* eventData);

    mutable std::mutex m_lock;
    std::vector<ProbedCall> m_lstCalls;
};
} // namespace Tests
