#include "platform/WmiQuery.h"
#include "shared/Logger.h"
#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/MachineTest.h"
#include "tests/wmievents/PlainEvent.h"
#include "wmievents/PublicWmiEvent.h"

#include <gmock/gmock.h>

using Notifications::OrvikWmiEvents::PublicWMIEventSink;
using Simulator::Redirection;
using Simulator::WmiEventSource;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::HubProbe;
using TestSupport::LogLines;

namespace
{
constexpr const char* Indicate = "Notifications::OrvikWmiEvents::PublicWMIEventSink::Indicate";
constexpr const char* EventClass = "OrvikBIOS_BIOSEvent";

// The texts of public events: how they are logged and what becomes of those that cannot be had.
class PublicSinkTextTest : public Tests::HubTest
{
protected:
    ~PublicSinkTextTest() override { m_pSink->Release(); }

    HRESULT Deliver(Tests::PlainEvent& event)
    {
        IWbemClassObject* entry = &event;
        return m_pSink->Indicate(1, &entry);
    }

    // What the record of a description shows.
    std::wstring LoggedAs(const wchar_t* description)
    {
        StartWatching();
        Tests::PlainEvent event;
        event.m_pDescription = description;
        EXPECT_EQ(Deliver(event), WBEM_S_NO_ERROR);
        EXPECT_EQ(m_hub.Calls().back().m_strValue, description);
        constexpr std::wstring_view start = L"Verbose|Event data/Description : ";
        const std::wstring line = LogLines(Indicate).at(3);
        EXPECT_TRUE(line.starts_with(start));
        return line.substr(start.size());
    }

    // A delivery of an event through WMI whose texts fail as redirected; the next one is handled.
    template <class Function>
    void ExpectRaises(const char* function, Function* failing, const std::vector<std::wstring>& records)
    {
        Notifications::OrvikWmiEvents::PublicWmiEvent subscription;
        ASSERT_EQ(subscription.RegisterEvent(L"OrvikBIOS_BIOSEvent", &m_hub, HubProbe::PublicHandler()), S_OK);
        StartWatching();
        {
            const Redirection<Function> redirection(function, failing);
            EXPECT_THAT(WmiEventSource::Raise(EventClass, {{"Description", "one"}}), ElementsAre(RPC_E_SERVERFAULT));
        }
        EXPECT_THAT(m_hub.Calls(), IsEmpty());
        EXPECT_THAT(LogLines(Indicate), testing::ElementsAreArray(records));
        EXPECT_EQ(Simulator::Journal::Instance().Subjects("wmi").back(), "delivered");
        EXPECT_THAT(WmiEventSource::Raise(EventClass, {{"Description", "two"}}), ElementsAre(S_OK));
        EXPECT_EQ(m_hub.Calls().size(), 1u);
        EXPECT_EQ(subscription.Unregister(), S_OK);
    }

    PublicWMIEventSink* m_pSink = new PublicWMIEventSink(&m_hub, HubProbe::PublicHandler());
};

HRESULT WINAPI NoMemoryToChangeType(VARIANTARG*, VARIANTARG*, USHORT, VARTYPE)
{
    return E_OUTOFMEMORY;
}

HRESULT WINAPI NoMemoryToCopy(VARIANTARG*, VARIANTARG*)
{
    return E_OUTOFMEMORY;
}

// A hub whose handler takes no memory.
class SilentHub final : public Notifications::OrvikWmiEvents::COrvikWmiEvents
{
public:
    using Handler = void (COrvikWmiEvents::*)(const CStringW&, VARIANT*);

    static Handler PublicHandler() { return static_cast<Handler>(&SilentHub::OnPublic); }

    // As the handler found it.
    DWORD m_dwLastError = ERROR_SUCCESS;

private:
    void OnPublic(const CStringW&, VARIANT*) { m_dwLastError = GetLastError(); }
};
} // namespace

TEST_F(PublicSinkTextTest, Record_CharactersOfOneByte_AreShown)
{
    EXPECT_EQ(LoggedAs(L"Lüfter blockiert: 85 °C"), L"Lüfter blockiert: 85 °C");
    EXPECT_EQ(LoggedAs(L"\x7F\xA0\xFF"), L"\x7F\xA0\xFF");
}

TEST_F(PublicSinkTextTest, Record_OtherCharacters_AreQuestionMarks)
{
    EXPECT_EQ(LoggedAs(L"5 € \x80\x9F\x100"), L"5 ? ???");
    EXPECT_EQ(LoggedAs(L"電源アダプター"), L"???????");
}

TEST_F(PublicSinkTextTest, Record_ClassName_IsWrittenTheSameWay)
{
    Tests::PlainEvent event;
    event.m_pClass = L"Ereignis_ü€";
    EXPECT_EQ(Deliver(event), WBEM_S_NO_ERROR);
    EXPECT_EQ(LogLines(Indicate).at(2), L"Verbose|Event Name : Ereignis_ü?");
    EXPECT_EQ(m_hub.Calls().back().m_strEventClass, event.m_pClass);
}

TEST_F(PublicSinkTextTest, Record_VerboseIsOff_LongTextTakesNoMemory)
{
    SilentHub hub;
    auto* sink = new PublicWMIEventSink(&hub, SilentHub::PublicHandler());
    const std::wstring text(2000, L'x');
    Tests::PlainEvent event;
    event.m_pClass = L"short";
    event.m_pDescription = text.c_str();
    IWbemClassObject* entry = &event;
    const std::uint32_t levels = Orvik::Shared::g_enabledLevels;
    Orvik::Shared::g_enabledLevels = 0;
    const std::size_t before = AllocationFault::Count();
    EXPECT_EQ(sink->Indicate(1, &entry), WBEM_S_NO_ERROR);
    // The wrapper of the one property name.
    EXPECT_EQ(AllocationFault::Count() - before, 1u);
    Orvik::Shared::g_enabledLevels = levels;
    sink->Release();
}

TEST_F(PublicSinkTextTest, Record_KeepsTheLastError)
{
    SilentHub hub;
    auto* sink = new PublicWMIEventSink(&hub, SilentHub::PublicHandler());
    Tests::PlainEvent event;
    IWbemClassObject* entry = &event;
    SetLastError(ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(sink->Indicate(1, &entry), WBEM_S_NO_ERROR);
    EXPECT_EQ(hub.m_dwLastError, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    sink->Release();
}

TEST_F(PublicSinkTextTest, ClassName_NoMemoryToConvert_RaisesAndTheNextEventIsHandled)
{
    ExpectRaises<decltype(VariantChangeType)>("VariantChangeType", &NoMemoryToChangeType,
                                              {L"TraceIn|", L"Verbose|Event occured", L"TraceOut|"});
}

TEST_F(PublicSinkTextTest, Description_NoMemoryToCopy_RaisesAndTheNextEventIsHandled)
{
    ExpectRaises<decltype(VariantCopy)>(
        "VariantCopy", &NoMemoryToCopy,
        {L"TraceIn|", L"Verbose|Event occured", L"Verbose|Event Name : OrvikBIOS_BIOSEvent", L"TraceOut|"});
}
