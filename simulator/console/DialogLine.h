#pragma once

#include "simulator/console/EntryLog.h"

namespace Simulator
{
// What the timeline says of a dialog's entry: who ("dialog", "user") and what. Nothing for an entry of another kind.
struct DialogLine
{
    std::string m_strWho;
    std::string m_strWhat;
};

[[nodiscard]] std::optional<DialogLine> ReadDialogLine(const Entry& entry);
} // namespace Simulator
