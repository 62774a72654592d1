#pragma once

#include "platform/PlixCommand.h"
#include "tests/platform/MethodRedirection.h"

namespace Tests
{
// For the life of the object every platform command object says yes when it is asked for its command interface and
// gives none. Made on a thread that has initialised COM.
class EmptyHandedCommand
{
public:
    EmptyHandedCommand() : EmptyHandedCommand(Sample()) {}

private:
    using QueryMethod = HRESULT (STDMETHODCALLTYPE IUnknown::*)(REFIID, void**);

    explicit EmptyHandedCommand(const IPlixCommandPtr& spSample)
        : m_redirection(spSample.GetInterfacePtr(), QueryMethod(&IUnknown::QueryInterface), &GiveNothing)
    {
    }

    static IPlixCommandPtr Sample()
    {
        IPlixCommandPtr spSample;
        static_cast<void>(CreatePlixCommand(spSample));
        return spSample;
    }

    static HRESULT STDMETHODCALLTYPE GiveNothing(IUnknown*, REFIID iid, void** object)
    {
        *object = nullptr;
        return iid == __uuidof(IPlixCommand) ? S_OK : E_NOINTERFACE;
    }

    MethodRedirection m_redirection;
};
} // namespace Tests
