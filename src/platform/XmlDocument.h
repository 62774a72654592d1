#pragma once

#include "platform/UniqueBstr.h"
#include "platform/XmlPointers.h"

// One XML text, parsed by MSXML 3.0; callers walk the document themselves. Blanks between elements are kept as text
// nodes, nothing outside the text is ever loaded. Belongs to one thread, which has initialised COM.
class XmlDocument
{
public:
    XmlDocument() = default;
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    // S_OK, E_FAIL for a text that does not parse (the document is held and has no root then), otherwise the code of
    // the call that failed; REGDB_E_CLASSNOTREG where MSXML is missing, E_POINTER where it gives no document. A text
    // that declares a document type counts as one that does not parse: it is logged and no parser sees it. A document
    // loaded before is given back first.
    [[nodiscard]] HRESULT Load(BSTR text);

    // Null when no document could be created; a document that refused a setting is held all the same, and not ready.
    // The holder keeps its reference: who outlives it takes one of his own.
    [[nodiscard]] IXMLDOMDocument* GetDocument() const noexcept { return m_spDocument; }

    // Whether a document was created and took its settings; a text that does not parse changes nothing in that.
    [[nodiscard]] bool IsReady() const noexcept { return m_dwReady != 0; }

    // The document as the parser wrote it back after the last Load; null when there is none. The holder frees it.
    [[nodiscard]] BSTR Text() const noexcept { return m_strText.get(); }

private:
    [[nodiscard]] HRESULT CreateDocument();
    [[nodiscard]] HRESULT Configure();
    [[nodiscard]] HRESULT Parse(BSTR text);
    void RefreshText();

    UniqueBstr m_strText;
    IXMLDOMDocumentPtr m_spDocument;
    DWORD m_dwReady = 0;
};
