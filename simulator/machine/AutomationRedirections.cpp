#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"

#include <objbase.h>
#include <oleauto.h>
#include <roapi.h>
#include <winstring.h>

namespace Simulator
{
namespace
{
template <CallName Name, class Function>
using HresultCall = PlannedCall<Name, FailsAs::Hresult, Function>;

template <CallName Name, class Function>
using Allocation = PlannedCall<Name, FailsAs::Zero, Function>;
} // namespace

void RedirectAutomationFunctions(Redirections& redirections)
{
    redirections.AddPlanned<Allocation<"SysAllocString", decltype(SysAllocString)>>();
    redirections.AddPlanned<Allocation<"SysAllocStringLen", decltype(SysAllocStringLen)>>();
    redirections.AddPlanned<Allocation<"CoTaskMemAlloc", decltype(CoTaskMemAlloc)>>();
    redirections.AddPlanned<HresultCall<"VariantChangeType", decltype(VariantChangeType)>>();
    redirections.AddPlanned<HresultCall<"VariantCopy", decltype(VariantCopy)>>();
    redirections.AddPlanned<HresultCall<"RoGetActivationFactory", decltype(RoGetActivationFactory)>>();
    redirections.AddPlanned<HresultCall<"WindowsCreateString", decltype(WindowsCreateString)>>();
    redirections.AddPlanned<HresultCall<"WindowsCreateStringReference", decltype(WindowsCreateStringReference)>>();
}
} // namespace Simulator
