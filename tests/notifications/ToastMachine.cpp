#include "tests/notifications/ToastMachine.h"

#include "notifications/WindowsRuntime.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"
#include "tests/support/LogCapture.h"

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::Journal;
using Simulator::LiveObjects;

ToastMachine::ToastMachine()
{
    // The registry of a test program is empty: Windows finds the folder of 32-bit programs here.
    m_folders.Text(L"ProgramFilesDir (x86)", L"C:\\Program Files (x86)");
    Facts::Instance().Clear();
    Facts::Instance().Set("/toasts/draw", false);
    Facts::Instance().Set("/toasts/timeout-ms", 0);
    m_desktop.Reset();
    StartOver();
}

ToastMachine::~ToastMachine()
{
    m_desktop.Reset();
    EXPECT_EQ(Leftovers(), "");
    CallPlan::Instance().Reset();
    Facts::Instance().Clear();
}

void ToastMachine::StartOver()
{
    CallPlan::Instance().Reset();
    Journal::Instance().Clear();
    TestSupport::ClearLog();
}

std::vector<std::string> ToastMachine::Calls()
{
    return Journal::Instance().Subjects("call");
}

std::vector<nlohmann::json> ToastMachine::Shown()
{
    std::vector<nlohmann::json> toasts;
    for (const Simulator::JournalEntry& entry : Journal::Instance().Entries())
    {
        if (entry.m_strKind == "toast" && entry.m_strSubject == "shown")
            toasts.push_back(entry.m_details);
    }
    return toasts;
}

std::wstring ToastMachine::ShownXml()
{
    const std::vector<nlohmann::json> shown = Shown();
    return shown.empty() ? L"no toast" : Simulator::Wide(shown.back()["xml"].get<std::string>());
}

std::string ToastMachine::Leftovers() const
{
    std::string text;
    if (LiveObjects::Count() != 0)
        text += "objects " + nlohmann::json(LiveObjects::All()).dump();
    if (m_strings.Live() != 0)
        text += " strings " + std::to_string(m_strings.Live());
    if (m_bstrs.Live() != 0)
        text += " BSTRs " + std::to_string(m_bstrs.Live());
    return text;
}

ToastAbi::IToastNotificationManagerStaticsPtr ToastMachine::Manager()
{
    ToastAbi::IToastNotificationManagerStaticsPtr spManager;
    EXPECT_EQ(WindowsRuntime::GetActivationFactory(ToastAbi::ToastNotificationManagerClass,
                                                   __uuidof(ToastAbi::IToastNotificationManagerStatics),
                                                   reinterpret_cast<void**>(&spManager)),
              S_OK);
    return spManager;
}

ToastAbi::IXmlDocumentPtr ToastMachine::Document(ToastAbi::ToastTemplateType type)
{
    ToastAbi::IXmlDocumentPtr spDocument;
    EXPECT_EQ(Manager()->GetTemplateContent(type, &spDocument), S_OK);
    return spDocument;
}
