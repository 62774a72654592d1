#include "platform/ComError.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
constexpr IID g_anInterface = {0x12345678, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};

// An object on the stack that says for which interface it keeps error information.
class ErrorSource final : public ISupportErrorInfo
{
public:
    ErrorSource(bool offers, bool supports) : m_bOffers(offers), m_bSupports(supports) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        *object = nullptr;
        if (!IsEqualIID(iid, __uuidof(ISupportErrorInfo)) || !m_bOffers)
            return E_NOINTERFACE;
        *object = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_nReferences; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_nReferences; }
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override
    {
        return m_bSupports && IsEqualIID(iid, g_anInterface) ? S_OK : S_FALSE;
    }

    [[nodiscard]] ULONG References() const noexcept { return m_nReferences; }

private:
    bool m_bOffers;
    bool m_bSupports;
    ULONG m_nReferences = 0;
};

void LeaveErrorInformation(const wchar_t* description)
{
    ICreateErrorInfo* create = nullptr;
    ASSERT_EQ(CreateErrorInfo(&create), S_OK);
    std::wstring text = description;
    create->SetDescription(text.data());
    IErrorInfo* info = nullptr;
    ASSERT_EQ(create->QueryInterface(__uuidof(IErrorInfo), reinterpret_cast<void**>(&info)), S_OK);
    SetErrorInfo(0, info);
    info->Release();
    create->Release();
}

_com_error Raised(HRESULT hr, IUnknown* object)
{
    try
    {
        _com_issue_errorex(hr, object, g_anInterface);
    }
    catch (const _com_error& error)
    {
        return error;
    }
    ADD_FAILURE() << "nothing was raised";
    return _com_error(S_OK);
}

bool IsErrorInformationLeft()
{
    IErrorInfo* info = nullptr;
    const bool isLeft = GetErrorInfo(0, &info) == S_OK;
    if (info != nullptr)
        info->Release();
    return isLeft;
}

bool HasDescription(const _com_error& error)
{
    return error.Description().length() != 0;
}
} // namespace

TEST(ComError, Issue_NoObject_RaisesCodeAlone)
{
    LeaveErrorInformation(L"of someone else");
    const _com_error error = Raised(E_FAIL, nullptr);
    EXPECT_EQ(error.Error(), E_FAIL);
    EXPECT_FALSE(HasDescription(error));
    EXPECT_TRUE(IsErrorInformationLeft());
}

TEST(ComError, Issue_ObjectWithoutErrorInformation_RaisesCodeAlone)
{
    LeaveErrorInformation(L"of someone else");
    ErrorSource source(false, true);
    const _com_error error = Raised(E_FAIL, &source);
    EXPECT_EQ(error.Error(), E_FAIL);
    EXPECT_FALSE(HasDescription(error));
    EXPECT_TRUE(IsErrorInformationLeft());
}

TEST(ComError, Issue_ObjectDoesNotSpeakForInterface_RaisesCodeAlone)
{
    LeaveErrorInformation(L"of another interface");
    ErrorSource source(true, false);
    EXPECT_FALSE(HasDescription(Raised(E_FAIL, &source)));
    EXPECT_EQ(source.References(), 0u);
    EXPECT_TRUE(IsErrorInformationLeft());
}

TEST(ComError, Issue_ObjectSpeaksForInterface_TakesItsErrorInformation)
{
    LeaveErrorInformation(L"the adapter is gone");
    ErrorSource source(true, true);
    const _com_error error = Raised(static_cast<HRESULT>(0x80000003), &source);
    EXPECT_EQ(error.Error(), static_cast<HRESULT>(0x80000003));
    EXPECT_STREQ(error.Description(), L"the adapter is gone");
    EXPECT_EQ(source.References(), 0u);
    EXPECT_FALSE(IsErrorInformationLeft());
}

TEST(ComError, Issue_ObjectLeftNoErrorInformation_RaisesCodeAlone)
{
    SetErrorInfo(0, nullptr);
    ErrorSource source(true, true);
    EXPECT_FALSE(HasDescription(Raised(E_FAIL, &source)));
}

TEST(ComError, Issue_ErrorInformation_IsOwnedByTheError)
{
    LeaveErrorInformation(L"counted");
    ErrorSource source(true, true);
    IErrorInfo* info = nullptr;
    {
        const _com_error error = Raised(E_FAIL, &source);
        info = error.ErrorInfo();
        ASSERT_NE(info, nullptr);
    }
    EXPECT_EQ(info->Release(), 0u);
}
