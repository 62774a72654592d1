#include "notifications/ToastEventHandler.h"

#include "platform/ComPointers.h"
#include "tests/support/AllocationFault.h"

#include <windows.h>

#include <comdef.h>
#include <inspectable.h>
#include <objidl.h>

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

using namespace ToastAbi;

namespace
{
// IAgileObject and IMarshal among them: Windows asks every handler for these.
constexpr GUID g_otherInterfaces[] = {
    {0x94EA2B94, 0xE9CC, 0x49E0, {0xC0, 0xFF, 0xEE, 0x64, 0xCA, 0x8F, 0x5B, 0x90}},
    {0x00000003, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}},
    {0xAF86E2E0, 0xB12D, 0x4C6A, {0x9C, 0x5A, 0xD7, 0xAA, 0x65, 0x10, 0x1E, 0x90}}, // IInspectable
    {0xAB54DE2D, 0x97D9, 0x5528, {0xB6, 0xAD, 0x10, 0x5A, 0xFE, 0x15, 0x65, 0x31}}, // Activated, one bit off
    {0x00000000, 0x0000, 0x0000, {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}},
};

// A handler and the creator's one reference to it.
class ToastEventHandlerTest : public testing::Test
{
protected:
    // The interface that the handler answers for an IID; the reference that it took is given back at once.
    void* Query(REFIID iid)
    {
        IUnknownPtr spAnswer;
        EXPECT_EQ(m_pHandler->QueryInterface(iid, reinterpret_cast<void**>(&spAnswer)), S_OK);
        return spAnswer.GetInterfacePtr();
    }
    ULONG Count()
    {
        m_pHandler->AddRef();
        return m_pHandler->Release();
    }

    std::size_t m_nBlocksBefore = LiveHeapBlocks();
    ToastEventHandler* m_pHandler = new ToastEventHandler(nullptr, nullptr);
    IToastActivatedHandlerPtr m_spOwner{m_pHandler, false};
};
} // namespace

TEST_F(ToastEventHandlerTest, QueryInterface_Delegates_EachHasItsOwnPointer)
{
    EXPECT_EQ(Query(__uuidof(IToastActivatedHandler)), static_cast<IToastActivatedHandler*>(m_pHandler));
    EXPECT_EQ(Query(__uuidof(IToastDismissedHandler)), static_cast<IToastDismissedHandler*>(m_pHandler));
    EXPECT_EQ(Query(__uuidof(IToastFailedHandler)), static_cast<IToastFailedHandler*>(m_pHandler));
    EXPECT_NE(Query(__uuidof(IToastActivatedHandler)), Query(__uuidof(IToastDismissedHandler)));
    EXPECT_NE(Query(__uuidof(IToastActivatedHandler)), Query(__uuidof(IToastFailedHandler)));
    EXPECT_NE(Query(__uuidof(IToastDismissedHandler)), Query(__uuidof(IToastFailedHandler)));
}

TEST_F(ToastEventHandlerTest, QueryInterface_ByTheirNumbers_AnswersTheThreeDelegates)
{
    constexpr GUID activated = {0xAB54DE2D, 0x97D9, 0x5528, {0xB6, 0xAD, 0x10, 0x5A, 0xFE, 0x15, 0x65, 0x30}};
    constexpr GUID dismissed = {0x61C2402F, 0x0ED0, 0x5A18, {0xAB, 0x69, 0x59, 0xF4, 0xAA, 0x99, 0xA3, 0x68}};
    constexpr GUID failed = {0x95E3E803, 0xC969, 0x5E3A, {0x97, 0x53, 0xEA, 0x2A, 0xD2, 0x2A, 0x9A, 0x33}};
    EXPECT_EQ(Query(activated), static_cast<IToastActivatedHandler*>(m_pHandler));
    EXPECT_EQ(Query(dismissed), static_cast<IToastDismissedHandler*>(m_pHandler));
    EXPECT_EQ(Query(failed), static_cast<IToastFailedHandler*>(m_pHandler));
}

TEST_F(ToastEventHandlerTest, QueryInterface_Unknown_IsTheSameFromEveryInterface)
{
    void* const identity = Query(IID_IUnknown);
    EXPECT_EQ(identity, static_cast<IToastActivatedHandler*>(m_pHandler));
    IUnknownPtr spFromDismissed;
    IUnknownPtr spFromFailed;
    IToastDismissedHandler* const dismissed = m_pHandler;
    IToastFailedHandler* const failed = m_pHandler;
    EXPECT_EQ(dismissed->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&spFromDismissed)), S_OK);
    EXPECT_EQ(failed->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&spFromFailed)), S_OK);
    EXPECT_EQ(spFromDismissed.GetInterfacePtr(), identity);
    EXPECT_EQ(spFromFailed.GetInterfacePtr(), identity);
}

TEST_F(ToastEventHandlerTest, QueryInterface_FromAnyInterface_ReachesTheOthers)
{
    IToastDismissedHandler* const dismissed = m_pHandler;
    IToastFailedHandlerPtr spFailed;
    EXPECT_EQ(dismissed->QueryInterface(__uuidof(IToastFailedHandler), reinterpret_cast<void**>(&spFailed)), S_OK);
    EXPECT_EQ(spFailed.GetInterfacePtr(), static_cast<IToastFailedHandler*>(m_pHandler));
}

TEST_F(ToastEventHandlerTest, QueryInterface_Success_TakesOneReference)
{
    for (const IID& iid : {IID_IUnknown, __uuidof(IToastActivatedHandler), __uuidof(IToastDismissedHandler),
                           __uuidof(IToastFailedHandler)})
    {
        IUnknownPtr spAnswer;
        ASSERT_EQ(m_pHandler->QueryInterface(iid, reinterpret_cast<void**>(&spAnswer)), S_OK);
        EXPECT_EQ(Count(), 2u);
    }
    EXPECT_EQ(Count(), 1u);
}

TEST_F(ToastEventHandlerTest, QueryInterface_AnyOther_GivesNoInterfaceNullAndNoReference)
{
    for (const GUID& iid : g_otherInterfaces)
    {
        void* answer = this;
        EXPECT_EQ(m_pHandler->QueryInterface(iid, &answer), E_NOINTERFACE);
        EXPECT_EQ(answer, nullptr);
    }
    EXPECT_EQ(Count(), 1u);
}

TEST_F(ToastEventHandlerTest, QueryInterface_NowhereToPutIt_IsRefused)
{
    EXPECT_EQ(m_pHandler->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(Count(), 1u);
}

TEST_F(ToastEventHandlerTest, References_Always_AreCountedFromOne)
{
    EXPECT_EQ(m_pHandler->AddRef(), 2u);
    EXPECT_EQ(m_pHandler->AddRef(), 3u);
    EXPECT_EQ(m_pHandler->Release(), 2u);
    EXPECT_EQ(m_pHandler->Release(), 1u);
}

TEST_F(ToastEventHandlerTest, References_ThroughDifferentInterfaces_AreOneCount)
{
    EXPECT_EQ(static_cast<IToastActivatedHandler*>(m_pHandler)->AddRef(), 2u);
    EXPECT_EQ(static_cast<IToastDismissedHandler*>(m_pHandler)->AddRef(), 3u);
    EXPECT_EQ(static_cast<IToastFailedHandler*>(m_pHandler)->Release(), 2u);
    EXPECT_EQ(static_cast<IToastDismissedHandler*>(m_pHandler)->Release(), 1u);
}

TEST_F(ToastEventHandlerTest, Release_LastReference_FreesTheHandlerThroughAnyInterface)
{
    m_spOwner = nullptr;
    EXPECT_EQ(LiveHeapBlocks(), m_nBlocksBefore);
    for (int i = 0; i < 3; ++i)
    {
        auto* const handler = new ToastEventHandler(nullptr, nullptr);
        EXPECT_EQ(LiveHeapBlocks(), m_nBlocksBefore + 1);
        IUnknown* const interfaces[] = {static_cast<IToastActivatedHandler*>(handler),
                                        static_cast<IToastDismissedHandler*>(handler),
                                        static_cast<IToastFailedHandler*>(handler)};
        EXPECT_EQ(interfaces[i]->Release(), 0u);
        EXPECT_EQ(LiveHeapBlocks(), m_nBlocksBefore);
    }
}

TEST_F(ToastEventHandlerTest, Release_NotTheLastReference_KeepsTheHandler)
{
    const std::size_t blocks = LiveHeapBlocks();
    m_pHandler->AddRef();
    m_pHandler->Release();
    EXPECT_EQ(LiveHeapBlocks(), blocks);
}

TEST_F(ToastEventHandlerTest, Release_LastReferencesFromManyThreadsAtOnce_FreeTheHandlerOnce)
{
    constexpr int threadCount = 8;
    for (int round = 0; round < 200; ++round)
    {
        const std::size_t before = LiveHeapBlocks();
        std::atomic<int> last = 0;
        {
            auto* const handler = new ToastEventHandler(nullptr, nullptr);
            for (int i = 1; i < threadCount; ++i)
                handler->AddRef();
            std::latch start(threadCount);
            std::vector<std::thread> threads;
            for (int i = 0; i < threadCount; ++i)
            {
                threads.emplace_back(
                    [&]
                    {
                        start.arrive_and_wait();
                        last += handler->Release() == 0 ? 1 : 0;
                    });
            }
            for (std::thread& thread : threads)
                thread.join();
        }
        ASSERT_EQ(last, 1) << round;
        ASSERT_EQ(LiveHeapBlocks(), before) << round;
    }
}

TEST_F(ToastEventHandlerTest, References_FromManyThreads_AreAllCounted)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [this]
            {
                for (int n = 0; n < 50'000; ++n)
                {
                    IToastFailedHandlerPtr spFailed(m_pHandler); // takes one, gives it back
                    m_pHandler->AddRef();
                }
                for (int n = 0; n < 50'000; ++n)
                    m_pHandler->Release();
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(Count(), 1u);
}
