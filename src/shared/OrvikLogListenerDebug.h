#pragma once

#include "shared/OrvikLogListener.h"

namespace Orvik::Shared
{
// Hands records to an attached debugger, in the short form.
class COrvikLogListenerDebug final : public COrvikLogListener
{
public:
    COrvikLogListenerDebug(int defaultMinLevel, const LoggingPolicy& policy)
        : COrvikLogListener(defaultMinLevel, policy)
    {
    }

    void Write(const LogData& data) override;
    [[nodiscard]] unsigned GetType() const override { return ListenerKind::Debug; }
};
} // namespace Orvik::Shared
