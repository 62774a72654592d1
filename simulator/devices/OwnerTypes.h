#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace Simulator
{
struct ServiceHandleCloser
{
    using pointer = SC_HANDLE;
    void operator()(SC_HANDLE handle) const noexcept { CloseServiceHandle(handle); }
};

using UniqueServiceHandle = std::unique_ptr<SC_HANDLE, ServiceHandleCloser>;
} // namespace Simulator
