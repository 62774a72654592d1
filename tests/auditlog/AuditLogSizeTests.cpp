#include "wmievents/AuditLogCopy.h"

#include "tests/auditlog/AuditLogTest.h"
#include "tests/auditlog/QuietLog.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::AuditLogEntry;
using Tests::LogXml;
using Tests::RecordText;

namespace
{
class AuditLogSizeTest : public Tests::AuditLogTest, public testing::WithParamInterface<int>
{
};
} // namespace

TEST_P(AuditLogSizeTest, LogOfSoManyEntries_IsWrittenOnceFromItsEnd)
{
    const Tests::QuietLog quiet;
    const std::vector<AuditLogEntry> entries = Entries(GetParam());
    const std::wstring xml = LogXml(entries);
    Walk(xml);
    const auto texts = WrittenTexts();
    ASSERT_EQ(texts.size(), entries.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        ASSERT_EQ(texts[i], RecordText(entries[entries.size() - 1 - i]));
    StartWatching();
    Walk(xml);
    EXPECT_THAT(Written(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Sizes, AuditLogSizeTest, testing::Values(0, 1, 2, 1000, 10000));

TEST_F(AuditLogSizeTest, EntryThatTheSystemRefuses_IsLoggedAndTheOthersAreWritten)
{
    std::vector<AuditLogEntry> entries = Entries(3);
    entries[1].m_strDescription.assign(40000, L'x');
    Walk(LogXml(entries));
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(entries[2]), RecordText(entries[0])));
    EXPECT_TRUE(TestSupport::Logged(Tests::Level::Information, Tests::g_pWriter,
                                    L"ReportEvent failed, GatLastError() return: hr = 0x57"));
}

TEST_F(AuditLogSizeTest, LargeEntry_IsWrittenWhole)
{
    AuditLogEntry entry = Entry();
    entry.m_strDescription.assign(30000, L'\x4E2D');
    Walk(LogXml({entry}));
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(entry)));
}

TEST_F(AuditLogSizeTest, EntryWithManyFields_IsReadToItsEnd)
{
    std::wstring xml = L"<Log><Entry>";
    for (int i = 0; i < 2000; ++i)
        xml += Tests::Element(L"description", std::to_wstring(i));
    Walk(xml + Tests::Element(L"timestamp", Stamp()) + L"</Entry></Log>");
    EXPECT_THAT(WrittenTexts(), ElementsAre(L"Veritor log entry: 1999\r\nSource: \r\nTimestamp: " + Stamp()));
}

TEST_F(AuditLogSizeTest, DeepNesting_EndsSomewhere)
{
    std::wstring open;
    std::wstring close;
    for (int i = 0; i < 200; ++i)
    {
        open += L"<n>";
        close += L"</n>";
    }
    Walk(L"<Log><Entry>" + Tests::Element(L"timestamp", Stamp()) + L"<description>" + open + L"deep" + close +
         L"</description></Entry></Log>");
    EXPECT_THAT(WrittenTexts(), ElementsAre(L"Veritor log entry: deep\r\nSource: \r\nTimestamp: " + Stamp()));
}
