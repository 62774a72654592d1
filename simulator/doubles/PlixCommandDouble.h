#pragma once

#include "simulator/doubles/ComDouble.h"
#include "simulator/doubles/PlixInterfaces.h"

#include <oaidl.h>
#include <objidl.h>

namespace Simulator
{
// The platform command library. A command is answered from the fact "/commands/<name>":
//     {"answer": <VARIANT, see JsonVariant.h>}      without "answer" the output is left untouched
//     "hr": "0x80000003"                            returned; a failure leaves the output untouched
//     "by-input": {"1": {...}, "2": {...}}          overlays the rest, chosen by ExecuteWithInput's input as text
//     "delay-ms": 250                               the command takes that long
//     "hang": true                                  the command does not return before the fact is changed
// A command without a fact fails with 0x80000003, which stands for "invalid command".
//
// With the fact "/platform/error-info" = {"source": "...", "description": "..."} a new object also offers
// ISupportErrorInfo and each failing command leaves that error information on its thread.
//
// IRunnableObject is there for OleRun; Run is journalled as "com".
class PlixCommandDouble final : public ComDouble<IPlixCommandServer, ISupportErrorInfo, IRunnableObject>
{
public:
    PlixCommandDouble();

    HRESULT STDMETHODCALLTYPE Execute(BSTR command, VARIANT* output) override;
    HRESULT STDMETHODCALLTYPE SecondMethod() override;
    HRESULT STDMETHODCALLTYPE ExecuteWithInput(BSTR command, VARIANT input, VARIANT* output) override;

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override;

    HRESULT STDMETHODCALLTYPE GetRunningClass(LPCLSID classId) override;
    HRESULT STDMETHODCALLTYPE Run(LPBINDCTX context) override;
    WINBOOL STDMETHODCALLTYPE IsRunning() override;
    HRESULT STDMETHODCALLTYPE LockRunning(WINBOOL locked, WINBOOL lastUnlockCloses) override;
    HRESULT STDMETHODCALLTYPE SetContainedObject(WINBOOL contained) override;

private:
    [[nodiscard]] bool Offers(REFIID iid) const override;
    [[nodiscard]] HRESULT Answer(const nlohmann::json& fact, VARIANT* output);
    // Leaves the error information behind, when there is any, and gives the failure back.
    [[nodiscard]] HRESULT Failed(HRESULT hr) const;

    nlohmann::json m_errorInfo; // the fact as it stood when the object was made
    bool m_bRunning = false;
};
} // namespace Simulator
