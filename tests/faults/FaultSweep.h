#pragma once

#include "simulator/model/CallPlan.h"

#include <windows.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// One failure of a sweep.
struct FaultStep
{
    HRESULT m_hr;               // what the failing call returned
    unsigned m_nCall;           // which call of the operation failed, 1 is the first
    Simulator::Repeat m_repeat; // whether only that one failed or every call from there on
    std::string m_strCall;      // its name
    nlohmann::json m_details;   // what it was given, as in the journal

    // For messages: "call 3, CoCreateInstance, fails once with 0x80004005".
    [[nodiscard]] std::string Description() const;
};

// Runs an operation again and again, making its platform calls number 1, 2, 3 ... fail in turn, first each one alone
// and then each with all that follow, until it runs clean. After each failing run and after the clean run behind it no
// interface of a double, no handle and no BSTR may be left over. Platform calls are those of the doubles and of the
// redirections that are in force; the allocation of BSTRs and VariantChangeType are added by the sweep.
class FaultSweep
{
public:
    // What is swept. Called with an empty log, on the thread of Run, and must not let an exception out.
    std::function<void()> m_operation;
    // After a failing run, before anything is cleaned up: result and log as promised for this failure.
    std::function<void(const FaultStep&)> m_checkFailure;
    // After each clean run in between: the operation worked, in full.
    std::function<void()> m_checkSuccess;
    // Gives back what the operation is meant to leave behind; may be empty. No call fails while it runs.
    std::function<void()> m_cleanUp = [] {};
    // The codes that the failing calls return.
    std::vector<HRESULT> m_lstCodes = {E_FAIL, static_cast<HRESULT>(0x80000003)};
    // Reports through EXPECT and ADD_FAILURE. Gives the names of the calls that were made to fail, in the order of the
    // operation, so that a test sees that the sweep reached what it meant to.
    std::vector<std::string> Run();

private:
    struct Balance;

    static Balance Settled(const Balance& expected);
    void RunClean(const std::string& description);
    // False when no call failed: the operation has fewer calls.
    bool RunFailing(FaultStep& step);
    // run gives its description. Nothing may be left over; what is left the first time only does not count.
    static void ExpectBalanced(const std::function<std::string()>& run);
};
