// The functions that the compiler calls where -fsanitize=undefined finds a fault. mingw-w64 has no such library: this
// one says kind and place on standard error and to the debugger, and ends the process. It is itself built without
// checks.

#include <windows.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>

namespace
{

// Not used by any program of the project, so that a fault is not taken for a result.
constexpr UINT exitCodeOfFault = 99;

// The layouts below are those of the compilers' own interface; each record begins with its place.
struct SourceLocation
{
    const char* file;
    std::uint32_t line;
    std::uint32_t column;
};

struct TypeDescriptor
{
    std::uint16_t kind;
    std::uint16_t info;
    char name[1];
};

struct TypedFault
{
    SourceLocation location;
    const TypeDescriptor* pType;
};

struct TypeMismatch
{
    SourceLocation location;
    const TypeDescriptor* pType;
    std::uint8_t alignmentLog2;
    std::uint8_t use;
};

[[noreturn]] [[gnu::format(printf, 2, 3)]] void End(const SourceLocation& location, const char* pszFormat, ...) noexcept
{
    char kind[256];
    va_list arguments;
    va_start(arguments, pszFormat);
    std::vsnprintf(kind, sizeof kind, pszFormat, arguments);
    va_end(arguments);

    char text[1024];
    int length = std::snprintf(text, sizeof text, "undefined behaviour: %s at %s:%u:%u\n", kind,
                               location.file != nullptr ? location.file : "an unknown place",
                               static_cast<unsigned>(location.line), static_cast<unsigned>(location.column));
    length = length < static_cast<int>(sizeof text) ? length : static_cast<int>(sizeof text) - 1;

    DWORD dwWritten = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(length), &dwWritten, nullptr);
    OutputDebugStringA(text);
    TerminateProcess(GetCurrentProcess(), exitCodeOfFault);
    __builtin_trap();
}

[[noreturn]] void EndMismatch(const TypeMismatch& fault, std::uintptr_t address) noexcept
{
    const std::uintptr_t alignment = std::uintptr_t{1} << fault.alignmentLog2;
    const char* pszKind = "an object that is too small";
    if (address == 0)
        pszKind = "null pointer";
    else if ((address & (alignment - 1)) != 0)
        pszKind = "misaligned address";
    End(fault.location, "%s used as %s", pszKind, fault.pType->name);
}

} // namespace

// GCC declares these itself as built-in functions with other parameter types.
#pragma GCC diagnostic ignored "-Wbuiltin-declaration-mismatch"

// -fno-sanitize-recover makes the compiler call the _abort forms; those of what can never be continued have no such
// form.
#define ORVIK_TYPED_FAULT(handler, text, ...)                                                                          \
    extern "C"                                                                                                         \
        [[noreturn]] void __ubsan_handle_##handler(const TypedFault* pFault __VA_OPT__(, ) __VA_ARGS__) noexcept       \
    {                                                                                                                  \
        End(pFault->location, text " in %s", pFault->pType->name);                                                     \
    }
#define ORVIK_FAULT(handler, text)                                                                                     \
    extern "C" [[noreturn]] void __ubsan_handle_##handler(const SourceLocation* pLocation) noexcept                    \
    {                                                                                                                  \
        End(*pLocation, "%s", text);                                                                                   \
    }

ORVIK_TYPED_FAULT(add_overflow_abort, "overflow of +", void*, void*)
ORVIK_TYPED_FAULT(sub_overflow_abort, "overflow of -", void*, void*)
ORVIK_TYPED_FAULT(mul_overflow_abort, "overflow of *", void*, void*)
ORVIK_TYPED_FAULT(negate_overflow_abort, "overflow of negation", void*)
ORVIK_TYPED_FAULT(divrem_overflow_abort, "division by zero or its overflow", void*, void*)
ORVIK_TYPED_FAULT(shift_out_of_bounds_abort, "shift out of bounds", void*, void*)
ORVIK_TYPED_FAULT(out_of_bounds_abort, "index out of bounds", void*)
ORVIK_TYPED_FAULT(vla_bound_not_positive_abort, "array length that is not positive", void*)
ORVIK_TYPED_FAULT(load_invalid_value_abort, "value that the type does not have", void*)
ORVIK_FAULT(pointer_overflow_abort, "pointer outside its object")
ORVIK_FAULT(nonnull_arg_abort, "null as an argument that must not be null")
ORVIK_FAULT(invalid_builtin_abort, "zero given to a bit-counting builtin")
ORVIK_FAULT(builtin_unreachable, "unreachable code reached")
ORVIK_FAULT(missing_return, "end of a function without its return value")

extern "C" [[noreturn]] void __ubsan_handle_float_cast_overflow_abort(const TypedFault* pFault, void*) noexcept
{
    End(pFault->location, "floating-point value outside the range of the conversion from %s", pFault->pType->name);
}

extern "C" [[noreturn]] void __ubsan_handle_type_mismatch_v1_abort(const TypeMismatch* pFault,
                                                                   std::uintptr_t address) noexcept
{
    EndMismatch(*pFault, address);
}

extern "C" [[noreturn]] void __ubsan_handle_nonnull_return_v1_abort(void*, const SourceLocation* pLocation) noexcept
{
    End(*pLocation, "null returned where it must not be null");
}
