#include "tests/simulator/toasts/ToastsTest.h"

#include "simulator/toasts/TreeNode.h"

using Simulator::CallPlan;
using Simulator::Journal;
using Simulator::LiveObjects;
using testing::IsEmpty;

namespace
{
class RuntimeObjectTest : public ToastsTest
{
protected:
    RuntimeObjectTest()
    {
        const ToastAbi::IXmlDocumentPtr document = Document(ToastAbi::ToastTemplateType::ToastText01);
        EXPECT_EQ(document->CreateTextNode(RuntimeString(L"x"), &m_text), S_OK);
        Journal::Instance().Clear();
    }

    static ULONG References(IUnknown* object)
    {
        object->AddRef();
        return object->Release();
    }

    ToastAbi::IXmlTextPtr m_text;
};
} // namespace

TEST_F(RuntimeObjectTest, References_AreCountedHonestly)
{
    EXPECT_EQ(References(m_text), 1u);
    {
        const ToastAbi::IXmlNodePtr node(m_text);
        EXPECT_EQ(References(m_text), 2u);
        EXPECT_EQ(References(node), 2u);
    }
    EXPECT_EQ(References(m_text), 1u);
    EXPECT_EQ(LiveObjects::Count("XmlText"), 1);
    m_text = nullptr;
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(RuntimeObjectTest, QueryInterface_IdentityIsOneAndTheSame)
{
    const ToastAbi::IXmlNodePtr node(m_text);
    IUnknown* first = nullptr;
    IUnknown* second = nullptr;
    EXPECT_EQ(m_text->QueryInterface(__uuidof(IUnknown), reinterpret_cast<void**>(&first)), S_OK);
    EXPECT_EQ(node->QueryInterface(__uuidof(IUnknown), reinterpret_cast<void**>(&second)), S_OK);
    EXPECT_EQ(first, second);
    first->Release();
    second->Release();
}

TEST_F(RuntimeObjectTest, QueryInterface_Unsupported_ClearsThePlace)
{
    void* object = this;
    EXPECT_EQ(m_text->QueryInterface(__uuidof(ToastAbi::IToastNotifier), &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(m_text->QueryInterface(__uuidof(IUnknown), nullptr), E_POINTER);
}

TEST_F(RuntimeObjectTest, QueryInterface_OnlyConversionsAreRecorded)
{
    void* object = nullptr;
    for (const IID& iid :
         {__uuidof(IUnknown), __uuidof(IInspectable), __uuidof(IAgileObject), __uuidof(Simulator::ITreeNode)})
    {
        EXPECT_EQ(m_text->QueryInterface(iid, &object), S_OK);
        m_text->Release();
    }
    EXPECT_EQ(m_text->QueryInterface(__uuidof(IMarshal), &object), E_NOINTERFACE);
    EXPECT_THAT(Calls(), IsEmpty());
    EXPECT_EQ(m_text->QueryInterface(__uuidof(ToastAbi::IXmlNode), &object), S_OK);
    m_text->Release();
    EXPECT_THAT(Calls(), testing::ElementsAre("XmlText::QueryInterface"));
}

TEST_F(RuntimeObjectTest, QueryInterface_CanFail)
{
    CallPlan::Instance().Fail("XmlText::QueryInterface", PlannedFailure);
    void* object = this;
    EXPECT_EQ(m_text->QueryInterface(__uuidof(ToastAbi::IXmlNode), &object), PlannedFailure);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(References(m_text), 1u);
}

TEST_F(RuntimeObjectTest, GetIids_NamesThePublicInterfaces)
{
    ULONG count = 0;
    IID* iids = nullptr;
    ASSERT_EQ(m_text->GetIids(&count, &iids), S_OK);
    ASSERT_EQ(count, 4u);
    EXPECT_TRUE(iids[0] == __uuidof(ToastAbi::IXmlText));
    EXPECT_TRUE(iids[2] == __uuidof(ToastAbi::IXmlNode));
    CoTaskMemFree(iids); // NOCHECK(raw-release): given by one call of this test
    EXPECT_EQ(m_text->GetIids(nullptr, nullptr), E_POINTER);
}

TEST_F(RuntimeObjectTest, GetRuntimeClassName_IsTheClassOfWindows)
{
    HSTRING name = nullptr;
    ASSERT_EQ(m_text->GetRuntimeClassName(&name), S_OK);
    EXPECT_EQ(TakeText(name), L"Windows.Data.Xml.Dom.XmlText");
    TrustLevel level = FullTrust;
    EXPECT_EQ(m_text->GetTrustLevel(&level), S_OK);
    EXPECT_EQ(level, BaseTrust);
}
