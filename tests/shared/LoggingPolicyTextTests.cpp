#include "shared/LoggingPolicy.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/PolicyKey.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
using namespace Orvik::Shared;
using namespace TestSupport;

class LoggingPolicyText : public testing::Test
{
protected:
    [[nodiscard]] static std::wstring Read(std::size_t capacity = 64)
    {
        return LoggingPolicy().Text(L"Value", capacity);
    }

    PolicyKey m_product{LoggingKey};
};

class LoggingPolicyTextOfModule : public LoggingPolicyText
{
protected:
    LoggingPolicyTextOfModule() { m_product.Text(L"Value", L"product"); }

    PolicyKey m_module{LoggingModuleKey()};
};

TEST(LoggingPolicy, NoKeys_GiveNoText)
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, LoggingKey);
    EXPECT_EQ(LoggingPolicy().Text(L"Value", 64), L"");
}

TEST_F(LoggingPolicyText, ProductValue_IsRead)
{
    m_product.Text(L"Value", L"product");
    EXPECT_EQ(Read(), L"product");
}

TEST_F(LoggingPolicyText, MissingValue_GivesNoText)
{
    EXPECT_EQ(Read(), L"");
}

TEST_F(LoggingPolicyText, AnotherType_CountsAsAbsent)
{
    const auto bytes = BytesOf(std::wstring(L"text\0", 5));
    for (const DWORD type : {REG_NONE, REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_MULTI_SZ, REG_QWORD})
    {
        m_product.Raw(L"Value", type, bytes);
        EXPECT_EQ(Read(), L"") << type;
    }
}

TEST_F(LoggingPolicyText, NoTerminator_IsTolerated)
{
    m_product.Raw(L"Value", REG_SZ, BytesOf(L"text"));
    EXPECT_EQ(Read(), L"text");
}

TEST_F(LoggingPolicyText, TextAfterATerminator_IsIgnored)
{
    m_product.Raw(L"Value", REG_SZ, BytesOf(std::wstring_view(L"text\0junk", 9)));
    EXPECT_EQ(Read(), L"text");
}

TEST_F(LoggingPolicyText, OddLength_CountsAsAbsent)
{
    auto bytes = BytesOf(L"text");
    bytes.push_back('x');
    m_product.Raw(L"Value", REG_SZ, bytes);
    EXPECT_EQ(Read(), L"");
    m_product.Raw(L"Value", REG_SZ, std::span(bytes).first(1));
    EXPECT_EQ(Read(), L"");
}

TEST_F(LoggingPolicyText, NoData_CountsAsAbsent)
{
    m_product.Raw(L"Value", REG_SZ, {});
    EXPECT_EQ(Read(), L"");
}

TEST_F(LoggingPolicyText, DataThatFillsTheCapacity_IsRead)
{
    m_product.Text(L"Value", std::wstring(63, L'x'));
    EXPECT_EQ(Read(64), std::wstring(63, L'x'));
    m_product.Raw(L"Value", REG_SZ, BytesOf(std::wstring(64, L'x')));
    EXPECT_EQ(Read(64), std::wstring(64, L'x'));
}

TEST_F(LoggingPolicyText, DataBeyondTheCapacity_CountsAsAbsent)
{
    m_product.Text(L"Value", std::wstring(64, L'x'));
    EXPECT_EQ(Read(64), L"");
    m_product.Text(L"Value", std::wstring(100'000, L'x'));
    EXPECT_EQ(Read(64), L"");
}

TEST_F(LoggingPolicyTextOfModule, ModuleValue_Wins)
{
    m_module.Text(L"Value", L"module");
    EXPECT_EQ(Read(), L"module");
}

TEST_F(LoggingPolicyTextOfModule, ModuleWithoutValue_LeavesItToTheProduct)
{
    EXPECT_EQ(Read(), L"product");
}

TEST_F(LoggingPolicyTextOfModule, UnusableModuleValue_LeavesItToTheProduct)
{
    m_module.Number(L"Value", 1);
    EXPECT_EQ(Read(), L"product");
    m_module.Text(L"Value", L"");
    EXPECT_EQ(Read(), L"product");
    m_module.Text(L"Value", std::wstring(64, L'x'));
    EXPECT_EQ(Read(), L"product");
}

LSTATUS WINAPI RefusedQuery(HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE, LPDWORD)
{
    return ERROR_ACCESS_DENIED;
}

TEST_F(LoggingPolicyTextOfModule, RefusedQuery_CountsAsAbsent)
{
    const LoggingPolicy policy;
    const Simulator::Redirection<decltype(RegQueryValueExW)> redirection("RegQueryValueExW", &RefusedQuery);
    EXPECT_EQ(policy.Text(L"Value", 64), L"");
}
} // namespace
