#include "tests/support/BstrLedger.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <comutil.h>
#include <msxml2.h>
#include <objbase.h>
#include <oleauto.h>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

void Free(BSTR text)
{
    SysFreeString(text); // NOCHECK(raw-release): the call that the ledger watches
}

void Clear(VARIANT* value)
{
    VariantClear(value); // NOCHECK(raw-release): the call that the ledger watches
}
using TestSupport::BstrLedger;

TEST(BstrLedger, EachWayToAllocate_Counts)
{
    const BstrLedger ledger;
    BSTR texts[] = {SysAllocString(L"a"), SysAllocStringLen(L"bcd", 1), SysAllocStringByteLen("ef", 2), nullptr,
                    nullptr};
    EXPECT_TRUE(SysReAllocString(&texts[3], L"d"));
    EXPECT_TRUE(SysReAllocStringLen(&texts[4], L"e", 1));
    EXPECT_EQ(ledger.Live(), 5u);
    EXPECT_EQ(ledger.Allocations(), 5u);
    for (const BSTR text : texts)
        Free(text);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
    EXPECT_EQ(ledger.Allocations(), 5u);
}

TEST(BstrLedger, ForgottenText_IsNamed)
{
    const BstrLedger ledger;
    const BSTR forgotten = SysAllocString(L"forgotten");
    Free(SysAllocString(L"freed"));
    EXPECT_THAT(ledger.LiveTexts(), ElementsAre(L"forgotten"));
    Free(forgotten);
}

TEST(BstrLedger, NullAndFailedAllocations_DoNotCount)
{
    const BstrLedger ledger;
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    Free(nullptr);
    EXPECT_EQ(ledger.Allocations(), 0u);
}

TEST(BstrLedger, Reallocation_KeepsOne)
{
    const BstrLedger ledger;
    BSTR text = SysAllocString(L"a");
    SysReAllocString(&text, L"a text that is much longer than the first one and needs another place");
    EXPECT_EQ(ledger.Live(), 1u);
    Free(text);
    EXPECT_EQ(ledger.Live(), 0u);
}

TEST(BstrLedger, TextFromBefore_MayBeFreed)
{
    const BSTR before = SysAllocString(L"before");
    const BstrLedger ledger;
    Free(before);
    EXPECT_EQ(ledger.Live(), 0u);
}

TEST(BstrLedger, SupportClasses_AreCounted)
{
    const BstrLedger ledger;
    {
        const _bstr_t text(L"text");
        const _variant_t variant(L"variant");
        const _variant_t copy(variant);
        EXPECT_EQ(ledger.Live(), 3u);
    }
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
}

TEST(BstrLedger, VariantFunctions_AreSeenToFree)
{
    const BstrLedger ledger;
    VARIANT a;
    V_VT(&a) = VT_BSTR;
    V_BSTR(&a) = SysAllocString(L"17");
    VARIANT b;
    VariantInit(&b);
    EXPECT_EQ(VariantCopy(&b, &a), S_OK);
    EXPECT_EQ(VariantCopy(&b, &a), S_OK);
    EXPECT_EQ(ledger.Live(), 2u);
    EXPECT_EQ(VariantChangeType(&b, &b, 0, VT_I4), S_OK);
    EXPECT_EQ(ledger.Live(), 1u);
    EXPECT_EQ(VariantChangeType(&b, &b, 0, VT_BSTR), S_OK);
    EXPECT_EQ(ledger.Live(), 2u);
    EXPECT_EQ(VariantCopyInd(&a, &b), S_OK);
    EXPECT_EQ(ledger.Live(), 2u);
    Clear(&a);
    Clear(&b);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
}

TEST(BstrLedger, TextsInsideArrays_AreSeenToBeFreed)
{
    const BstrLedger ledger;
    SAFEARRAY* texts = SafeArrayCreateVector(VT_BSTR, 0, 2);
    BSTR* data = nullptr;
    ASSERT_EQ(SafeArrayAccessData(texts, reinterpret_cast<void**>(&data)), S_OK);
    data[0] = SysAllocString(L"a");
    data[1] = SysAllocString(L"b");
    SafeArrayUnaccessData(texts);
    SAFEARRAY* variants = SafeArrayCreateVector(VT_VARIANT, 0, 1);
    VARIANT* variant = nullptr;
    ASSERT_EQ(SafeArrayAccessData(variants, reinterpret_cast<void**>(&variant)), S_OK);
    V_VT(variant) = VT_BSTR;
    V_BSTR(variant) = SysAllocString(L"c");
    SafeArrayUnaccessData(variants);
    EXPECT_EQ(ledger.Live(), 3u);
    VARIANT owner;
    V_VT(&owner) = VT_ARRAY | VT_BSTR;
    V_ARRAY(&owner) = texts;
    Clear(&owner);
    SafeArrayDestroy(variants);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
}

TEST(BstrLedger, FurtherModule_CountsWhatItHandsOut)
{
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    {
        const BstrLedger ledger({L"msxml3.dll"});
        CLSID classId{};
        ASSERT_EQ(CLSIDFromProgID(L"Msxml2.DOMDocument.3.0", &classId), S_OK);
        IXMLDOMDocument* document = nullptr;
        ASSERT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument,
                                   reinterpret_cast<void**>(&document)),
                  S_OK);
        BSTR name = nullptr;
        EXPECT_EQ(document->get_nodeName(&name), S_OK);
        EXPECT_THAT(ledger.LiveTexts(), ElementsAre(L"#document"));
        Free(name);
        document->Release();
        EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
    }
    CoUninitialize();
}

TEST(BstrLedger, NextLedger_StartsEmpty)
{
    BSTR text = nullptr;
    {
        const BstrLedger ledger;
        text = SysAllocString(L"left over");
        EXPECT_EQ(ledger.Live(), 1u);
    }
    const BstrLedger ledger;
    EXPECT_EQ(ledger.Live(), 0u);
    Free(text);
}
} // namespace
