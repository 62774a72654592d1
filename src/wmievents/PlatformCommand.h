#pragma once

#include "platform/PlixCommand.h"
#include "shared/TraceScope.h"

namespace Notifications::OrvikWmiEvents
{
// A command object for one operation of the hub. Failure, also success without an object, is logged under the
// operation's name; the slot is null then.
[[nodiscard]] HRESULT CreateCommand(const Orvik::Shared::TraceScope& trace, IPlixCommandPtr& spCommand);

// Traces the command's name and sends it. Raises _com_error as ExecutePlixCommand does.
[[nodiscard]] _variant_t SendCommand(IPlixCommand* command, const wchar_t* name);

// Whether a command answered the boolean true; any other type is no.
[[nodiscard]] bool IsTrue(const VARIANT& answer);
} // namespace Notifications::OrvikWmiEvents
