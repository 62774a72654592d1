#include "platform/ComApartment.h"
#include "platform/XmlDocument.h"

#include <gtest/gtest.h>
#include <psapi.h>
#include <windows.h>

#include <cstdio>
#include <random>
#include <string>

namespace
{
class XmlDocumentHostileTest : public testing::Test
{
protected:
    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
    XmlDocument m_document;
};

SIZE_T PeakMemory()
{
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof(counters);
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PeakPagefileUsage;
}
} // namespace

TEST_F(XmlDocumentHostileTest, Load_TwentyMegabytes_AreRead)
{
    std::wstring text = L"<log>";
    while (text.size() < 10'000'000)
        text += L"<entry number=\"1\">an entry of the audit log</entry>";
    text += L"</log>";
    ASSERT_EQ(m_document.Load(_bstr_t(text.c_str())), S_OK);
    EXPECT_GE(SysStringLen(m_document.Text()), text.size());
}

// No parser sees this text and the next one: they prove that nothing before it expands or fetches either.
TEST_F(XmlDocumentHostileTest, Load_EntityBomb_DoesNotFillMemory)
{
    std::wstring text = L"<!DOCTYPE b [<!ENTITY e0 \"ha\">";
    for (int i = 1; i <= 40; ++i)
    {
        const std::wstring before = L"&e" + std::to_wstring(i - 1) + L";";
        text += L"<!ENTITY e" + std::to_wstring(i) + L" \"" + before + before + L"\">";
    }
    text += L"]><b>&e40;</b>";
    const SIZE_T before = PeakMemory();
    const DWORD start = GetTickCount();
    EXPECT_EQ(m_document.Load(_bstr_t(text.c_str())), E_FAIL);
    EXPECT_LT(GetTickCount() - start, 10'000u);
    EXPECT_LT(PeakMemory() - before, 200u * 1024 * 1024);
}

TEST_F(XmlDocumentHostileTest, Load_ExternalEntity_IsNotFetched)
{
    wchar_t folder[MAX_PATH];
    ASSERT_NE(GetTempPathW(MAX_PATH, folder), 0u);
    const std::wstring path = std::wstring(folder) + L"external.txt";
    FILE* file = _wfopen(path.c_str(), L"wb");
    ASSERT_NE(file, nullptr);
    std::fputs("stolen", file);
    std::fclose(file);

    const std::wstring text = L"<!DOCTYPE a [<!ENTITY x SYSTEM \"" + path + L"\">]><a>&x;</a>";
    EXPECT_EQ(m_document.Load(_bstr_t(text.c_str())), E_FAIL);
    EXPECT_EQ(SysStringLen(m_document.Text()), 0u);
    IXMLDOMElement* root = nullptr;
    EXPECT_EQ(m_document.GetDocument()->get_documentElement(&root), S_FALSE);
    EXPECT_EQ(root, nullptr);
    DeleteFileW(path.c_str());
}

TEST_F(XmlDocumentHostileTest, Load_DeepNesting_EndsWithAResult)
{
    std::wstring text;
    for (int i = 0; i < 100'000; ++i)
        text += L"<a>";
    const HRESULT hr = m_document.Load(_bstr_t(text.c_str()));
    EXPECT_EQ(hr, E_FAIL);
}

TEST_F(XmlDocumentHostileTest, Load_CharactersNotAllowedInXml_Fails)
{
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a>\xFFFF</a>")), E_FAIL);
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a>\x0008</a>")), E_FAIL);
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a>&#0;</a>")), E_FAIL);
}

TEST_F(XmlDocumentHostileTest, Load_MutatedText_AlwaysEndsAndNextTextIsRead)
{
    const std::wstring seed = L"<?xml version=\"1.0\"?><o><d a=\"1\">x &amp; y<!-- c --><![CDATA[z]]></d></o>";
    std::minstd_rand random(20240229);
    for (int round = 0; round < 2'000; ++round)
    {
        std::wstring text = seed;
        for (unsigned changes = random() % 4 + 1; changes != 0; --changes)
            text[random() % text.size()] =
                static_cast<wchar_t>(random() % 3 == 0 ? random() & 0xFFFF : random() % 96 + 32);
        const _bstr_t given(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())), false);
        const HRESULT hr = m_document.Load(given);
        ASSERT_TRUE(hr == S_OK || FAILED(hr));
        ASSERT_NE(m_document.GetDocument(), nullptr);
    }
    EXPECT_EQ(m_document.Load(_bstr_t(seed.c_str())), S_OK);
}
