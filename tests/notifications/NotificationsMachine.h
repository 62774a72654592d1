#pragma once

#include "notifications/NotificationsHandler.h"
#include "platform/ComApartment.h"
#include "simulator/doubles/ComRedirections.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "tests/notifications/ToastMachine.h"

#include <initializer_list>
#include <string>
#include <vector>

// A machine with toasts, the platform library and its notification component, and a handler on a thread like the
// agent's main thread.
class NotificationsMachine : public ToastMachine
{
protected:
    static constexpr const char* Initialise = "Notifications::OrvikNotifications::CNotificationsHandler::Init";
    static constexpr const char* ShowAll = "Notifications::OrvikNotifications::CNotificationsHandler::ShowUsbCMessages";
    static constexpr const char* ShowOne = "Notifications::OrvikNotifications::CNotificationsHandler::ShowToaster";

    static void Answer(const std::string& command, const nlohmann::json& answer)
    {
        Simulator::Facts::Instance().Set("/commands/" + command, {{"answer", answer}});
    }

    // The firmware has these messages for whichever port it is asked about.
    static void SetMessages(std::initializer_list<int> messageIds)
    {
        std::string messages;
        int count = 0;
        for (const int id : messageIds)
            messages += "<Message" + std::to_string(count++) + " MessageId=\"" + std::to_string(id) + "\"/>";
        Answer("Platform.USBC.Messages",
               {{"bstr", "<GetUsbCMessagesOutput><Output><Data NumberOfPorts=\"1\"><Port0 NumberOfMessages=\"" +
                             std::to_string(count) + "\">" + messages +
                             "</Port0></Data></Output></GetUsbCMessagesOutput>"}});
    }

    // The second text of every toast that was shown, the title being the first.
    [[nodiscard]] static std::vector<std::string> ShownTexts()
    {
        std::vector<std::string> texts;
        for (const nlohmann::json& toast : Shown())
            texts.push_back(toast.at("texts").at(1));
        return texts;
    }

    // What the calls of that name were given, in order.
    [[nodiscard]] static std::vector<nlohmann::json> DetailsOf(const std::string& call, const std::string& detail)
    {
        std::vector<nlohmann::json> details;
        for (const Simulator::JournalEntry& entry : Simulator::Journal::Instance().Entries())
        {
            if (entry.m_strSubject == call)
                details.push_back(entry.m_details.at(detail));
        }
        return details;
    }

    Simulator::ComRedirections m_com{Simulator::Activation::InProcess};
    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
    Notifications::OrvikNotifications::CNotificationsHandler m_handler;
};
