#pragma once

namespace FileBench
{
// The log file's part of the benchmark: prints its table and writes it to the file. Returns the exit code.
[[nodiscard]] int Run(const char* jsonFile);
} // namespace FileBench
