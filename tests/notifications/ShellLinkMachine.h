#pragma once

#include "notifications/DesktopToast.h"
#include "tests/notifications/ScratchFolder.h"
#include "tests/notifications/ShellLinkDouble.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

// A machine whose shell links only record, with a Start menu that has no shortcut yet. After each test no double may be
// alive.
class ShellLinkMachine : public testing::Test
{
protected:
    ShellLinkMachine();
    ~ShellLinkMachine() override;

    // Forgets what the machine saw so far, and the rules of the plan.
    static void StartOver();
    // The names of the calls that the code under test made, in order.
    [[nodiscard]] static std::vector<std::string> Calls();
    // What the first of these calls was given; null without one.
    [[nodiscard]] static nlohmann::json Details(const char* call);

    DesktopToast m_toast{nullptr, nullptr};
    ScratchStartMenu m_startMenu;

private:
    ShellLinkRedirection m_shellLinks;
};
