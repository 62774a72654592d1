#include "simulator/toasts/ToastRedirections.h"
#include "tests/simulator/toasts/ToastsTest.h"

#include <memory>
#include <thread>

using Simulator::CallPlan;
using Simulator::ToastRedirections;

namespace
{
// A program that looks the functions of combase up when it needs them, as the agent does.
class ToastRedirectionsTest : public ToastsTest
{
protected:
    template <class Function>
    static Function* LookUp(const char* name)
    {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"combase.dll"), name)));
    }

    static HRESULT GetFactory(std::wstring_view className, REFIID iid, void** factory)
    {
        return LookUp<decltype(RoGetActivationFactory)>("RoGetActivationFactory")(RuntimeString(className), iid,
                                                                                  factory);
    }

    static HRESULT GetManager(ToastAbi::IToastNotificationManagerStaticsPtr& manager)
    {
        return GetFactory(ToastAbi::ToastNotificationManagerClass, __uuidof(ToastAbi::IToastNotificationManagerStatics),
                          reinterpret_cast<void**>(&manager));
    }
};
} // namespace

TEST_F(ToastRedirectionsTest, RoGetActivationFactory_ReachesBothClasses)
{
    const ToastRedirections redirections;
    ToastAbi::IToastNotificationManagerStaticsPtr manager;
    EXPECT_EQ(GetManager(manager), S_OK);
    EXPECT_NE(manager, nullptr);
    ToastAbi::IToastNotificationFactoryPtr factory;
    EXPECT_EQ(GetFactory(ToastAbi::ToastNotificationClass, __uuidof(ToastAbi::IToastNotificationFactory),
                         reinterpret_cast<void**>(&factory)),
              S_OK);
    EXPECT_THAT(Calls(), testing::ElementsAre("RoGetActivationFactory", "DllGetActivationFactory",
                                              "ToastNotificationManager::QueryInterface", "RoGetActivationFactory",
                                              "DllGetActivationFactory", "ToastNotificationFactory::QueryInterface"));
}

TEST_F(ToastRedirectionsTest, RoGetActivationFactory_WrongInterface_IsRefused)
{
    const ToastRedirections redirections;
    void* factory = this;
    EXPECT_EQ(
        GetFactory(ToastAbi::ToastNotificationManagerClass, __uuidof(ToastAbi::IToastNotificationFactory), &factory),
        E_NOINTERFACE);
    EXPECT_EQ(factory, nullptr);
}

TEST_F(ToastRedirectionsTest, RoGetActivationFactory_OtherClass_IsAskedOfWindows)
{
    const ToastRedirections redirections;
    void* factory = nullptr;
    EXPECT_EQ(GetFactory(L"Orvik.NoSuchClass", __uuidof(IActivationFactory), &factory), REGDB_E_CLASSNOTREG);
    EXPECT_THAT(Calls(), testing::ElementsAre("RoGetActivationFactory"));
}

TEST_F(ToastRedirectionsTest, RoGetActivationFactory_CanFail)
{
    const ToastRedirections redirections;
    CallPlan::Instance().Fail("RoGetActivationFactory", PlannedFailure);
    ToastAbi::IToastNotificationManagerStaticsPtr manager;
    EXPECT_EQ(GetManager(manager), PlannedFailure);
    EXPECT_EQ(manager, nullptr);
    EXPECT_EQ(GetManager(manager), S_OK);
}

TEST_F(ToastRedirectionsTest, RoGetActivationFactory_WithoutApartment_IsRefused)
{
    const ToastRedirections redirections;
    HRESULT hr = S_OK;
    std::thread(
        [&hr]
        {
            ToastAbi::IToastNotificationManagerStaticsPtr manager;
            hr = GetManager(manager);
        })
        .join();
    EXPECT_EQ(hr, CO_E_NOTINITIALIZED);
}

TEST_F(ToastRedirectionsTest, StringFunctions_AreTheRealOnes)
{
    const ToastRedirections redirections;
    HSTRING string = nullptr;
    EXPECT_EQ(LookUp<decltype(WindowsCreateString)>("WindowsCreateString")(L"text", 4, &string), S_OK);
    EXPECT_EQ(Simulator::RuntimeText::View(string), L"text");
    EXPECT_EQ(LookUp<decltype(WindowsDeleteString)>("WindowsDeleteString")(string), S_OK);

    const auto reference = LookUp<decltype(WindowsCreateStringReference)>("WindowsCreateStringReference");
    HSTRING_HEADER header{};
    EXPECT_EQ(reference(L"text", 4, &header, &string), S_OK);
    EXPECT_EQ(Simulator::RuntimeText::View(string), L"text");
    CallPlan::Instance().Fail("WindowsCreateStringReference", E_OUTOFMEMORY);
    EXPECT_EQ(reference(L"text", 4, &header, &string), E_OUTOFMEMORY);
    EXPECT_EQ(string, nullptr);
}

TEST_F(ToastRedirectionsTest, AfterItsLife_WindowsAnswersAgain)
{
    auto redirections = std::make_unique<ToastRedirections>();
    redirections.reset();
    ToastAbi::IToastNotificationManagerStaticsPtr manager;
    EXPECT_EQ(GetManager(manager), REGDB_E_CLASSNOTREG);
    EXPECT_THAT(Calls(), testing::IsEmpty());
}
