#pragma once

#include <filesystem>

namespace Simulator
{
// Makes this registry that of a simulated machine: registers the doubles and sets the marker. Without force it refuses
// where nothing says that this is a test prefix: Wine, started by tools/testenv. Throws UsageError.
void Prepare(const std::filesystem::path& machine, bool force);

// Throws UsageError with what to do when Prepare has not been here.
void RequirePrepared();
} // namespace Simulator
