#pragma once

#include <cstddef>
#include <cstring>
#include <ostream>
#include <string>

// The place of a virtual member function in its interface's table, counted from 0. In the C++ ABI of the compiler a
// pointer to a virtual member function holds the slot's offset in bytes, plus one.
template <class Member>
[[nodiscard]] std::size_t SlotOf(Member member)
{
    std::ptrdiff_t words[2] = {};
    static_assert(sizeof(member) == sizeof(words));
    std::memcpy(words, &member, sizeof(words));
    return static_cast<std::size_t>(words[0] - 1) / sizeof(void*);
}

struct SlotRow
{
    const char* m_pInterface;
    const char* m_pMember;
    std::size_t m_nFirst;
    std::size_t m_nSecond;
};

inline std::ostream& operator<<(std::ostream& out, const SlotRow& row)
{
    return out << row.m_pInterface << "::" << row.m_pMember;
}
