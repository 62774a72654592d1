#pragma once

#include "notifications/ToastAbi.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/toasts/RuntimeText.h"
#include "simulator/toasts/ToastDesktop.h"

#include <windows.h>

#include <activation.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

inline constexpr HRESULT PlannedFailure = static_cast<HRESULT>(0x8004D00D);
inline constexpr HRESULT NotFound = HRESULT_FROM_WIN32(ERROR_NOT_FOUND);

// Lends a text to a call as a string of the Windows Runtime.
class RuntimeString
{
public:
    explicit RuntimeString(std::wstring_view text)
    {
        EXPECT_HRESULT_SUCCEEDED(Simulator::RuntimeText::Create(text, &m_hString));
    }
    RuntimeString(const RuntimeString&) = delete;
    RuntimeString& operator=(const RuntimeString&) = delete;
    ~RuntimeString() { Simulator::RuntimeText::Free(m_hString); }

    operator HSTRING() const noexcept { return m_hString; }

private:
    HSTRING m_hString = nullptr;
};

// The text of a string that a call gave; frees it.
[[nodiscard]] std::wstring TakeText(HSTRING string);

// The doubles as the agent meets them: through the agent's own declarations of the interfaces. Toasts stay until a test
// ends them and are not drawn. After each test no object may be left.
class ToastsTest : public testing::Test
{
protected:
    ToastsTest();
    ~ToastsTest() override;

    template <class Interface>
    [[nodiscard]] static _com_ptr_t<_com_IIID<Interface, &__uuidof(Interface)>> Factory(std::wstring_view className)
    {
        _com_ptr_t<_com_IIID<Interface, &__uuidof(Interface)>> factory;
        const FactoryOwner owner(className);
        if (owner.Get() == nullptr)
            return factory;
        EXPECT_HRESULT_SUCCEEDED(owner.Get()->QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(&factory)));
        return factory;
    }
    [[nodiscard]] static ToastAbi::IToastNotificationManagerStaticsPtr Manager();
    [[nodiscard]] static ToastAbi::IToastNotifierPtr Notifier();
    [[nodiscard]] static ToastAbi::IXmlDocumentPtr Document(ToastAbi::ToastTemplateType type);
    // The n-th element of that name, counted from 0.
    [[nodiscard]] static ToastAbi::IXmlNodePtr Element(ToastAbi::IXmlDocument* document, std::wstring_view name,
                                                       UINT32 index = 0);
    static void AppendText(ToastAbi::IXmlDocument* document, ToastAbi::IXmlNode* node, std::wstring_view text);
    [[nodiscard]] static std::wstring Xml(IInspectable* node);

    // A toast of one image and three texts.
    [[nodiscard]] static ToastAbi::IToastNotificationPtr Toast(std::wstring_view title, std::wstring_view text,
                                                               std::wstring_view image = L"");
    static void Show(ToastAbi::IToastNotification* toast);

    [[nodiscard]] static std::vector<std::string> Calls() { return Simulator::Journal::Instance().Subjects("call"); }
    [[nodiscard]] static std::vector<std::string> ToastEntries()
    {
        return Simulator::Journal::Instance().Subjects("toast");
    }
    // Of the last journal entry of kind "toast".
    [[nodiscard]] static nlohmann::json LastToastDetails();

    Simulator::ToastDesktop& m_desktop = Simulator::ToastDesktop::Instance();

private:
    class FactoryOwner
    {
    public:
        explicit FactoryOwner(std::wstring_view className);
        FactoryOwner(const FactoryOwner&) = delete;
        FactoryOwner& operator=(const FactoryOwner&) = delete;
        ~FactoryOwner();
        [[nodiscard]] IActivationFactory* Get() const { return m_pFactory; }

    private:
        IActivationFactory* m_pFactory = nullptr;
    };
};
