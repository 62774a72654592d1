#include "notifications/DesktopToast.h"

#include "platform/ComApartment.h"
#include "simulator/model/CallPlan.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/notifications/ToastMachine.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"

#include <objbase.h>

#include <gmock/gmock.h>

#include <atomic>
#include <thread>
#include <vector>

using Simulator::CallPlan;
using Simulator::Redirection;

namespace
{
// What the code under test did to the apartments of its threads.
struct ApartmentCalls
{
    std::atomic<int> m_nInitialised; // successful ones
    std::atomic<int> m_nUninitialised;
    std::atomic<DWORD> m_dwFlags;
    std::atomic<void*> m_pReserved;
    std::atomic<HRESULT> m_hrAnswer; // S_OK: the system's own
};
ApartmentCalls g_apartment;
decltype(CoInitializeEx)* g_coInitializeEx = nullptr;
decltype(CoUninitialize)* g_coUninitialize = nullptr;

HRESULT WINAPI WatchedCoInitializeEx(void* reserved, DWORD flags)
{
    g_apartment.m_dwFlags = flags;
    g_apartment.m_pReserved = reserved;
    const HRESULT hr =
        FAILED(g_apartment.m_hrAnswer) ? g_apartment.m_hrAnswer.load() : g_coInitializeEx(reserved, flags);
    g_apartment.m_nInitialised += SUCCEEDED(hr) ? 1 : 0;
    return hr;
}

void WINAPI WatchedCoUninitialize()
{
    ++g_apartment.m_nUninitialised;
    g_coUninitialize();
}

// CO_E_NOTINITIALIZED for a thread in no apartment.
HRESULT CurrentApartment(APTTYPE& type)
{
    APTTYPEQUALIFIER qualifier{};
    return CoGetApartmentType(&type, &qualifier);
}

class DesktopToastThreadTest : public ToastMachine
{
protected:
    DesktopToastThreadTest()
    {
        g_coInitializeEx = m_initialise.Original();
        g_coUninitialize = m_uninitialise.Original();
        g_apartment.m_nInitialised = 0;
        g_apartment.m_nUninitialised = 0;
        g_apartment.m_hrAnswer = S_OK;
    }

    DesktopToast m_toast{nullptr, nullptr};
    Redirection<decltype(CoInitializeEx)> m_initialise{"CoInitializeEx", &WatchedCoInitializeEx};
    Redirection<decltype(CoUninitialize)> m_uninitialise{"CoUninitialize", &WatchedCoUninitialize};
};
} // namespace

TEST_F(DesktopToastThreadTest, DisplayToast_Always_AsksForTheMultithreadedApartment)
{
    g_apartment.m_dwFlags = 0xFFFF;
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    EXPECT_EQ(g_apartment.m_dwFlags, 0u);
    EXPECT_EQ(g_apartment.m_pReserved, nullptr);
}

TEST_F(DesktopToastThreadTest, DisplayToast_SingleThreadedApartment_KeepsIt)
{
    const ComApartment apartment(COINIT_APARTMENTTHREADED);
    ASSERT_EQ(apartment.Result(), S_OK);
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    EXPECT_EQ(Shown().size(), 1u);
    APTTYPE type{};
    EXPECT_EQ(CurrentApartment(type), S_OK);
    EXPECT_TRUE(type == APTTYPE_STA || type == APTTYPE_MAINSTA) << type;
    EXPECT_EQ(g_apartment.m_nUninitialised, 0);
}

TEST_F(DesktopToastThreadTest, DisplayToast_MultithreadedApartment_KeepsIt)
{
    const ComApartment apartment(COINIT_MULTITHREADED);
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    APTTYPE type{};
    EXPECT_EQ(CurrentApartment(type), S_OK);
    EXPECT_EQ(type, APTTYPE_MTA);
    EXPECT_EQ(g_apartment.m_nInitialised, 2); // the test's own and that of the toast
    EXPECT_EQ(g_apartment.m_nUninitialised, 1);
}

TEST_F(DesktopToastThreadTest, DisplayToast_NoApartment_HasNoneAfterwards)
{
    HRESULT shown = E_FAIL;
    HRESULT apartment = S_OK;
    std::thread(
        [&]
        {
            shown = m_toast.DisplayToast(L"Title", L"Text");
            APTTYPE type{};
            apartment = CurrentApartment(type);
        })
        .join();
    EXPECT_EQ(shown, S_OK);
    EXPECT_EQ(apartment, CO_E_NOTINITIALIZED);
    EXPECT_EQ(g_apartment.m_nInitialised, 1);
    EXPECT_EQ(g_apartment.m_nUninitialised, 1);
}

TEST_F(DesktopToastThreadTest, DisplayToast_NoApartmentAndFailure_HasNoneAfterwards)
{
    CallPlan::Instance().Fail("IToastNotifier::Show", E_ACCESSDENIED);
    HRESULT shown = S_OK;
    HRESULT apartment = S_OK;
    std::thread(
        [&]
        {
            shown = m_toast.DisplayToast(L"Title", L"Text");
            APTTYPE type{};
            apartment = CurrentApartment(type);
        })
        .join();
    EXPECT_EQ(shown, E_ACCESSDENIED);
    EXPECT_EQ(apartment, CO_E_NOTINITIALIZED);
    EXPECT_EQ(g_apartment.m_nUninitialised, 1);
}

TEST_F(DesktopToastThreadTest, DisplayToast_ApartmentRefused_GivesThatCodeAndNoToast)
{
    g_apartment.m_hrAnswer = E_OUTOFMEMORY;
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), E_OUTOFMEMORY);
    EXPECT_TRUE(Calls().empty());
    EXPECT_EQ(g_apartment.m_nUninitialised, 0);
    EXPECT_THAT(TestSupport::LogLines(), testing::ElementsAre(L"TraceIn|DesktopToast::DisplayToast|",
                                                              L"TraceOut|DesktopToast::DisplayToast|hr: 0x8007000E"));
}

TEST_F(DesktopToastThreadTest, DisplayToast_ManyThreadsAtOnce_EachShowsItsOwn)
{
    constexpr int threadCount = 8;
    constexpr int toastsEach = 10;
    std::atomic<int> succeeded = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
    {
        threads.emplace_back(
            [&succeeded, i]
            {
                DesktopToast toast(nullptr, nullptr);
                for (int n = 0; n < toastsEach; ++n)
                    succeeded +=
                        toast.DisplayToast(L"Thread " + std::to_wstring(i), std::to_wstring(n)) == S_OK ? 1 : 0;
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(succeeded, threadCount * toastsEach);
    ASSERT_EQ(Shown().size(), static_cast<std::size_t>(threadCount * toastsEach));
    std::vector<int> perThread(threadCount);
    for (const nlohmann::json& toast : Shown())
        ++perThread.at(static_cast<std::size_t>(toast["title"].get<std::string>().back() - '0'));
    EXPECT_THAT(perThread, testing::Each(toastsEach));
    EXPECT_EQ(g_apartment.m_nInitialised, g_apartment.m_nUninitialised);
}

TEST_F(DesktopToastThreadTest, DisplayToast_AgainAndAgain_OpensNoHandles)
{
    const auto showOne = [this]
    {
        std::thread([this] { EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK); }).join();
        m_desktop.Reset();
    };
    showOne();
    showOne();
    const unsigned before = TestSupport::OpenHandleCount();
    for (int i = 0; i < 20; ++i)
        showOne();
    // The pool that raises events may start one more thread meanwhile; a leak would be one for each toast.
    EXPECT_LT(TestSupport::OpenHandleCount(), before + 20);
}
