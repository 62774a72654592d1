#pragma once

#include "shared/FunctionName.h"
#include "shared/Log.h"

#include <windows.h>

namespace Orvik::Shared
{
// The two trace records of one function: TraceIn when made, TraceOut when the function is left, with the result given
// to Exit. Also the function's way to write further records under its own name. Lives on the stack, belongs to one
// thread:
//     TraceScope trace(ORVIK_FUNCTION);
//     ...
//     return trace.Exit(hr);
class TraceScope
{
public:
    explicit TraceScope(const char* functionName) : TraceScope(functionName, L"") {}

    template <class... Args>
    TraceScope(const char* functionName, WideFormat<std::type_identity_t<Args>...> entry, Args... args)
        : m_pFunctionName(functionName)
    {
        Log(Level::TraceIn, functionName, entry, args...);
    }

    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;

    ~TraceScope()
    {
        if (IsLevelEnabled(Level::TraceOut)) [[unlikely]]
            LogExit();
    }

    // What the exit record shows: "hr: 0x%08X" for an HRESULT, the number for BOOL, bool and int, nothing without a
    // call.
    HRESULT Exit(HRESULT hr) noexcept
    {
        m_resultKind = ResultKind::Hresult;
        m_nResult = hr;
        return hr;
    }
    int Exit(int value) noexcept
    {
        m_resultKind = ResultKind::Number;
        m_nResult = value;
        return value;
    }
    bool Exit(bool value) noexcept
    {
        Exit(static_cast<int>(value));
        return value;
    }

    // Writes the exit record now, with this text instead of a result.
    template <class... Args>
    void ExitText(WideFormat<std::type_identity_t<Args>...> format, Args... args)
    {
        m_resultKind = ResultKind::Written;
        Log(Level::TraceOut, m_pFunctionName, format, args...);
    }

    [[nodiscard]] const char* FunctionName() const noexcept { return m_pFunctionName; }

    template <class... Args>
    void Verbose(WideFormat<std::type_identity_t<Args>...> format, Args... args) const
    {
        Log(Level::Verbose, m_pFunctionName, format, args...);
    }

    template <class... Args>
    void Information(WideFormat<std::type_identity_t<Args>...> format, Args... args) const
    {
        Log(Level::Information, m_pFunctionName, format, args...);
    }

    template <class... Args>
    void Warning(WideFormat<std::type_identity_t<Args>...> format, Args... args) const
    {
        Log(Level::Warning, m_pFunctionName, format, args...);
    }

    template <class... Args>
    void Error(WideFormat<std::type_identity_t<Args>...> format, Args... args) const
    {
        Log(Level::Error, m_pFunctionName, format, args...);
    }

private:
    enum class ResultKind
    {
        None,
        Number,
        Hresult,
        Written
    };

    void LogExit() const
    {
        if (m_resultKind == ResultKind::Hresult)
            Log(Level::TraceOut, m_pFunctionName, L"hr: 0x%08X", m_nResult);
        else if (m_resultKind == ResultKind::Number)
            Log(Level::TraceOut, m_pFunctionName, L"%d", m_nResult);
        else if (m_resultKind == ResultKind::None)
            Log(Level::TraceOut, m_pFunctionName, L"");
    }

    const char* m_pFunctionName;
    ResultKind m_resultKind = ResultKind::None;
    long m_nResult = 0;
};
} // namespace Orvik::Shared
