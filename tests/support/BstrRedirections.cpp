#include "tests/support/BstrRedirections.h"

#include "tests/support/AllocationFault.h"

namespace TestSupport
{
namespace
{
template <class Function>
Function* Real(const char* name)
{
    static const HMODULE module = LoadLibraryW(L"oleaut32.dll");
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

struct RealFunctions
{
    decltype(SysAllocString)* m_pfnAlloc = Real<decltype(SysAllocString)>("SysAllocString");
    decltype(SysAllocStringLen)* m_pfnAllocLen = Real<decltype(SysAllocStringLen)>("SysAllocStringLen");
    decltype(SysAllocStringByteLen)* m_pfnAllocByteLen = Real<decltype(SysAllocStringByteLen)>("SysAllocStringByteLen");
    decltype(SysReAllocString)* m_pfnReAlloc = Real<decltype(SysReAllocString)>("SysReAllocString");
    decltype(SysReAllocStringLen)* m_pfnReAllocLen = Real<decltype(SysReAllocStringLen)>("SysReAllocStringLen");
    decltype(SysFreeString)* m_pfnFree = Real<decltype(SysFreeString)>("SysFreeString");
    decltype(VariantClear)* m_pfnClear = Real<decltype(VariantClear)>("VariantClear");
    decltype(VariantCopy)* m_pfnCopy = Real<decltype(VariantCopy)>("VariantCopy");
    decltype(VariantCopyInd)* m_pfnCopyInd = Real<decltype(VariantCopyInd)>("VariantCopyInd");
    decltype(VariantChangeType)* m_pfnChangeType = Real<decltype(VariantChangeType)>("VariantChangeType");
    decltype(SafeArrayDestroy)* m_pfnDestroy = Real<decltype(SafeArrayDestroy)>("SafeArrayDestroy");
};

const RealFunctions& RealOnes()
{
    static const RealFunctions functions;
    return functions;
}

BSTR Enter(BSTR text)
{
    const AllocationFault::Pause pause;
    BstrAccount& account = BstrAccount::Instance();
    const std::lock_guard lock(account.m_lock);
    if (text != nullptr && account.m_setLive.insert(text).second)
        ++account.m_nAllocations;
    return text;
}

void Strike(BSTR text)
{
    BstrAccount& account = BstrAccount::Instance();
    const std::lock_guard lock(account.m_lock);
    account.m_setLive.erase(text);
}

void StrikeContents(const VARIANT& value);

void StrikeContents(SAFEARRAY* array)
{
    if (array == nullptr || (array->fFeatures & (FADF_BSTR | FADF_VARIANT)) == 0)
        return;
    ULONG count = array->cDims != 0 ? 1 : 0;
    for (USHORT i = 0; i < array->cDims; ++i)
        count *= array->rgsabound[i].cElements;
    for (ULONG i = 0; i < count; ++i)
    {
        if ((array->fFeatures & FADF_BSTR) != 0)
            Strike(static_cast<BSTR*>(array->pvData)[i]);
        else
            StrikeContents(static_cast<VARIANT*>(array->pvData)[i]);
    }
}

// What the automation library frees without calling a redirected function.
void StrikeContents(const VARIANT& value)
{
    if (V_VT(&value) == VT_BSTR)
        Strike(V_BSTR(&value));
    else if ((V_VT(&value) & VT_ARRAY) != 0 && (V_VT(&value) & VT_BYREF) == 0)
        StrikeContents(V_ARRAY(&value));
}

BSTR WINAPI CountedAlloc(const OLECHAR* text)
{
    return Enter(RealOnes().m_pfnAlloc(text));
}

BSTR WINAPI CountedAllocLen(const OLECHAR* text, UINT length)
{
    return Enter(RealOnes().m_pfnAllocLen(text, length));
}

BSTR WINAPI CountedAllocByteLen(LPCSTR text, UINT length)
{
    return Enter(RealOnes().m_pfnAllocByteLen(text, length));
}

INT WINAPI CountedReAlloc(BSTR* text, const OLECHAR* source)
{
    const BSTR before = *text;
    const INT result = RealOnes().m_pfnReAlloc(text, source);
    if (*text != before)
        Strike(before);
    Enter(*text);
    return result;
}

INT WINAPI CountedReAllocLen(BSTR* text, const OLECHAR* source, UINT length)
{
    const BSTR before = *text;
    const INT result = RealOnes().m_pfnReAllocLen(text, source, length);
    if (*text != before)
        Strike(before);
    Enter(*text);
    return result;
}

void WINAPI CountedFree(BSTR text)
{
    Strike(text);
    RealOnes().m_pfnFree(text);
}

HRESULT WINAPI CountedClear(VARIANTARG* value)
{
    StrikeContents(*value);
    return RealOnes().m_pfnClear(value);
}

// Before and after a function that replaces the contents of target and may read them for it.
template <class Call>
HRESULT CountReplacement(VARIANTARG* target, Call call)
{
    const BSTR before = V_VT(target) == VT_BSTR ? V_BSTR(target) : nullptr;
    const HRESULT hr = call();
    const BSTR after = V_VT(target) == VT_BSTR ? V_BSTR(target) : nullptr;
    if (after != before)
    {
        Strike(before);
        Enter(after);
    }
    return hr;
}

HRESULT WINAPI CountedCopy(VARIANTARG* target, VARIANTARG* source)
{
    return CountReplacement(target, [=] { return RealOnes().m_pfnCopy(target, source); });
}

HRESULT WINAPI CountedCopyInd(VARIANT* target, VARIANTARG* source)
{
    return CountReplacement(target, [=] { return RealOnes().m_pfnCopyInd(target, source); });
}

HRESULT WINAPI CountedChangeType(VARIANTARG* target, VARIANTARG* source, USHORT flags, VARTYPE type)
{
    return CountReplacement(target, [=] { return RealOnes().m_pfnChangeType(target, source, flags, type); });
}

HRESULT WINAPI CountedDestroy(SAFEARRAY* array)
{
    StrikeContents(array);
    return RealOnes().m_pfnDestroy(array);
}

template <class Function>
void* Address(Function* function)
{
    return reinterpret_cast<void*>(function);
}
} // namespace

BstrAccount& BstrAccount::Instance()
{
    // Never freed: threads free texts until the process is gone.
    static BstrAccount& account = *new BstrAccount;
    return account;
}

void BstrAccount::Clear()
{
    const std::lock_guard lock(m_lock);
    m_setLive.clear();
    m_nAllocations = 0;
}

std::span<const BstrRedirection> BstrRedirections()
{
    static const BstrRedirection redirections[] = {
        {"SysAllocString", Address(&CountedAlloc)},
        {"SysAllocStringLen", Address(&CountedAllocLen)},
        {"SysAllocStringByteLen", Address(&CountedAllocByteLen)},
        {"SysReAllocString", Address(&CountedReAlloc)},
        {"SysReAllocStringLen", Address(&CountedReAllocLen)},
        {"SysFreeString", Address(&CountedFree)},
        {"VariantClear", Address(&CountedClear)},
        {"VariantCopy", Address(&CountedCopy)},
        {"VariantCopyInd", Address(&CountedCopyInd)},
        {"VariantChangeType", Address(&CountedChangeType)},
        {"SafeArrayDestroy", Address(&CountedDestroy)},
    };
    RealOnes();
    return redirections;
}
} // namespace TestSupport
