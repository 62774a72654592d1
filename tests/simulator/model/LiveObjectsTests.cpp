#include "simulator/model/LiveObjects.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{
using Simulator::LiveObject;
using Simulator::LiveObjects;

TEST(LiveObjectsTest, Objects_CountWhileTheyLive)
{
    EXPECT_EQ(LiveObjects::Count(), 0);
    {
        const LiveObject a("A");
        const auto second = std::make_unique<LiveObject>("A");
        const LiveObject b("B");
        EXPECT_EQ(LiveObjects::Count("A"), 2);
        EXPECT_EQ(LiveObjects::Count("B"), 1);
        EXPECT_EQ(LiveObjects::Count("C"), 0);
        EXPECT_EQ(LiveObjects::Count(), 3);
        EXPECT_EQ(LiveObjects::All(), (std::map<std::string, long>{{"A", 2}, {"B", 1}}));
    }
    EXPECT_EQ(LiveObjects::Count(), 0);
    EXPECT_TRUE(LiveObjects::All().empty());
}

TEST(LiveObjectsTest, ObjectRemovedTwice_ShowsInTheCount)
{
    LiveObjects::Remove("A");
    EXPECT_EQ(LiveObjects::All(), (std::map<std::string, long>{{"A", -1}}));
    LiveObjects::Add("A");
}

TEST(LiveObjectsTest, ManyThreads_LoseNoCount)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back(
            []
            {
                for (int i = 0; i < 2000; ++i)
                    const LiveObject object("A");
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(LiveObjects::Count(), 0);
}
} // namespace
