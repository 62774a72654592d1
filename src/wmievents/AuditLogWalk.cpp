#include "wmievents/AuditLogCopy.h"

#include "platform/RequireObject.h"
#include "shared/OwnerTypes.h"
#include "shared/TraceScope.h"
#include "wmievents/AuditLogEntry.h"
#include "wmievents/AuditLogKeyMap.h"
#include "wmievents/VeritorEventLog.h"
#include "wmievents/WmiEventsState.h"

#include <new>

using Orvik::Shared::CriticalSectionLock;
using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
// The children of a node of the document, and how many they are.
template <class Node>
HRESULT GetChildren(Node* node, IXMLDOMNodeListPtr& spChildren, long& count)
{
    HRESULT hr = node->get_childNodes(&spChildren);
    hr = RequireObject(hr, spChildren);
    return FAILED(hr) ? hr : spChildren->get_length(&count);
}

HRESULT GetItem(IXMLDOMNodeList* list, long index, IXMLDOMNodePtr& spItem)
{
    const HRESULT hr = list->get_item(index, &spItem);
    return RequireObject(hr, spItem);
}

HRESULT ReadFields(IXMLDOMNodeList* fields, long count, AuditLogEntry& entry)
{
    HRESULT hr = S_OK;
    for (long i = 0; i < count && SUCCEEDED(hr); ++i)
    {
        IXMLDOMNodePtr spField;
        hr = GetItem(fields, i, spField);
        if (SUCCEEDED(hr))
            hr = ReadField(spField, entry);
    }
    return hr;
}

void InsertEntry(const TraceScope& trace, const AuditLogEntry& entry)
{
    trace.Verbose(L"New entry to be inserted: %s|%s|%s|%s", entry.m_strTimestamp.c_str(), entry.m_strEventId.c_str(),
                  entry.m_strLogType.c_str(), entry.m_strDescription.c_str());
    LogVeritor(entry.m_strDescription, entry.m_strSource, entry.m_strTimestamp, entry.m_strEventId, entry.m_strLogType);
    // The leading blank makes it a text as it stands in a record, where a key never begins.
    CreateHashingTimeStamp(EventIdNumber(entry.m_strEventId), L" Timestamp: " + entry.m_strTimestamp);
    trace.Verbose(L"AddLogsToEventViewer: %s|%s|%s", entry.m_strTimestamp.c_str(), entry.m_strEventId.c_str(),
                  entry.m_strLogType.c_str());
}

// The result is that of the call that kept the entry from being read.
HRESULT CheckEntry(const TraceScope& trace, IXMLDOMNodeList* entries, long index)
{
    IXMLDOMNodePtr spEntry;
    HRESULT hr = GetItem(entries, index, spEntry);
    if (FAILED(hr))
        return hr;
    IXMLDOMNodeListPtr spFields;
    long count = 0;
    hr = GetChildren(spEntry.GetInterfacePtr(), spFields, count);
    // Blanks between the entries are nodes without children.
    if (FAILED(hr) || count == 0)
        return hr;
    AuditLogEntry entry;
    hr = ReadFields(spFields, count, entry);
    if (FAILED(hr))
        return hr;
    trace.Verbose(L"Check entry #%d {Num Attributes: %d]: %s|%s|%s|%s", static_cast<int>(index),
                  static_cast<int>(count), entry.m_strTimestamp.c_str(), entry.m_strEventId.c_str(),
                  entry.m_strLogType.c_str(), entry.m_strDescription.c_str());
    if (!LogEntryAlreadyInserted(entry.m_strEventId, entry.m_strSource, entry.m_strDescription, entry.m_strTimestamp))
        InsertEntry(trace, entry);
    return S_OK;
}

void WalkEntries(const TraceScope& trace, IXMLDOMDocument* document)
{
    IXMLDOMElementPtr spRoot;
    // A text that did not parse has no root, which is no failure for the system.
    if (FAILED(document->get_documentElement(&spRoot)) || !spRoot)
        return;
    IXMLDOMNodeListPtr spEntries;
    long count = 0;
    if (const HRESULT hr = GetChildren(spRoot.GetInterfacePtr(), spEntries, count); FAILED(hr))
    {
        trace.Information(L"The entries of the audit log cannot be read. hr = 0x%X", hr);
        return;
    }
    // The last entry first: that order of records is what administrators know.
    for (long i = count - 1; i >= 0; --i)
    {
        // Half an entry would be another one for ever: the next copy finds it whole.
        if (const HRESULT hr = CheckEntry(trace, spEntries, i); FAILED(hr))
            trace.Information(L"Entry #%d cannot be read. hr = 0x%X", static_cast<int>(i), hr);
    }
}

void LogWalkFailure(const TraceScope& trace, HRESULT hr)
{
    trace.Information(L"Exception occurred extracting Veritor logs. hr = 0x%X", hr);
}
} // namespace

void AddLogsToEventViewer(const XmlDocument& xml)
{
    const TraceScope trace(ORVIK_FUNCTION);
    const CriticalSectionLock lock(g_csCopy);
    const IXMLDOMDocumentPtr spDocument = xml.GetDocument();
    if (!spDocument)
    {
        trace.Information(L"xml.GetDocument() failed");
        return;
    }
    try
    {
        WalkEntries(trace, spDocument);
    }
    catch (const _com_error& error)
    {
        LogWalkFailure(trace, error.Error());
    }
    catch (const std::bad_alloc&)
    {
        LogWalkFailure(trace, E_OUTOFMEMORY);
    }
}
} // namespace Notifications::OrvikWmiEvents
