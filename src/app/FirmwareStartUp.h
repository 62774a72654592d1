#pragma once

namespace Notifications::OrvikWmiEvents
{
class COrvikWmiEvents;
}

// The last step of start-up: registers the events of the firmware's protection, of the firmware, of its runtime and of
// its users, in this order. With the first one the audit log is copied into the Windows event log, after a scan of what
// is there. Failures of registrations are logged by the hub. functionName: under which the step logs. Main thread.
void RegisterFirmwareEvents(const char* functionName, Notifications::OrvikWmiEvents::COrvikWmiEvents& hub);
