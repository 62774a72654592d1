#pragma once

#include "shared/LogData.h"
#include "shared/LoggingPolicy.h"
#include "tests/support/PolicyKey.h"

#include <functional>
#include <memory>
#include <utility>

// A listener whose range comes from policy like that of every other, and whose Write is the test's.
class ListenerDouble final : public Orvik::Shared::COrvikLogListener
{
public:
    using Writing = std::function<void(const LogData&)>;

    ListenerDouble(const Orvik::Shared::LoggingPolicy& policy, unsigned kind, Writing write)
        : COrvikLogListener(Orvik::Shared::Level::Error, policy), m_nKind(kind), m_write(std::move(write))
    {
    }

    // With the range that the two level names give.
    static std::unique_ptr<ListenerDouble> Make(const wchar_t* minimum, const wchar_t* maximum, Writing write,
                                                unsigned kind = Orvik::Shared::ListenerKind::Debug)
    {
        TestSupport::PolicyKey key(TestSupport::LoggingKey);
        key.Text(L"MinLogLevel", minimum).Text(L"MaxLogLevel", maximum);
        return std::make_unique<ListenerDouble>(Orvik::Shared::LoggingPolicy(), kind, std::move(write));
    }

    void Write(const LogData& data) override { m_write(data); }
    [[nodiscard]] unsigned GetType() const override { return m_nKind; }

private:
    unsigned m_nKind;
    Writing m_write;
};
