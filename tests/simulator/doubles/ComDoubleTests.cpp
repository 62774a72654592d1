#include "simulator/doubles/ComDouble.h"

#include "simulator/doubles/PlixNotificationDouble.h"
#include "simulator/doubles/UnsecuredApartmentDouble.h"
#include "simulator/doubles/WbemLocatorDouble.h"
#include "simulator/doubles/WbemServicesDouble.h"
#include "tests/simulator/doubles/DoublesTest.h"

#include <thread>

namespace Simulator
{
namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class ComDoubleTest : public DoublesTest
{
};

TEST_F(ComDoubleTest, Life_IsCountedAndEndsWithTheLastRelease)
{
    IWbemLocator* locator = new WbemLocatorDouble;
    EXPECT_EQ(LiveObjects::Count("WbemLocator"), 1);
    EXPECT_EQ(locator->AddRef(), 2u);
    EXPECT_EQ(locator->Release(), 1u);
    EXPECT_EQ(LiveObjects::Count("WbemLocator"), 1);
    EXPECT_EQ(locator->Release(), 0u);
    EXPECT_EQ(LiveObjects::Count("WbemLocator"), 0);
}

TEST_F(ComDoubleTest, References_AreJournalledWithCountAndObject)
{
    const IWbemLocatorPtr spOther(new WbemLocatorDouble, false);
    IWbemLocator* locator = new WbemLocatorDouble;
    locator->AddRef();
    const nlohmann::json added = LastDetails("reference", "WbemLocator::AddRef");
    locator->Release();
    locator->Release();
    const nlohmann::json released = LastDetails("reference", "WbemLocator::Release");
    EXPECT_EQ(added.at("count"), 2);
    EXPECT_EQ(released.at("count"), 0);
    EXPECT_EQ(added.at("object"), released.at("object"));
    spOther->AddRef();
    EXPECT_NE(LastDetails("reference", "WbemLocator::AddRef").at("object"), released.at("object"));
    spOther->Release();
}

TEST_F(ComDoubleTest, References_AreNotJournalledWhenUnwanted)
{
    ObjectIdentity::JournalReferences(false);
    (new WbemLocatorDouble)->Release();
    ObjectIdentity::JournalReferences(true);
    EXPECT_THAT(Journal::Instance().Subjects("reference"), IsEmpty());
}

TEST_F(ComDoubleTest, OrderOfLastReleases_NamesEachClassOnce)
{
    IUnknown* apartment = new UnsecuredApartmentDouble;
    IUnknown* locator = new WbemLocatorDouble;
    IUnknown* notification = new PlixNotificationDouble;
    locator->AddRef();
    locator->Release();
    apartment->Release();
    notification->Release();
    locator->Release();
    EXPECT_THAT(OrderOfLastReleases({"WbemLocator", "UnsecuredApartment", "WbemServices"}),
                ElementsAre("UnsecuredApartment", "WbemLocator"));
}

TEST_F(ComDoubleTest, QueryInterface_GivesOneIdentityThroughEachInterface)
{
    const IWbemServicesPtr spServices = Connect();
    IClientSecurity* security = nullptr;
    ASSERT_EQ(spServices->QueryInterface(IID_IClientSecurity, reinterpret_cast<void**>(&security)), S_OK);
    EXPECT_NE(static_cast<void*>(security), static_cast<void*>(spServices.GetInterfacePtr()));
    IUnknown* fromServices = nullptr;
    IUnknown* fromSecurity = nullptr;
    ASSERT_EQ(spServices->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&fromServices)), S_OK);
    ASSERT_EQ(security->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&fromSecurity)), S_OK);
    EXPECT_EQ(fromServices, fromSecurity);
    fromServices->Release();
    fromSecurity->Release();
    EXPECT_EQ(security->Release(), 1u);
}

TEST_F(ComDoubleTest, QueryInterface_ForAnotherInterfaceClearsThePointer)
{
    const IWbemLocatorPtr spLocator(new WbemLocatorDouble, false);
    void* object = &object;
    EXPECT_EQ(spLocator->QueryInterface(IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(spLocator->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(ComDoubleTest, QueryInterface_FailsByPlanAndTakesNoReference)
{
    const IWbemLocatorPtr spLocator(new WbemLocatorDouble, false);
    CallPlan::Instance().Fail("WbemLocator::QueryInterface", PlannedFailure);
    void* object = &object;
    EXPECT_EQ(spLocator->QueryInterface(IID_IWbemLocator, &object), PlannedFailure);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(spLocator->AddRef(), 2u);
    EXPECT_EQ(spLocator->Release(), 1u);
    EXPECT_THAT(Journal::Instance().Subjects("com"), ElementsAre("WbemLocator::QueryInterface"));
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(ComDoubleTest, MakeDouble_ForAnotherInterfaceLeavesNothing)
{
    void* object = &object;
    EXPECT_EQ(MakeDouble<WbemLocatorDouble>(IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(LiveObjects::Count("WbemLocator"), 0);
}

TEST_F(ComDoubleTest, Marshalling_GivesTheSameObjectInAnotherApartment)
{
    const IWbemLocatorPtr spLocator(new WbemLocatorDouble, false);
    IStream* stream = nullptr;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IWbemLocator, spLocator, &stream), S_OK);
    OnThread(COINIT_MULTITHREADED,
             [&]
             {
                 IWbemLocatorPtr spThere;
                 ASSERT_EQ(CoGetInterfaceAndReleaseStream(stream, IID_IWbemLocator, reinterpret_cast<void**>(&spThere)),
                           S_OK);
                 EXPECT_EQ(spThere.GetInterfacePtr(), spLocator.GetInterfacePtr());
             });
    EXPECT_EQ(spLocator->AddRef(), 2u);
    EXPECT_EQ(spLocator->Release(), 1u);
}

TEST_F(ComDoubleTest, References_FromManyThreadsAddUp)
{
    ObjectIdentity::JournalReferences(false);
    const IWbemLocatorPtr spLocator(new WbemLocatorDouble, false);
    std::vector<std::thread> threads;
    for (int i = 0; i != 4; ++i)
    {
        threads.emplace_back(
            [&]
            {
                for (int time = 0; time != 10'000; ++time)
                {
                    spLocator->AddRef();
                    spLocator->Release();
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    ObjectIdentity::JournalReferences(true);
    EXPECT_EQ(spLocator->AddRef(), 2u);
    EXPECT_EQ(spLocator->Release(), 1u);
}
} // namespace
} // namespace Simulator
