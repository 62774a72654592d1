// One fault of each kind, chosen by name, at a line that names it: proof that the checks are in and tell the place.

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace
{

volatile int zero = 0;
volatile int one = 1;
volatile int largest = INT_MAX;
volatile int smallest = INT_MIN;

struct Named
{
    const char* pszName;
    int (*pfn)();
};

[[gnu::nonnull]] int FirstLetter(const char* pszText)
{
    return pszText[0];
}

// The warnings below are about what the faults are there for.
#pragma GCC diagnostic ignored "-Wreturn-type"
#pragma GCC diagnostic ignored "-Wnonnull"

int NoReturnValue() // fault: missing-return: end of a function
{
    if (one == 0)
        return 1;
}

const Named faults[] = {
    {"none", [] { return one + zero; }},
    {"addition", [] { return largest + one; }},                     // fault: addition: overflow of +
    {"subtraction", [] { return smallest - one; }},                 // fault: subtraction: overflow of -
    {"multiplication", [] { return largest * (one + 1); }},         // fault: multiplication: overflow of *
    {"negation", [] { return -smallest; }},                         // fault: negation: overflow of negation
    {"division", [] { return one / zero; }},                        // fault: division: division by zero
    {"shift", [] { return one << (31 + one); }},                    // fault: shift: shift out of bounds
    {"conversion", [] { return static_cast<int>(largest * 4.0); }}, // fault: conversion: floating-point value
    {"index",
     []
     {
         const int table[3] = {zero, one, zero};
         return table[one + 2]; // fault: index: index out of bounds
     }},
    {"null-pointer",
     []
     {
         const int* volatile pNumber = nullptr;
         return *pNumber; // fault: null-pointer: null pointer used
     }},
    {"misaligned",
     []
     {
         alignas(8) char bytes[16] = {};
         const auto* volatile pNumber = reinterpret_cast<const std::int32_t*>(bytes + one);
         return static_cast<int>(*pNumber); // fault: misaligned: misaligned address
     }},
    {"truth-value",
     []
     {
         bool bTruth = false;
         const unsigned char byte = 2;
         std::memcpy(&bTruth, &byte, 1);
         const volatile bool* const pTruth = &bTruth;
         return *pTruth ? 3 : 4; // fault: truth-value: value that the type does not have
     }},
    {"nonnull-argument",
     []
     {
         const char* volatile pszText = nullptr;
         return FirstLetter(pszText); // fault: nonnull-argument: null as an argument
     }},
    {"pointer-overflow",
     []
     {
         const char* volatile pLast = reinterpret_cast<const char*>(UINTPTR_MAX - 1);
         const char* const pOutside = pLast + one + one; // fault: pointer-overflow: pointer outside
         return pOutside == nullptr ? 1 : 0;
     }},
    {"bit-count", [] { return __builtin_clz(static_cast<unsigned>(zero)); }}, // fault: bit-count: zero given
    {"unreachable",
     []
     {
         if (one == 1)
             __builtin_unreachable(); // fault: unreachable: unreachable code
         return 0;
     }},
    {"missing-return", NoReturnValue},
};

} // namespace

int main(int argc, char** argv)
{
    for (const Named& fault : faults)
    {
        if (argc == 2 && std::strcmp(argv[1], fault.pszName) == 0)
        {
            std::printf("survived with %d\n", fault.pfn());
            return 0;
        }
    }
    std::printf("name one fault of this source\n");
    return 1;
}
