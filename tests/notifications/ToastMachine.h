#pragma once

#include "notifications/ToastAbi.h"
#include "simulator/toasts/ToastDesktop.h"
#include "simulator/toasts/ToastRedirections.h"
#include "tests/notifications/RuntimeStringLedger.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/PolicyKey.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

// A machine with the toast classes of Windows, whose toasts stay until a test ends them and are not drawn. After each
// test no object, no string of the Windows Runtime and no BSTR may be left.
class ToastMachine : public testing::Test
{
protected:
    ToastMachine();
    ~ToastMachine() override;

    // Forgets what the machine saw so far, and the rules of the plan.
    static void StartOver();
    // The names of the calls that the code under test made, in order.
    [[nodiscard]] static std::vector<std::string> Calls();
    // What every toast said when it was shown, oldest first.
    [[nodiscard]] static std::vector<nlohmann::json> Shown();
    // The document of the last toast that was shown.
    [[nodiscard]] static std::wstring ShownXml();
    // What would be left now, were the test over; empty when nothing is.
    [[nodiscard]] std::string Leftovers() const;

    // Like every activation it needs an apartment on the calling thread.
    [[nodiscard]] static ToastAbi::IToastNotificationManagerStaticsPtr Manager();
    // A fresh document of one of the toast templates.
    [[nodiscard]] static ToastAbi::IXmlDocumentPtr Document(ToastAbi::ToastTemplateType type);

    Simulator::ToastDesktop& m_desktop = Simulator::ToastDesktop::Instance();

private:
    Simulator::ToastRedirections m_redirections;
    RuntimeStringLedger m_strings;
    TestSupport::BstrLedger m_bstrs;
    TestSupport::PolicyKey m_folders{L"Software\\Microsoft\\Windows\\CurrentVersion"};
};
