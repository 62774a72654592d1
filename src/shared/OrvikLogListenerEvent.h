#pragma once

#include "shared/OrvikLogListener.h"
#include "shared/OwnerTypes.h"

namespace Orvik::Shared
{
// Writes records to the Windows event log, under the program's file name as event source.
class COrvikLogListenerEvent final : public COrvikLogListener
{
public:
    // Without an event source, records are lost silently.
    COrvikLogListenerEvent(int defaultMinLevel, const LoggingPolicy& policy);

    void Write(const LogData& data) override;
    [[nodiscard]] unsigned GetType() const override { return ListenerKind::Event; }

private:
    UniqueEventSource m_hEventSource;
};
} // namespace Orvik::Shared
