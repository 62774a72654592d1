#include "simulator/doubles/DoubleClasses.h"

#include "simulator/doubles/PlixInterfaces.h"
#include "tests/simulator/doubles/DoublesTest.h"

namespace Simulator
{
namespace
{
class DoubleClassesTest : public DoublesTest
{
};

TEST_F(DoubleClassesTest, ClassObject_IsAFactoryForEachClass)
{
    for (const DoubleClass& entry : DoubleClasses())
    {
        IClassFactory* factory = nullptr;
        ASSERT_EQ(GetDoubleClassObject(entry.m_classId, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
        IUnknown* object = nullptr;
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&object)), S_OK);
        EXPECT_EQ(LiveObjects::Count(entry.m_pszName), 1);
        EXPECT_EQ(LastDetails("com", "IClassFactory::CreateInstance").at("class"), entry.m_pszName);
        EXPECT_EQ(object->Release(), 0u);
        EXPECT_EQ(factory->LockServer(TRUE), S_OK);
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
        EXPECT_EQ(factory->Release(), 0u);
    }
}

TEST_F(DoubleClassesTest, ClassObject_IsNotAvailableForOthersOrWhenSwitchedOff)
{
    void* object = this;
    EXPECT_EQ(GetDoubleClassObject(CLSID_StdGlobalInterfaceTable, IID_IClassFactory, &object),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
    Facts::Instance().Set("/wmi/registered", false);
    EXPECT_EQ(GetDoubleClassObject(WbemLocatorClassId, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(GetDoubleClassObject(PlixCommandClassId, IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(GetDoubleClassObject(PlixCommandClassId, IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(DoubleClassesTest, RegistryEntries_AreTheInProcessClassesAndTheProgId)
{
    std::vector<std::wstring> lines;
    for (const RegistryEntry& entry : RegistryEntries(L"C:\\m.dll"))
        lines.push_back(entry.m_strKey + L"|" + entry.m_strName + L"|" + entry.m_strValue);
    const std::wstring classes = L"Software\\Classes\\";
    const auto server = [&](const wchar_t* id) { return classes + L"CLSID\\" + id + L"\\InprocServer32|"; };
    const std::wstring command = server(L"{CA490AE1-8C69-45D5-9533-D4692726F2FB}");
    const std::wstring notification = server(L"{7E5C21D4-90B6-4A1F-8C33-5B0ED76419A2}");
    const std::wstring locator = server(L"{4590F811-1D3A-11D0-891F-00AA004B2E24}");
    EXPECT_THAT(lines, testing::ElementsAre(command + L"|C:\\m.dll", command + L"ThreadingModel|Both",
                                            notification + L"|C:\\m.dll", notification + L"ThreadingModel|Both",
                                            classes + L"orvikplixutils.orvikPlixNotification\\CLSID||"
                                                      L"{7E5C21D4-90B6-4A1F-8C33-5B0ED76419A2}",
                                            locator + L"|C:\\m.dll", locator + L"ThreadingModel|Both"));
}

TEST_F(DoubleClassesTest, NotificationComponent_HasItsInterface)
{
    const IID id = {0x3ABCD024, 0x1E97, 0x48C4, {0xA7, 0xD4, 0xC1, 0x16, 0x94, 0x4A, 0x49, 0x67}};
    IUnknown* component = nullptr;
    ASSERT_EQ(
        FindDoubleClass(L"ORVIKPLIXUTILS.orvikplixnotification")->m_pfnMaker(id, reinterpret_cast<void**>(&component)),
        S_OK);
    component->Release();
    EXPECT_EQ(FindDoubleClass(L"orvikplixutils"), nullptr);
}
} // namespace
} // namespace Simulator
