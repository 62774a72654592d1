#include "simulator/console/DialogLine.h"

#include "simulator/console/DialogPattern.h"

namespace Simulator
{
namespace
{
std::string DescribeAnswer(const std::string& with, const std::string& number)
{
    if (with == "ok")
        return "clicks OK in dialog " + number;
    if (with == "close")
        return "closes dialog " + number;
    if (with == "esc")
        return "presses ESC in dialog " + number;
    if (with == "check")
        return "clicks the check box of dialog " + number;
    return "clicks the link of dialog " + number;
}
} // namespace

std::optional<DialogLine> ReadDialogLine(const Entry& entry)
{
    if (entry.m_strKind != "dialog")
        return std::nullopt;
    const std::string number = std::to_string(entry.m_details.value("number", 0));
    if (entry.m_strSubject == "opened")
        return DialogLine{"dialog", DescribeDialog(entry.m_details)};
    if (entry.m_strSubject == "answered")
        return DialogLine{"user", DescribeAnswer(entry.m_details.value("with", ""), number)};
    if (entry.m_strSubject == "closed")
        return DialogLine{"dialog", "dialog " + number + " is closed"};
    return std::nullopt;
}
} // namespace Simulator
