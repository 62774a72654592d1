#include "shared/LogLevel.h"
#include "tests/support/LogCapture.h"
#include "tests/usbc/BiosInfoMachine.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <psapi.h>

#include <cstdio>
#include <random>

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Logged;
namespace Level = Orvik::Shared::Level;

namespace
{
// Answers that no sound firmware gives. After each the reader still reads a sound one.
class UsbCBiosInfoHostileTest : public BiosInfoMachine
{
protected:
    ~UsbCBiosInfoHostileTest() override
    {
        EXPECT_THAT(MessagesOf(OnePort(1, R"(<Message0 MessageId="2"/>)")), ElementsAre(PortMessage{.iMessageId = 2}));
    }
};

SIZE_T PeakMemory()
{
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof(counters);
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PeakPagefileUsage;
}

constexpr const char* g_huge[] = {"257", "2147483647", "4294967297", "99999999999999999999"};
} // namespace

TEST_F(UsbCBiosInfoHostileTest, Ports_TooMany_AreReadAs256)
{
    for (const char* count : g_huge)
    {
        TestSupport::ClearLog();
        const std::string ports = R"(<Port255 NumberOfMessages="1"><Message0 MessageId="5"/></Port255>)"
                                  R"(<Port256 NumberOfMessages="1"><Message0 MessageId="6"/></Port256>)";
        EXPECT_THAT(MessagesOf(Output(std::string("NumberOfPorts=\"") + count + "\"", ports)),
                    ElementsAre(PortMessage{.iMessageId = 5}))
            << count;
        EXPECT_TRUE(Logged(Level::Verbose, Read, L"Number Of Ports = 256"));
        EXPECT_TRUE(Logged(Level::Verbose, Read, L"Get info for port # 255."));
        EXPECT_TRUE(TestSupport::NotLogged(Level::Verbose, Read, L"Get info for port # 256."));
    }
}

TEST_F(UsbCBiosInfoHostileTest, Ports_256_AreAllRead)
{
    EXPECT_THAT(MessagesOf(Output("NumberOfPorts=\"256\"",
                                  R"(<Port255 NumberOfMessages="1"><Message0 MessageId="5"/></Port255>)")),
                ElementsAre(PortMessage{.iMessageId = 5}));
}

TEST_F(UsbCBiosInfoHostileTest, Messages_TooMany_AreReadAs256)
{
    for (const char* count : g_huge)
    {
        const std::string port = std::string("<Port0 NumberOfMessages=\"") + count +
                                 R"("><Message255 MessageId="5"/><Message256 MessageId="6"/></Port0>)";
        EXPECT_THAT(MessagesOf(Output("NumberOfPorts=\"1\"", port)), ElementsAre(PortMessage{.iMessageId = 5}));
        EXPECT_TRUE(Logged(Level::Verbose, Read, L"Number Of Messages = 256."));
    }
}

TEST_F(UsbCBiosInfoHostileTest, SeveralPortsWithTooManyMessages_EndSoon)
{
    std::string ports;
    for (int port = 0; port < 10; ++port)
        ports += "<Port" + std::to_string(port) + " NumberOfMessages=\"2147483647\"/>";
    const DWORD start = GetTickCount();
    EXPECT_THAT(MessagesOf(Output("NumberOfPorts=\"2147483647\"", ports)), IsEmpty());
    EXPECT_LT(GetTickCount() - start, 30'000u);
}

TEST_F(UsbCBiosInfoHostileTest, Text_ThatIsNoSuchDocument_HasNoPorts)
{
    for (const char* text :
         {"", "no markup", "<a><b></a>", "<GetUsbCMessagesOutput>",
          "<Other><Output><Data NumberOfPorts=\"1\"/></Output></Other>",
          "<GetUsbCMessagesOutput><Data NumberOfPorts=\"1\"/></GetUsbCMessagesOutput>",
          "<getusbcmessagesoutput><Output><Data NumberOfPorts=\"1\"/></Output></getusbcmessagesoutput>",
          "<x:GetUsbCMessagesOutput xmlns:x='urn:x'><Output><Data "
          "NumberOfPorts=\"1\"/></Output></x:GetUsbCMessagesOutput>",
          "<GetUsbCMessagesOutput><Output><Data><NumberOfPorts>1</NumberOfPorts></Data></Output></"
          "GetUsbCMessagesOutput>"})
    {
        TestSupport::ClearLog();
        EXPECT_THAT(MessagesOf(text), IsEmpty()) << text;
        EXPECT_TRUE(Logged(Level::Verbose, Read, L"Number Of Ports = -1"));
        EXPECT_TRUE(Logged(Level::Verbose, Read, L"no usb-c ports, quit."));
    }
}

TEST_F(UsbCBiosInfoHostileTest, Answer_OfAnotherType_HasNoPorts)
{
    for (const nlohmann::json& answer :
         std::vector<nlohmann::json>{{{"i4", 1}}, {{"unknown", true}}, {{"null-bstr", true}}, {{"empty", true}}})
    {
        AnswerAny({{"answer", answer}});
        TestSupport::ClearLog();
        CUsbCBiosInfo info;
        info.GetMessages(1);
        EXPECT_THAT(info.Messages(), IsEmpty());
        EXPECT_TRUE(Logged(Level::Verbose, Read, L"no usb-c ports, quit.")) << answer;
    }
}

TEST_F(UsbCBiosInfoHostileTest, ElementTwice_FirstOneCounts)
{
    EXPECT_THAT(MessagesOf(OnePort(1, R"(<Message0 MessageId="2"/><Message0 MessageId="4"/>)")),
                ElementsAre(PortMessage{.iMessageId = 2}));
}

// However harmless.
TEST_F(UsbCBiosInfoHostileTest, DocumentType_HasNoPorts)
{
    const std::string ports = OnePort(1, R"(<Message0 MessageId="5"/>)");
    const std::string rest = ports.substr(ports.find("?>") + 2);
    ASSERT_THAT(MessagesOf(rest), ElementsAre(PortMessage{.iMessageId = 5}));
    TestSupport::ClearLog();
    EXPECT_THAT(MessagesOf("<!DOCTYPE GetUsbCMessagesOutput [<!ENTITY e \"1\">]>" + rest), IsEmpty());
    EXPECT_TRUE(
        Logged(Level::Information, "XmlDocument::Parse", L"The text declares a document type, it is not parsed."));
    EXPECT_TRUE(Logged(Level::Verbose, Read, L"Number Of Ports = -1"));
    EXPECT_TRUE(Logged(Level::Verbose, Read, L"no usb-c ports, quit."));
}

// No parser sees this text and the next one: they prove that nothing on the way to it expands or fetches either.
TEST_F(UsbCBiosInfoHostileTest, EntityBomb_NeitherFillsMemoryNorTakesLong)
{
    std::string text = "<!DOCTYPE b [<!ENTITY e0 \"ha\">";
    for (int i = 1; i <= 40; ++i)
    {
        const std::string before = "&e" + std::to_string(i - 1) + ";";
        text += "<!ENTITY e" + std::to_string(i) + " \"" + before + before + "\">";
    }
    text += R"(]><GetUsbCMessagesOutput><Output><Data NumberOfPorts="&e40;"/></Output></GetUsbCMessagesOutput>)";
    const SIZE_T before = PeakMemory();
    const DWORD start = GetTickCount();
    EXPECT_THAT(MessagesOf(text), IsEmpty());
    EXPECT_LT(GetTickCount() - start, 10'000u);
    EXPECT_LT(PeakMemory() - before, 200u * 1024 * 1024);
}

TEST_F(UsbCBiosInfoHostileTest, ExternalEntity_IsNotFetched)
{
    wchar_t folder[MAX_PATH];
    ASSERT_NE(GetTempPathW(MAX_PATH, folder), 0u);
    const std::wstring path = std::wstring(folder) + L"usbc-ports.txt";
    FILE* file = _wfopen(path.c_str(), L"wb");
    ASSERT_NE(file, nullptr);
    std::fputs(R"(<Port0 NumberOfMessages="1"><Message0 MessageId="5"/></Port0>)", file);
    std::fclose(file);
    const std::string narrow(path.begin(), path.end());
    const std::string text = "<!DOCTYPE GetUsbCMessagesOutput [<!ENTITY x SYSTEM \"" + narrow +
                             "\">]><GetUsbCMessagesOutput><Output><Data NumberOfPorts=\"1\">&x;</Data></Output>"
                             "</GetUsbCMessagesOutput>";
    EXPECT_THAT(MessagesOf(text), IsEmpty());
    DeleteFileW(path.c_str());
}

TEST_F(UsbCBiosInfoHostileTest, MutatedAnswers_AlwaysEnd)
{
    const std::string seed =
        OnePort(2, R"(<Message0 MessageId="1" Valid="true" NormalPower="45"/><Message1 MessageId="3"/>)");
    std::minstd_rand random(20240229);
    for (int round = 0; round < 500; ++round)
    {
        std::string text = seed;
        for (unsigned changes = random() % 4 + 1; changes != 0; --changes)
            text[random() % text.size()] = static_cast<char>(random() % 96 + 32);
        EXPECT_LE(MessagesOf(text).size(), 256u);
    }
}
