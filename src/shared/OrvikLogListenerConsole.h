#pragma once

#include "shared/OrvikLogListener.h"

namespace Orvik::Shared
{
// Prints records to standard output, in the short form; without a console they are lost. A character that the code page
// of the C runtime lacks is printed as "?".
class COrvikLogListenerConsole final : public COrvikLogListener
{
public:
    COrvikLogListenerConsole(int defaultMinLevel, const LoggingPolicy& policy)
        : COrvikLogListener(defaultMinLevel, policy)
    {
    }

    void Write(const LogData& data) override;
    [[nodiscard]] unsigned GetType() const override { return ListenerKind::Console; }
};
} // namespace Orvik::Shared
