#include "notifications/DesktopToast.h"

#include "notifications/WindowsRuntime.h"
#include "platform/ComApartment.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/notifications/ToastMachine.h"
#include "tests/support/LogCapture.h"

#include <shlobj.h>

#include <gmock/gmock.h>

#include <cwchar>

using Simulator::Redirection;
using ToastAbi::ToastTemplateType;

namespace
{
// What SHGetSpecialFolderPathW was asked, and what it answers; no folder is a failure.
struct SpecialFolder
{
    HWND m_hwndOwner = nullptr;
    int m_nFolder = -1;
    BOOL m_bCreate = -1;
    const wchar_t* m_pAnswer = nullptr;
};
SpecialFolder g_specialFolder;

BOOL WINAPI AnswerSpecialFolder(HWND owner, LPWSTR path, int folder, BOOL create)
{
    g_specialFolder.m_hwndOwner = owner;
    g_specialFolder.m_nFolder = folder;
    g_specialFolder.m_bCreate = create;
    if (g_specialFolder.m_pAnswer == nullptr)
        return FALSE;
    std::wcscpy(path, g_specialFolder.m_pAnswer);
    return TRUE;
}

constexpr wchar_t ImageBelowFolder[] = L"\\Orvik\\Orvik Notifications\\toastImageAndText.png";
constexpr std::size_t ImageLength = std::size(ImageBelowFolder) - 1;

class DesktopToastImageTest : public ToastMachine
{
protected:
    DesktopToast m_toast{nullptr, nullptr};
    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
    Redirection<decltype(SHGetSpecialFolderPathW)> m_redirection{"SHGetSpecialFolderPathW", &AnswerSpecialFolder};
};

// Takes the attribute "src" away from the first image of a document.
void RemoveSrc(const ToastAbi::IXmlDocumentPtr& spDocument)
{
    WindowsRuntime::RuntimeString image;
    WindowsRuntime::RuntimeString src;
    ASSERT_EQ(image.Create(L"image"), S_OK);
    ASSERT_EQ(src.Create(L"src"), S_OK);
    ToastAbi::IXmlNodeListPtr spImages;
    ToastAbi::IXmlNodePtr spImage;
    ToastAbi::IXmlNamedNodeMapPtr spAttributes;
    ToastAbi::IXmlNodePtr spRemoved;
    ASSERT_EQ(spDocument->GetElementsByTagName(image.Get(), &spImages), S_OK);
    ASSERT_EQ(spImages->Item(0, &spImage), S_OK);
    ASSERT_EQ(spImage->get_Attributes(&spAttributes), S_OK);
    ASSERT_EQ(spAttributes->RemoveNamedItem(src.Get(), &spRemoved), S_OK);
}
} // namespace

TEST_F(DesktopToastImageTest, ImagePath_Always_IsBelowThe32BitProgramFolder)
{
    g_specialFolder = {.m_pAnswer = L"D:\\Programme (x86)"};
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    EXPECT_EQ(g_specialFolder.m_nFolder, 42);
    EXPECT_EQ(g_specialFolder.m_hwndOwner, nullptr);
    EXPECT_EQ(g_specialFolder.m_bCreate, FALSE);
    EXPECT_EQ(Shown()[0]["image"], "file:///D:\\Programme (x86)\\Orvik\\Orvik Notifications\\toastImageAndText.png");
}

TEST_F(DesktopToastImageTest, ImageFile_Missing_DoesNotStopTheToast)
{
    const std::wstring folder = L"C:\\no folder of programs";
    ASSERT_EQ(GetFileAttributesW((folder + ImageBelowFolder).c_str()), INVALID_FILE_ATTRIBUTES);
    g_specialFolder = {.m_pAnswer = folder.c_str()};
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    EXPECT_EQ(m_desktop.VisibleCount(), 1u);
}

TEST_F(DesktopToastImageTest, ImagePath_FolderUnknown_FailsWithoutToast)
{
    g_specialFolder = {};
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
    EXPECT_TRUE(Shown().empty());
    EXPECT_TRUE(TestSupport::LogLines("DesktopToast::SetImageSrc").empty());
    EXPECT_THAT(
        TestSupport::LogLines("DesktopToast::CreateToastXml"),
        testing::ElementsAre(L"TraceIn|", L"Verbose|Title: Title", L"Verbose|Text: Text", L"TraceOut|hr: 0x80070003"));
}

TEST_F(DesktopToastImageTest, ImagePath_LongestThatFits_IsUsed)
{
    const std::wstring folder(MAX_PATH - 1 - ImageLength, L'd');
    g_specialFolder = {.m_pAnswer = folder.c_str()};
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    EXPECT_EQ(Shown()[0]["image"].get<std::string>().size(), std::size("file:///") - 1 + MAX_PATH - 1);
}

TEST_F(DesktopToastImageTest, ImagePath_OneCharacterTooLong_FailsWithoutToast)
{
    const std::wstring folder(MAX_PATH - ImageLength, L'd');
    g_specialFolder = {.m_pAnswer = folder.c_str()};
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE));
    EXPECT_TRUE(Shown().empty());
}

TEST_F(DesktopToastImageTest, SetImageSrc_MarkupInPath_IsEscapedInTheAttribute)
{
    const ToastAbi::IXmlDocumentPtr spDocument = Document(ToastTemplateType::ToastImageAndText01);
    EXPECT_EQ(m_toast.SetImageSrc(L"C:\\R&D \"x\" <y>.png", spDocument), S_OK);
    EXPECT_EQ(m_toast.CreateToast(Manager(), spDocument), S_OK);
    EXPECT_EQ(ShownXml(), L"<toast><visual><binding template=\"ToastImageAndText01\"><image id=\"1\" "
                          L"src=\"file:///C:\\R&amp;D &quot;x&quot; &lt;y&gt;.png\"/><text id=\"1\"></text>"
                          L"</binding></visual></toast>");
}

TEST_F(DesktopToastImageTest, SetImageSrc_NoImageElement_Fails)
{
    EXPECT_EQ(m_toast.SetImageSrc(L"C:\\image.png", Document(ToastTemplateType::ToastText02)), E_INVALIDARG);
    EXPECT_THAT(TestSupport::LogLines(), testing::ElementsAre(L"TraceIn|DesktopToast::SetImageSrc|",
                                                              L"TraceOut|DesktopToast::SetImageSrc|hr: 0x80070057"));
}

TEST_F(DesktopToastImageTest, SetImageSrc_NoSrcAttribute_Fails)
{
    const ToastAbi::IXmlDocumentPtr spDocument = Document(ToastTemplateType::ToastImageAndText04);
    RemoveSrc(spDocument);
    EXPECT_EQ(m_toast.SetImageSrc(L"C:\\image.png", spDocument), E_INVALIDARG);
}
