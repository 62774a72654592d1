#pragma once

#include <comdef.h>
#include <msxml2.h>

_COM_SMARTPTR_TYPEDEF(IXMLDOMDocument, __uuidof(IXMLDOMDocument));

// One XML text, parsed by MSXML 3.0; callers walk the document themselves. Blanks between elements are kept as text
// nodes, nothing outside the text is ever loaded. Belongs to one thread, which has initialised COM.
class XmlDocument
{
public:
    // S_OK, E_FAIL for a text that does not parse (the document is held and has no root then), otherwise the code of
    // the call that failed; REGDB_E_CLASSNOTREG where MSXML is missing. A document loaded before is given back first.
    [[nodiscard]] HRESULT Load(BSTR text);

    // Null when no document could be created. The holder keeps its reference: who outlives it takes one of his own.
    [[nodiscard]] IXMLDOMDocument* GetDocument() const noexcept { return m_spDocument; }

    // The document as the parser wrote it back after the last Load; a null BSTR when there is none.
    [[nodiscard]] const _bstr_t& Text() const noexcept { return m_strText; }

private:
    [[nodiscard]] HRESULT CreateDocument();
    [[nodiscard]] HRESULT Configure();
    [[nodiscard]] HRESULT Parse(BSTR text);
    void RefreshText();

    _bstr_t m_strText;
    IXMLDOMDocumentPtr m_spDocument;
    DWORD m_dwReady = 0; // 1 once the document has been created and configured
};
