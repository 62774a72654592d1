#include "notifications/DesktopToast.h"
#include "notifications/WindowsRuntime.h"
#include "platform/ComApartment.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/notifications/ToastMachine.h"
#include "tests/platform/MethodRedirection.h"

#include <windows.h>

#include <roapi.h>

using namespace ToastAbi;
using Simulator::Redirection;

namespace
{
HRESULT WINAPI NoFactory(HSTRING, REFIID, void** factory)
{
    *factory = nullptr;
    return S_OK;
}

// A method whose only argument is the place of its result, or with one argument before it.
HRESULT STDMETHODCALLTYPE NothingGot(IUnknown*, void** result)
{
    *result = nullptr;
    return S_OK;
}
HRESULT STDMETHODCALLTYPE NothingGiven(IUnknown*, void*, void** result)
{
    *result = nullptr;
    return S_OK;
}

// Windows says that all is well and gives nothing.
class DesktopToastEmptyAnswerTest : public ToastMachine
{
protected:
    void ExpectFailureWithoutToast()
    {
        EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), E_POINTER);
        EXPECT_TRUE(Shown().empty());
    }

    DesktopToast m_toast{nullptr, nullptr};
    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
};

IXmlNodePtr FirstImage(const IXmlDocumentPtr& spDocument)
{
    WindowsRuntime::RuntimeString image;
    EXPECT_EQ(image.Create(L"image"), S_OK);
    IXmlNodeListPtr spImages;
    IXmlNodePtr spImage;
    EXPECT_EQ(spDocument->GetElementsByTagName(image.Get(), &spImages), S_OK);
    EXPECT_EQ(spImages->Item(0, &spImage), S_OK);
    return spImage;
}
} // namespace

TEST_F(DesktopToastEmptyAnswerTest, DisplayToast_NoFactory_Fails)
{
    const Redirection<decltype(RoGetActivationFactory)> redirection("RoGetActivationFactory", &NoFactory);
    ExpectFailureWithoutToast();
}

TEST_F(DesktopToastEmptyAnswerTest, DisplayToast_NoTemplate_Fails)
{
    const MethodRedirection redirection(Manager().GetInterfacePtr(),
                                        &IToastNotificationManagerStatics::GetTemplateContent, &NothingGiven);
    ExpectFailureWithoutToast();
}

TEST_F(DesktopToastEmptyAnswerTest, DisplayToast_NoElements_Fails)
{
    const MethodRedirection redirection(Document(ToastTemplateType::ToastText01).GetInterfacePtr(),
                                        &IXmlDocument::GetElementsByTagName, &NothingGiven);
    ExpectFailureWithoutToast();
}

TEST_F(DesktopToastEmptyAnswerTest, DisplayToast_NoAttributes_Fails)
{
    const MethodRedirection redirection(FirstImage(Document(ToastTemplateType::ToastImageAndText04)).GetInterfacePtr(),
                                        &IXmlNode::get_Attributes, &NothingGot);
    ExpectFailureWithoutToast();
}

TEST_F(DesktopToastEmptyAnswerTest, DisplayToast_NoTextNode_Fails)
{
    const MethodRedirection redirection(Document(ToastTemplateType::ToastText01).GetInterfacePtr(),
                                        &IXmlDocument::CreateTextNode, &NothingGiven);
    ExpectFailureWithoutToast();
}

TEST_F(DesktopToastEmptyAnswerTest, DisplayToast_TextNodeIsNoNode_Fails)
{
    IXmlTextPtr spText;
    ASSERT_EQ(Document(ToastTemplateType::ToastText01)->CreateTextNode(nullptr, &spText), S_OK);
    const MethodRedirection redirection(spText.GetInterfacePtr(), QueryInterfaceMethod, &NothingGiven);
    ExpectFailureWithoutToast();
    EXPECT_EQ(Calls().back(), "IXmlDocument::CreateTextNode");
}

TEST_F(DesktopToastEmptyAnswerTest, DisplayToast_NoNotifier_Fails)
{
    const MethodRedirection redirection(Manager().GetInterfacePtr(),
                                        &IToastNotificationManagerStatics::CreateToastNotifierWithId, &NothingGiven);
    ExpectFailureWithoutToast();
}

TEST_F(DesktopToastEmptyAnswerTest, DisplayToast_NoToast_Fails)
{
    IToastNotificationFactoryPtr spFactory;
    ASSERT_EQ(WindowsRuntime::GetActivationFactory(ToastNotificationClass, __uuidof(IToastNotificationFactory),
                                                   reinterpret_cast<void**>(&spFactory)),
              S_OK);
    const MethodRedirection redirection(spFactory.GetInterfacePtr(),
                                        &IToastNotificationFactory::CreateToastNotification, &NothingGiven);
    ExpectFailureWithoutToast();
}
