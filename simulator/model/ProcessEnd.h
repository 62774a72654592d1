#pragma once

namespace Simulator
{
// True once the process has begun to end: Windows has ended all threads but one, and a lock that one of them held is
// never given back. COM still releases class objects then; whoever takes a lock on such a way asks first and does
// nothing.
[[nodiscard]] bool ProcessIsEnding() noexcept;
} // namespace Simulator
