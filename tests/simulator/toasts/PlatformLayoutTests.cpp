#include "notifications/ToastAbi.h"
#include "tests/simulator/toasts/AbiSlots.h"

#if ORVIK_HAS_PLATFORM_TOAST_HEADERS
#include <windows.ui.notifications.h>
#endif

#include <gtest/gtest.h>

// The agent's declarations against those of the platform's own headers, where the build found some.
#if ORVIK_HAS_PLATFORM_TOAST_HEADERS
namespace
{
namespace Platform
{
using namespace ABI::Windows::Data::Xml::Dom;
using namespace ABI::Windows::UI::Notifications;
} // namespace Platform

const SlotRow g_members[] = {
#define MEMBER(interface, member)                                                                                      \
    {#interface, #member, SlotOf(&ToastAbi::interface::member), SlotOf(&Platform::interface::member)},
// NOCHECK(include-groups): the rows of the table
#include "tests/simulator/toasts/AbiMembers.inc"
#undef MEMBER
};

template <class Own, class Theirs>
void ExpectSameId(const char* name)
{
    EXPECT_TRUE(__uuidof(Own) == __uuidof(Theirs)) << name;
}
} // namespace

TEST(PlatformLayout, EveryMember_HasTheSlotOfThePlatformsHeaders)
{
    for (const SlotRow& row : g_members)
        EXPECT_EQ(row.m_nFirst, row.m_nSecond) << row;
}

TEST(PlatformLayout, EveryInterface_HasTheIdOfThePlatformsHeaders)
{
#define EXPECT_SAME_ID(interface) ExpectSameId<ToastAbi::interface, Platform::interface>(#interface)
    EXPECT_SAME_ID(IXmlNode);
    EXPECT_SAME_ID(IXmlNodeList);
    EXPECT_SAME_ID(IXmlNamedNodeMap);
    EXPECT_SAME_ID(IXmlText);
    EXPECT_SAME_ID(IXmlDocument);
    EXPECT_SAME_ID(IToastDismissedEventArgs);
    EXPECT_SAME_ID(IToastFailedEventArgs);
    EXPECT_SAME_ID(IToastNotification);
    EXPECT_SAME_ID(IToastNotificationFactory);
    EXPECT_SAME_ID(IToastNotifier);
    EXPECT_SAME_ID(IToastNotificationManagerStatics);
#undef EXPECT_SAME_ID
}

TEST(PlatformLayout, Delegates_HaveTheIdOfThePlatformsHeaders)
{
    using Toast = Platform::ToastNotification;
    using ABI::Windows::Foundation::ITypedEventHandler;
    ExpectSameId<ToastAbi::IToastActivatedHandler, ITypedEventHandler<Toast*, IInspectable*>>("activated");
    ExpectSameId<ToastAbi::IToastDismissedHandler, ITypedEventHandler<Toast*, Platform::ToastDismissedEventArgs*>>(
        "dismissed");
    ExpectSameId<ToastAbi::IToastFailedHandler, ITypedEventHandler<Toast*, Platform::ToastFailedEventArgs*>>("failed");
}
#else
TEST(PlatformLayout, EveryMember_HasTheSlotOfThePlatformsHeaders)
{
    GTEST_SKIP() << "The headers of this cross-compiler do not declare toasts (windows.ui.notifications.h).";
}
#endif
