#include "tests/auditlog/AuditLogTest.h"

#include "platform/XmlDocument.h"
#include "simulator/model/Text.h"
#include "wmievents/AuditLogCopy.h"

#include <algorithm>

using Notifications::OrvikWmiEvents::VeritorEventSourceName;
using TestSupport::EventLogCapture;
using TestSupport::ReportedEvent;

namespace Tests
{
std::wstring Element(std::wstring_view name, std::wstring_view text)
{
    std::wstring element = L"<" + std::wstring(name) + L">";
    for (const wchar_t character : text)
    {
        if (character == L'<')
            element += L"&lt;";
        else if (character == L'&')
            element += L"&amp;";
        else
            element += character;
    }
    return element + L"</" + std::wstring(name) + L">";
}

std::wstring EntryXml(const AuditLogEntry& entry)
{
    return L"<Entry>" + Element(L"timestamp", entry.m_strTimestamp) + Element(L"source", entry.m_strSource) +
           Element(L"event_id", entry.m_strEventId) + Element(L"description", entry.m_strDescription) +
           Element(L"logtype", entry.m_strLogType) + L"</Entry>";
}

std::wstring LogXml(std::span<const AuditLogEntry> entries)
{
    std::wstring xml = L"<AuditLog>";
    for (const AuditLogEntry& entry : entries)
        xml += EntryXml(entry);
    return xml + L"</AuditLog>";
}

std::wstring LogXml(std::initializer_list<AuditLogEntry> entries)
{
    return LogXml(std::span(entries.begin(), entries.size()));
}

std::wstring RecordText(const AuditLogEntry& entry)
{
    return L"Veritor log entry: " + entry.m_strDescription + L"\r\nSource: " + entry.m_strSource + L"\r\nTimestamp: " +
           entry.m_strTimestamp;
}

AuditLogTest::AuditLogTest()
{
    static int tests = 0;
    m_nTest = ++tests;
    StartWatching();
}

std::wstring AuditLogTest::Stamp(int n) const
{
    return L"2023/05/01 10:11:12." + std::to_wstring(m_nTest) + L"-" + std::to_wstring(n);
}

AuditLogEntry AuditLogTest::Entry(int n) const
{
    return {Stamp(n), L"BIOS", L"4", L"Intrusion " + std::to_wstring(n), L"WARN"};
}

std::vector<AuditLogEntry> AuditLogTest::Entries(int count) const
{
    std::vector<AuditLogEntry> entries;
    for (int i = 0; i < count; ++i)
        entries.push_back(Entry(i));
    return entries;
}

void AuditLogTest::Walk(std::wstring_view xml)
{
    XmlDocument document;
    static_cast<void>(document.Load(MakeBstr(std::wstring(xml).c_str()).get()));
    Notifications::OrvikWmiEvents::AddLogsToEventViewer(document);
}

void AuditLogTest::FirmwareHas(std::wstring_view xml)
{
    Answer("EmbeddedController.AuditLog", {{"bstr", Simulator::Narrow(xml)}});
}

std::vector<ReportedEvent> AuditLogTest::Written()
{
    std::vector<ReportedEvent> written = EventLogCapture::Events();
    std::erase_if(written, [](const ReportedEvent& event) { return event.m_strSource != VeritorEventSourceName; });
    return written;
}

std::vector<std::wstring> AuditLogTest::WrittenTexts()
{
    std::vector<std::wstring> texts;
    for (const ReportedEvent& event : Written())
        texts.push_back(event.m_lstStrings.at(0));
    return texts;
}

std::size_t AuditLogTest::OpenSources()
{
    const std::vector<std::wstring> sources = EventLogCapture::OpenSources();
    return static_cast<std::size_t>(std::ranges::count(sources, std::wstring(VeritorEventSourceName)));
}
} // namespace Tests
