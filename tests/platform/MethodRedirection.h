#pragma once

#include "simulator/redirect/ImportTable.h"

#include <windows.h>

#include <unknwn.h>

#include <cstddef>
#include <cstring>

// Where a COM object's table of methods keeps the given one. The compiler writes a pointer to a virtual member function
// as the offset in the table plus one.
template <class Method>
std::size_t SlotOf(Method method)
{
    std::size_t offset = 0;
    std::memcpy(&offset, &method, sizeof(offset));
    return (offset - 1) / sizeof(void*);
}

// The method QueryInterface, whose name the headers give to a template as well.
inline constexpr HRESULT (STDMETHODCALLTYPE IUnknown::*QueryInterfaceMethod)(REFIID,
                                                                             void**) = &IUnknown::QueryInterface;

// Puts a function in the place of one method of all objects of the same class as the sample, for the life of this
// object: MethodRedirection r(document, &IXMLDOMDocument::put_async, &FailingPutAsync);
class MethodRedirection
{
public:
    template <class Interface, class Method, class Function>
    MethodRedirection(Interface* sample, Method method, Function* replacement)
        : m_ppSlot(*reinterpret_cast<void***>(sample) + SlotOf(method)), m_pBefore(*m_ppSlot)
    {
        Simulator::WriteImportSlot(m_ppSlot, reinterpret_cast<void*>(replacement));
    }
    MethodRedirection(const MethodRedirection&) = delete;
    MethodRedirection& operator=(const MethodRedirection&) = delete;
    ~MethodRedirection() { Simulator::WriteImportSlot(m_ppSlot, m_pBefore); }

    template <class Function>
    [[nodiscard]] Function* Original() const
    {
        return reinterpret_cast<Function*>(m_pBefore);
    }

private:
    void** m_ppSlot;
    void* m_pBefore;
};
