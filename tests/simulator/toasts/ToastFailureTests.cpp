#include "tests/simulator/toasts/RecordingHandler.h"
#include "tests/simulator/toasts/ToastsTest.h"

#include "simulator/toasts/ToastActivation.h"

using Simulator::CallPlan;
using Simulator::LiveObjects;
using Simulator::Repeat;
using testing::IsEmpty;

namespace
{
using ToastFailureTest = ToastsTest;

// Everything that a program does to show a toast; the first failure ends it.
class WholeToast
{
public:
    explicit WholeToast(HandlerCalls& calls) : m_calls(calls) {}

    HRESULT Run()
    {
        HRESULT hr = Factory(ToastAbi::ToastNotificationManagerClass, m_manager);
        if (SUCCEEDED(hr))
            hr = Write();
        if (SUCCEEDED(hr))
            hr = Factory(ToastAbi::ToastNotificationClass, m_factory);
        if (SUCCEEDED(hr))
            hr = m_factory->CreateToastNotification(m_document, &m_toast);
        if (SUCCEEDED(hr))
            hr = Register();
        if (SUCCEEDED(hr))
            hr = m_manager->CreateToastNotifierWithId(RuntimeString(L"Orvik Notifications"), &m_notifier);
        return FAILED(hr) ? hr : m_notifier->Show(m_toast);
    }

private:
    template <class Pointer>
    static HRESULT Factory(std::wstring_view name, Pointer& result)
    {
        IActivationFactory* factory = nullptr;
        HRESULT hr = Simulator::GetToastActivationFactory(RuntimeString(name), &factory);
        EXPECT_EQ(FAILED(hr), factory == nullptr);
        if (FAILED(hr))
            return hr;
        hr = factory->QueryInterface(result.GetIID(), reinterpret_cast<void**>(&result));
        factory->Release();
        return hr;
    }

    HRESULT Write()
    {
        HRESULT hr = m_manager->GetTemplateContent(ToastAbi::ToastTemplateType::ToastImageAndText04, &m_document);
        ToastAbi::IXmlNodeListPtr list;
        if (SUCCEEDED(hr))
            hr = m_document->GetElementsByTagName(RuntimeString(L"image"), &list);
        UINT32 length = 0;
        if (SUCCEEDED(hr))
            hr = list->get_Length(&length);
        ToastAbi::IXmlNodePtr image;
        if (SUCCEEDED(hr))
            hr = list->Item(0, &image);
        ToastAbi::IXmlNamedNodeMapPtr attributes;
        if (SUCCEEDED(hr))
            hr = image->get_Attributes(&attributes);
        ToastAbi::IXmlNodePtr source;
        if (SUCCEEDED(hr))
            hr = attributes->GetNamedItem(RuntimeString(L"src"), &source);
        ToastAbi::IXmlTextPtr text;
        if (SUCCEEDED(hr))
            hr = m_document->CreateTextNode(RuntimeString(L"file:///x"), &text);
        ToastAbi::IXmlNodePtr node;
        if (SUCCEEDED(hr))
            hr = text->QueryInterface(__uuidof(ToastAbi::IXmlNode), reinterpret_cast<void**>(&node));
        ToastAbi::IXmlNodePtr appended;
        return FAILED(hr) ? hr : source->AppendChild(node, &appended);
    }

    HRESULT Register()
    {
        auto* handler = new RecordingHandler(m_calls, "handler");
        EventRegistrationToken token{};
        HRESULT hr = m_toast->add_Activated(handler, &token);
        if (SUCCEEDED(hr))
            hr = m_toast->add_Dismissed(handler, &token);
        if (SUCCEEDED(hr))
            hr = m_toast->add_Failed(handler, &token);
        handler->Release();
        return hr;
    }

    HandlerCalls& m_calls;
    ToastAbi::IToastNotificationManagerStaticsPtr m_manager;
    ToastAbi::IXmlDocumentPtr m_document;
    ToastAbi::IToastNotificationFactoryPtr m_factory;
    ToastAbi::IToastNotificationPtr m_toast;
    ToastAbi::IToastNotifierPtr m_notifier;
};
} // namespace

TEST_F(ToastFailureTest, EachCallInTurn_FailsAsPlannedAndLeavesNothing)
{
    HandlerCalls calls;
    unsigned failures = 0;
    for (;;)
    {
        CallPlan::Instance().Reset();
        CallPlan::Instance().FailAny(PlannedFailure, failures + 1, Repeat::Always);
        const HRESULT hr = WholeToast(calls).Run();
        if (SUCCEEDED(hr))
            break;
        ++failures;
        EXPECT_EQ(hr, PlannedFailure) << "call " << failures;
        EXPECT_EQ(m_desktop.VisibleCount(), 0u);
        EXPECT_THAT(LiveObjects::All(), IsEmpty()) << "call " << failures;
    }
    // The way of the whole toast has this many calls.
    EXPECT_EQ(failures, 19u);
    EXPECT_EQ(m_desktop.VisibleCount(), 1u);
}

TEST_F(ToastFailureTest, NotRegistered_NeitherClassIsThere)
{
    Simulator::Facts::Instance().Set("/toasts/registered", false);
    for (const wchar_t* name : {ToastAbi::ToastNotificationManagerClass, ToastAbi::ToastNotificationClass})
    {
        IActivationFactory* factory = nullptr;
        EXPECT_EQ(Simulator::GetToastActivationFactory(RuntimeString(name), &factory), REGDB_E_CLASSNOTREG);
        EXPECT_EQ(factory, nullptr);
    }
}

TEST_F(ToastFailureTest, OtherClass_IsNotRegistered)
{
    IActivationFactory* factory = nullptr;
    EXPECT_EQ(Simulator::GetToastActivationFactory(RuntimeString(L"Windows.Data.Xml.Dom.XmlDocument"), &factory),
              REGDB_E_CLASSNOTREG);
    EXPECT_EQ(Simulator::GetToastActivationFactory(nullptr, &factory), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(Simulator::GetToastActivationFactory(nullptr, nullptr), E_POINTER);
}

TEST_F(ToastFailureTest, Factories_MakeNoInstanceWithoutArguments)
{
    for (const wchar_t* name : {ToastAbi::ToastNotificationManagerClass, ToastAbi::ToastNotificationClass})
    {
        IActivationFactory* factory = nullptr;
        ASSERT_EQ(Simulator::GetToastActivationFactory(RuntimeString(name), &factory), S_OK);
        IInspectable* instance = nullptr;
        EXPECT_EQ(factory->ActivateInstance(&instance), E_NOTIMPL);
        factory->Release();
    }
}

TEST_F(ToastFailureTest, Notifier_NeedsAnApplication)
{
    ToastAbi::IToastNotifierPtr notifier;
    EXPECT_EQ(Manager()->CreateToastNotifier(&notifier), NotFound);
    EXPECT_EQ(Manager()->CreateToastNotifierWithId(nullptr, &notifier), E_INVALIDARG);
}

TEST_F(ToastFailureTest, Toast_NeedsADocument)
{
    const auto factory = Factory<ToastAbi::IToastNotificationFactory>(ToastAbi::ToastNotificationClass);
    ToastAbi::IToastNotificationPtr toast;
    EXPECT_EQ(factory->CreateToastNotification(nullptr, &toast), E_POINTER);
    EXPECT_EQ(toast, nullptr);
}

TEST_F(ToastFailureTest, ShowAndHide_NeedAToast)
{
    EXPECT_EQ(Notifier()->Show(nullptr), E_POINTER);
    EXPECT_EQ(Notifier()->Hide(nullptr), E_POINTER);
}
