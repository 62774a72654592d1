#include "notifications/ToastAbi.h"
#include "simulator/toasts/ToastInterfaces.h"
#include "tests/simulator/toasts/AbiSlots.h"

#include <gtest/gtest.h>

// The agent's declarations of the toast interfaces against the machine's, which come from another source.
namespace
{
const SlotRow g_members[] = {
#define MEMBER(interface, member)                                                                                      \
    {#interface, #member, SlotOf(&ToastAbi::interface::member), SlotOf(&Simulator::Abi::interface::member)},
#include "tests/simulator/toasts/AbiMembers.inc"
#undef MEMBER
};

struct IdRow
{
    const wchar_t* m_pId;
    const IID& m_agent;
    const IID& m_machine;
};

#define INTERFACE_ID(id, interface) {id, __uuidof(ToastAbi::interface), __uuidof(Simulator::Abi::interface)}
const IdRow g_ids[] = {
    INTERFACE_ID(L"{1C741D59-2122-47D5-A856-83F3D4214875}", IXmlNode),
    INTERFACE_ID(L"{8C60AD77-83A4-4EC1-9C54-7BA429E13DA6}", IXmlNodeList),
    INTERFACE_ID(L"{B3A69EB0-AAB0-4B82-A6FA-B1453F7C021B}", IXmlNamedNodeMap),
    INTERFACE_ID(L"{F931A4CB-308D-4760-A1D5-43B67450AC7E}", IXmlText),
    INTERFACE_ID(L"{F7F3A506-1E87-42D6-BCFB-B8C809FA5494}", IXmlDocument),
    INTERFACE_ID(L"{3F89D935-D9CB-4538-A0F0-FFE7659938F8}", IToastDismissedEventArgs),
    INTERFACE_ID(L"{35176862-CFD4-44F8-AD64-F500FD896C3B}", IToastFailedEventArgs),
    INTERFACE_ID(L"{AB54DE2D-97D9-5528-B6AD-105AFE156530}", IToastActivatedHandler),
    INTERFACE_ID(L"{61C2402F-0ED0-5A18-AB69-59F4AA99A368}", IToastDismissedHandler),
    INTERFACE_ID(L"{95E3E803-C969-5E3A-9753-EA2AD22A9A33}", IToastFailedHandler),
    INTERFACE_ID(L"{997E2675-059E-4E60-8B06-1760917C8B80}", IToastNotification),
    INTERFACE_ID(L"{04124B20-82C6-4229-B109-FD9ED4662B53}", IToastNotificationFactory),
    INTERFACE_ID(L"{75927B93-03F3-41EC-91D3-6E5BAC1B38E7}", IToastNotifier),
    INTERFACE_ID(L"{50AC103F-D235-4598-BBEF-98FE4D1A3AD4}", IToastNotificationManagerStatics),
};
#undef INTERFACE_ID

constexpr std::size_t g_slotsOfInspectable = 6;
constexpr std::size_t g_slotsOfUnknown = 3;
} // namespace

TEST(AbiLayout, EveryMember_HasItsSlotOnBothSides)
{
    std::string interfaceName;
    std::size_t expected = 0;
    for (const SlotRow& row : g_members)
    {
        expected = interfaceName == row.m_pInterface ? expected + 1 : g_slotsOfInspectable;
        interfaceName = row.m_pInterface;
        EXPECT_EQ(row.m_nFirst, expected) << row << " of the agent";
        EXPECT_EQ(row.m_nSecond, expected) << row << " of the machine";
    }
}

TEST(AbiLayout, Delegates_InvokeFollowsUnknown)
{
    EXPECT_EQ(SlotOf(&ToastAbi::IToastActivatedHandler::Invoke), g_slotsOfUnknown);
    EXPECT_EQ(SlotOf(&ToastAbi::IToastDismissedHandler::Invoke), g_slotsOfUnknown);
    EXPECT_EQ(SlotOf(&ToastAbi::IToastFailedHandler::Invoke), g_slotsOfUnknown);
    EXPECT_EQ(SlotOf(&Simulator::Abi::IToastActivatedHandler::Invoke), g_slotsOfUnknown);
    EXPECT_EQ(SlotOf(&Simulator::Abi::IToastDismissedHandler::Invoke), g_slotsOfUnknown);
    EXPECT_EQ(SlotOf(&Simulator::Abi::IToastFailedHandler::Invoke), g_slotsOfUnknown);
}

TEST(AbiLayout, EveryInterface_HasItsIdOnBothSides)
{
    for (const IdRow& row : g_ids)
    {
        IID expected{};
        ASSERT_EQ(IIDFromString(row.m_pId, &expected), S_OK);
        EXPECT_TRUE(row.m_agent == expected) << row.m_pId << " of the agent";
        EXPECT_TRUE(row.m_machine == expected) << row.m_pId << " of the machine";
    }
}
