#include "tests/shared/ListenerDouble.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace
{
using namespace Orvik::Shared;
using namespace TestSupport;
using Range = std::pair<int, int>;

class OtherListener final : public COrvikLogListener
{
public:
    OtherListener(const LoggingPolicy& policy, LevelPolicy levelPolicy, const wchar_t* minLevelName)
        : COrvikLogListener(Level::Warning, policy, levelPolicy, minLevelName)
    {
    }
    void Write(const LogData&) override {}
    [[nodiscard]] unsigned GetType() const override { return ListenerKind::Debug; }
};

// The default minimum of the listener is Error.
class LevelRange : public testing::Test
{
protected:
    static Range Read()
    {
        const ListenerDouble listener(LoggingPolicy(), ListenerKind::Debug, [](const auto&) {});
        return {listener.MinLevel(), listener.MaxLevel()};
    }

    PolicyKey m_product{LoggingKey};
};

TEST_F(LevelRange, NoKeys_DefaultsHold)
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, LoggingKey);
    EXPECT_EQ(Read(), Range(5, 5));
}

TEST_F(LevelRange, NoValues_DefaultsHold)
{
    EXPECT_EQ(Read(), Range(5, 5));
}

TEST_F(LevelRange, MinimumInAnyCase_IsRead)
{
    for (const wchar_t* name : {L"verbose", L"VERBOSE", L"Verbose", L"vErBoSe"})
    {
        m_product.Text(L"MinLogLevel", name);
        EXPECT_EQ(Read(), Range(2, 5)) << name;
    }
}

TEST_F(LevelRange, EveryName_GivesItsNumber)
{
    for (int level = 0; level <= 6; ++level)
    {
        const std::wstring name(LevelName(level));
        m_product.Text(L"MinLogLevel", name).Text(L"MaxLogLevel", name);
        EXPECT_EQ(Read(), Range(level, level));
    }
}

TEST_F(LevelRange, NeverAndUnknownWords_Give99)
{
    for (const wchar_t* name : {L"Never", L"nonsense", L"2", L" Verbose"})
    {
        m_product.Text(L"MinLogLevel", name).Text(L"MaxLogLevel", name);
        EXPECT_EQ(Read(), Range(99, 99)) << name;
    }
}

TEST_F(LevelRange, EmptyValues_LeaveTheDefaults)
{
    m_product.Text(L"MinLogLevel", L"").Text(L"MaxLogLevel", L"");
    EXPECT_EQ(Read(), Range(5, 5));
}

TEST_F(LevelRange, AnotherType_CountsAsAbsent)
{
    m_product.Number(L"MinLogLevel", 0).Text(L"MaxLogLevel", L"Diag", REG_EXPAND_SZ);
    EXPECT_EQ(Read(), Range(5, 5));
}

TEST_F(LevelRange, DataOfUpTo256Bytes_IsRead)
{
    m_product.Text(L"MinLogLevel", std::wstring(127, L'x'));
    m_product.Raw(L"MaxLogLevel", REG_SZ, BytesOf(std::wstring(128, L'x')));
    EXPECT_EQ(Read(), Range(99, 99));
}

TEST_F(LevelRange, DataOver256Bytes_CountsAsAbsent)
{
    m_product.Text(L"MinLogLevel", std::wstring(128, L'x')).Text(L"MaxLogLevel", std::wstring(5000, L'x'));
    EXPECT_EQ(Read(), Range(5, 5));
}

TEST_F(LevelRange, OddLength_CountsAsAbsent)
{
    auto odd = BytesOf(L"Verbose");
    odd.push_back(0);
    m_product.Raw(L"MinLogLevel", REG_SZ, odd);
    EXPECT_EQ(Read(), Range(5, 5));
}

TEST_F(LevelRange, ModuleKey_WinsValueByValue)
{
    m_product.Text(L"MinLogLevel", L"TraceIn").Text(L"MaxLogLevel", L"Diag");
    PolicyKey module(LoggingModuleKey());
    module.Text(L"MinLogLevel", L"Verbose");
    EXPECT_EQ(Read(), Range(2, 6));
    module.Text(L"MaxLogLevel", L"Warning").Number(L"MinLogLevel", 3);
    EXPECT_EQ(Read(), Range(0, 4));
}

TEST_F(LevelRange, UnknownModuleWord_HidesTheProductValue)
{
    m_product.Text(L"MinLogLevel", L"TraceIn");
    PolicyKey module(LoggingModuleKey());
    module.Text(L"MinLogLevel", L"nonsense");
    EXPECT_EQ(Read(), Range(99, 5));
}

TEST_F(LevelRange, ListenerThatIgnoresPolicy_KeepsItsDefaults)
{
    m_product.Text(L"MinLogLevel", L"TraceIn").Text(L"MaxLogLevel", L"Diag");
    const OtherListener listener(LoggingPolicy(), LevelPolicy::Ignore, L"MinLogLevel");
    EXPECT_EQ(listener.MinLevel(), Level::Warning);
    EXPECT_EQ(listener.MaxLevel(), Level::Error);
}

TEST_F(LevelRange, AnotherValueName_GivesTheMinimum)
{
    m_product.Text(L"MinLogLevel", L"TraceIn").Text(L"Other", L"Information").Text(L"MaxLogLevel", L"Diag");
    const OtherListener listener(LoggingPolicy(), LevelPolicy::Read, L"Other");
    EXPECT_EQ(listener.MinLevel(), Level::Information);
    EXPECT_EQ(listener.MaxLevel(), Level::Diag);
}
} // namespace
