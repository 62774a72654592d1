#include "app/ProcessInstances.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using testing::ElementsAre;

namespace
{
std::vector<std::string> g_lstLife;

class Traced
{
public:
    explicit Traced(std::string name) : m_strName(std::move(name)) { g_lstLife.push_back("+" + m_strName); }
    Traced(const Traced&) = delete;
    Traced& operator=(const Traced&) = delete;
    ~Traced() { g_lstLife.push_back("-" + m_strName); }

    std::string m_strName;
};
} // namespace

// Left to the system at process end.
static_assert(std::is_trivially_destructible_v<ProcessInstance<Traced>>);

TEST(ProcessInstance, Create_DestroysTheOldObjectBeforeItMakesTheNew)
{
    g_lstLife.clear();
    ProcessInstance<Traced> instance;
    EXPECT_EQ(instance.Get(), nullptr);
    instance.Create("first");
    Traced& second = instance.Create("second");
    EXPECT_EQ(instance.Get(), &second);
    EXPECT_THAT(g_lstLife, ElementsAre("+first", "-first", "+second"));
    instance.Destroy();
    EXPECT_EQ(instance.Get(), nullptr);
    instance.Destroy();
    EXPECT_THAT(g_lstLife, ElementsAre("+first", "-first", "+second", "-second"));
}

TEST(ProcessInstance, Keep_HasTheGivenObjectInPlaceOfTheOld)
{
    ProcessInstance<Traced> instance;
    g_lstLife.clear();
    Traced& first = instance.Keep(std::make_unique<Traced>("first"));
    EXPECT_EQ(instance.Get(), &first);
    Traced& second = instance.Keep(std::make_unique<Traced>("second"));
    EXPECT_EQ(instance.Get(), &second);
    EXPECT_THAT(g_lstLife, ElementsAre("+first", "+second", "-first"));
    instance.Destroy();
    EXPECT_THAT(g_lstLife, ElementsAre("+first", "+second", "-first", "-second"));
}

TEST(ProcessInstance, EndOfScope_LeavesTheObject)
{
    g_lstLife.clear();
    Traced* left = nullptr;
    {
        ProcessInstance<Traced> instance;
        left = &instance.Create("left");
    }
    EXPECT_THAT(g_lstLife, ElementsAre("+left"));
    delete left;
}

TEST(ProcessInstances, Hub_CanBeReplaced)
{
    auto& first = g_pWmiHandler.Create();
    EXPECT_EQ(g_pWmiHandler.Get(), &first);
    g_pWmiHandler.Create();
    EXPECT_NE(g_pWmiHandler.Get(), nullptr);
    g_pWmiHandler.Destroy();
    EXPECT_EQ(g_pWmiHandler.Get(), nullptr);
}
