#pragma once

#include "platform/PlixCommand.h"
#include "shared/TraceScope.h"

// A command object for one operation. Failure, also success without an object, is logged under the operation's name;
// the slot is null then.
[[nodiscard]] HRESULT CreateCommand(const Orvik::Shared::TraceScope& trace, IPlixCommandPtr& spCommand);

// Sends a command, with a trace record before it and, when it succeeded, one after it under the operation's name.
// result: as ExecutePlixCommand has it. Raises _com_error as that does.
[[nodiscard]] _variant_t SendCommand(const Orvik::Shared::TraceScope& trace, IPlixCommand* command, const wchar_t* name,
                                     HRESULT* result = nullptr);

// Whether a command answered the boolean true; any other type is no.
[[nodiscard]] bool IsTrue(const VARIANT& answer);
