#pragma once

#include "bench/support/EventClock.h"
#include "simulator/redirect/ImportRedirection.h"
#include "simulator/redirect/ImportTable.h"

#include <windows.h>

#include <unknwn.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>

// Puts a watch into the place of the functions and methods by which the agent's code is left: it is made before the
// call and destroyed after it. What is put there stays for the life of the process.
namespace EventBench
{
struct InDoubles : Crossing
{
    InDoubles() : Crossing(Place::Doubles) {}
};

struct InWindows : Crossing
{
    InWindows() : Crossing(Place::Windows) {}
};

// A text that can be a template argument.
template <std::size_t size>
struct Name
{
    consteval Name(const char (&text)[size]) { std::copy_n(text, size, m_text); } // NOLINT(google-explicit-constructor)
    char m_text[size];
};

// The watch of a call: made of the call's arguments if it takes them.
template <class Watch, class... Args>
Watch WatchOf(const Args&... args)
{
    if constexpr (std::is_constructible_v<Watch, const Args&...>)
        return Watch(args...);
    else
        return Watch();
}

// The function that the program calls now under that name, imported or looked up in combase.dll. Raises
// std::runtime_error when it calls none.
inline void* CalledFunction(const char* name)
{
    const auto slots = Simulator::ImportSlots(GetModuleHandleW(nullptr), name);
    void* found = slots.empty() ? nullptr : *slots.front();
    if (found == nullptr)
        found = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"combase.dll"), name));
    if (found == nullptr)
        throw std::runtime_error(std::string("nothing calls ") + name);
    return found;
}

template <Name name, class Watch, class Function>
class FunctionCrossing;

template <Name name, class Watch, class Result, class... Args>
class FunctionCrossing<name, Watch, Result WINAPI(Args...)>
{
public:
    static void Install()
    {
        s_pfnBefore = reinterpret_cast<Result(WINAPI*)(Args...)>(CalledFunction(name.m_text));
        new Simulator::ImportRedirection(nullptr, name.m_text, reinterpret_cast<void*>(&Call));
    }

private:
    static Result WINAPI Call(Args... args)
    {
        [[maybe_unused]] const Watch watch = WatchOf<Watch>(args...);
        return s_pfnBefore(args...);
    }

    static inline Result(WINAPI* s_pfnBefore)(Args...) = nullptr;
};

// Where a COM object's table of methods keeps the given one. The compiler writes a pointer to a virtual member function
// as the offset in the table plus one.
template <class Method>
std::size_t SlotOf(Method method)
{
    std::size_t offset = 0;
    std::memcpy(&offset, &method, sizeof(offset));
    return (offset - 1) / sizeof(void*);
}

// table: a name of its own for each table of methods, of which there is one per class and interface.
template <Name table, class Watch, auto method>
class MethodCrossing;

template <Name table, class Watch, class Interface, class Result, class... Args,
          Result (STDMETHODCALLTYPE Interface::*method)(Args...)>
class MethodCrossing<table, Watch, method>
{
public:
    // sample: an interface of any object with that table.
    static void Install(void* sample)
    {
        void** const slot = *static_cast<void***>(sample) + SlotOf(method);
        if (s_pfnBefore != nullptr)
            throw std::logic_error(std::string("watched twice: ") + table.m_text);
        s_pfnBefore = reinterpret_cast<Function*>(*slot);
        Simulator::WriteImportSlot(slot, reinterpret_cast<void*>(&Call));
    }

private:
    using Function = Result STDMETHODCALLTYPE(Interface*, Args...);

    static Result STDMETHODCALLTYPE Call(Interface* object, Args... args)
    {
        [[maybe_unused]] const Watch watch = WatchOf<Watch>(args...);
        return s_pfnBefore(object, args...);
    }

    static inline Function* s_pfnBefore = nullptr;
};

// The method QueryInterface, whose name the headers give to a template as well.
inline constexpr HRESULT (STDMETHODCALLTYPE IUnknown::*QueryInterfaceMethod)(REFIID,
                                                                             void**) = &IUnknown::QueryInterface;

// These methods and the three of IUnknown.
template <Name table, class Watch, auto... methods>
void WatchMethods(void* sample)
{
    MethodCrossing<table, Watch, QueryInterfaceMethod>::Install(sample);
    MethodCrossing<table, Watch, &IUnknown::AddRef>::Install(sample);
    MethodCrossing<table, Watch, &IUnknown::Release>::Install(sample);
    (MethodCrossing<table, Watch, methods>::Install(sample), ...);
}

// Of the objects that the agent calls on its way from an event to the toast. Needs COM and the simulated machine.
void WatchObjects();
// Of the functions that it imports or looks up on that way. After everything else that redirects functions.
void WatchFunctions();
} // namespace EventBench
