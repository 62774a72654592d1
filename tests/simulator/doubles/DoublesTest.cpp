#include "tests/simulator/doubles/DoublesTest.h"

#include "simulator/doubles/WbemLocatorDouble.h"

#include <thread>

namespace Simulator
{
DoublesTest::DoublesTest() : m_bInitialised(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))
{
    Journal::Instance().Clear();
    CallPlan::Instance().Reset();
    Facts::Instance().Clear();
}

DoublesTest::~DoublesTest()
{
    if (m_bInitialised)
        CoUninitialize();
    EXPECT_THAT(LiveObjects::All(), testing::IsEmpty());
}

nlohmann::json DoublesTest::LastDetails(const std::string& kind, const std::string& subject)
{
    nlohmann::json details;
    for (const JournalEntry& entry : Journal::Instance().Entries())
    {
        if (entry.m_strKind == kind && entry.m_strSubject == subject)
            details = entry.m_details;
    }
    return details;
}

IWbemServicesPtr DoublesTest::Connect(const wchar_t* path)
{
    const IWbemLocatorPtr spLocator(new WbemLocatorDouble, false);
    IWbemServicesPtr spServices;
    const HRESULT hr =
        spLocator->ConnectServer(_bstr_t(path), nullptr, nullptr, nullptr, 0, nullptr, nullptr, &spServices);
    EXPECT_EQ(hr, S_OK);
    Journal::Instance().Clear();
    return spServices;
}

void DoublesTest::OnThread(DWORD apartment, const std::function<void()>& work)
{
    OnBareThread(
        [&]
        {
            ASSERT_GE(CoInitializeEx(nullptr, apartment), 0);
            work();
            CoUninitialize();
        });
}

void DoublesTest::OnBareThread(const std::function<void()>& work)
{
    std::thread(work).join();
}
} // namespace Simulator
