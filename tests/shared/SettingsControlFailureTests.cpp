#include "shared/SettingsControl.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace
{
using namespace TestSupport;
using Simulator::Redirection;

constexpr const wchar_t* g_name = L"SuppressVeritorLoggings";
constexpr const char* g_function = "CSettingsControl::GetRegistrySetting";

decltype(RegOpenKeyExW)* g_realOpen;
std::vector<REGSAM> g_accesses;
std::vector<std::size_t> g_linesBefore;
std::size_t g_refused;
LSTATUS g_refusal;

// The first g_refused opens give no key, the key itself being there. Notes how many lines were logged before each open.
LSTATUS WINAPI RefusingOpen(HKEY parent, LPCWSTR path, DWORD options, REGSAM access, PHKEY key)
{
    g_accesses.push_back(access);
    g_linesBefore.push_back(OperationalLines().size());
    if (g_accesses.size() > g_refused)
        return g_realOpen(parent, path, options, access, key);
    *key = nullptr;
    return g_refusal;
}

class RefusedPolicyKeys : public testing::Test
{
protected:
    RefusedPolicyKeys()
    {
        for (std::size_t i = 0; i < 4; ++i)
            m_keys[i].emplace(SuppressKeys[i]).Text(g_name, L"true");
        // The logger reads its own policy with its first record: before the calls are counted.
        CSettingsControl::GetRegistrySetting(g_name);
        ClearLog();
        g_accesses.clear();
        g_linesBefore.clear();
        g_refusal = ERROR_ACCESS_DENIED;
        m_open.emplace("RegOpenKeyExW", &RefusingOpen);
        g_realOpen = m_open->Original();
    }

    std::optional<PolicyKey> m_keys[4];
    std::optional<Redirection<decltype(RegOpenKeyExW)>> m_open;
};

TEST_F(RefusedPolicyKeys, RefusedLocation_CountsAsMissing)
{
    for (g_refused = 0; g_refused < 4; ++g_refused)
    {
        g_accesses.clear();
        EXPECT_TRUE(CSettingsControl::GetRegistrySetting(g_name));
        EXPECT_EQ(g_accesses.size(), g_refused + 1);
    }
}

TEST_F(RefusedPolicyKeys, SuccessWithoutAKey_CountsAsMissing)
{
    g_refusal = ERROR_SUCCESS;
    g_refused = 3;
    EXPECT_TRUE(CSettingsControl::GetRegistrySetting(g_name));
    EXPECT_TRUE(NotLogged(Orvik::Shared::Level::Verbose, g_function, L"Found in Orvik, native location"));
    EXPECT_TRUE(Logged(Orvik::Shared::Level::Verbose, g_function, L"Found in WOW, Brannock-Vale location."));
    g_accesses.clear();
    g_refused = 4;
    EXPECT_FALSE(CSettingsControl::GetRegistrySetting(g_name));
}

TEST_F(RefusedPolicyKeys, TryLine_IsLoggedBeforeItsKeyIsOpened)
{
    g_refused = 4;
    CSettingsControl::GetRegistrySetting(g_name);
    EXPECT_EQ(g_linesBefore, (std::vector<std::size_t>{0, 1, 1, 2}));
}

TEST_F(RefusedPolicyKeys, AllRefused_IsOff)
{
    g_refused = 4;
    EXPECT_FALSE(CSettingsControl::GetRegistrySetting(g_name));
    EXPECT_EQ(OperationalLines(),
              (std::vector<std::wstring>{L"Verbose|CSettingsControl::GetRegistrySetting|Try Orvik WOW",
                                         L"Verbose|CSettingsControl::GetRegistrySetting|Try wow"}));
}

TEST_F(RefusedPolicyKeys, Keys_AreOpenedToQueryOnly)
{
    g_refused = 4;
    CSettingsControl::GetRegistrySetting(g_name);
    EXPECT_EQ(g_accesses, std::vector<REGSAM>(4, KEY_QUERY_VALUE));
}

LSTATUS WINAPI RefusedQuery(HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE, LPDWORD)
{
    return ERROR_ACCESS_DENIED;
}

TEST(SettingsControl, RefusedQuery_IsOffAndClosesTheKey)
{
    PolicyKey key(SuppressKeys[0]);
    key.Text(g_name, L"true");
    EXPECT_TRUE(CSettingsControl::GetRegistrySetting(g_name));
    const Redirection<decltype(RegQueryValueExW)> redirection("RegQueryValueExW", &RefusedQuery);
    const unsigned before = OpenHandleCount();
    for (int i = 0; i < 20; ++i)
        EXPECT_FALSE(CSettingsControl::GetRegistrySetting(g_name));
    EXPECT_EQ(OpenHandleCount(), before);
}

TEST(SettingsControl, EveryOutcome_LeavesNoHandle)
{
    std::optional<PolicyKey> key;
    const auto ask = []
    {
        for (int i = 0; i < 20; ++i)
            CSettingsControl::GetRegistrySetting(g_name);
    };
    ask();
    const unsigned before = OpenHandleCount();
    ask();
    EXPECT_EQ(OpenHandleCount(), before);
    key.emplace(SuppressKeys[3]);
    const unsigned withKey = OpenHandleCount();
    ask();
    key->Text(g_name, L"true");
    ask();
    key->Number(g_name, 1);
    ask();
    EXPECT_EQ(OpenHandleCount(), withKey);
}

struct Answers
{
    std::atomic<unsigned> m_nOn{0};
    std::atomic<unsigned> m_nAll{0};
};

// Four threads that ask all the time while the policy goes on and off, from when each has asked once.
void AskWhileItChanges(PolicyKey& key, Answers& answers)
{
    constexpr int count = 4;
    key.Text(g_name, L"true");
    std::atomic<int> ready{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    const auto ask = [&answers]
    {
        answers.m_nOn += CSettingsControl::GetRegistrySetting(g_name) ? 1u : 0u;
        ++answers.m_nAll;
    };
    for (int i = 0; i < count; ++i)
    {
        threads.emplace_back(
            [&]
            {
                ask();
                ++ready;
                while (!stop)
                    ask();
            });
    }
    while (ready != count)
        std::this_thread::yield();
    for (int i = 0; i < 200; ++i)
        key.Text(g_name, i % 2 != 0 ? L"true" : L"a rather long text that means off");
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
}

TEST(SettingsControl, ManyThreadsWhileThePolicyChanges_GetOneOfTheTwoAnswers)
{
    PolicyKey key(SuppressKeys[0]);
    Answers warmUp;
    AskWhileItChanges(key, warmUp);
    ClearLog();
    const unsigned handles = OpenHandleCount();
    Answers answers;
    AskWhileItChanges(key, answers);
    // The system makes a lock's event when threads first meet there; keys left open would be hundreds.
    EXPECT_LT(OpenHandleCount(), handles + 8);
    EXPECT_GE(answers.m_nOn, 4u) << "the first answer of each thread";
    EXPECT_EQ(LogCount(Orvik::Shared::Level::Verbose, g_function, L"Found in Orvik, native location"), answers.m_nAll);
    EXPECT_EQ(LogRecords().size(), answers.m_nAll);
    EXPECT_TRUE(CSettingsControl::GetRegistrySetting(g_name));
}
} // namespace
