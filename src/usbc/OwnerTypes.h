#pragma once

#include <windows.h>

#include <setupapi.h>

#include <memory>

struct DeviceInfoListCloser
{
    using pointer = HDEVINFO;
    void operator()(HDEVINFO list) const noexcept { SetupDiDestroyDeviceInfoList(list); }
};

// A device information set of the system; null when there is none, which the system itself tells otherwise.
using UniqueDeviceInfoList = std::unique_ptr<HDEVINFO, DeviceInfoListCloser>;
