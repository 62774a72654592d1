#include "wmievents/AuditLogCopy.h"

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
// The children of a node of the document; null when it has no list of them.
template <class Node>
IXMLDOMNodeListPtr ChildrenOf(Node* node, long& count)
{
    count = 0;
    IXMLDOMNodeListPtr spChildren;
    if (FAILED(node->get_childNodes(&spChildren)) || !spChildren || FAILED(spChildren->get_length(&count)))
        count = 0;
    return spChildren;
}

IXMLDOMNodePtr ItemOf(IXMLDOMNodeList* list, long index)
{
    IXMLDOMNodePtr spItem;
    if (FAILED(list->get_item(index, &spItem)))
        return {};
    return spItem;
}

AuditLogEntry ReadEntry(IXMLDOMNodeList* fields, long count)
{
    AuditLogEntry entry;
    for (long i = 0; i < count; ++i)
    {
        if (const IXMLDOMNodePtr spField = ItemOf(fields, i))
            ReadField(spField, entry);
    }
    return entry;
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

void CheckEntry(const TraceScope& trace, long index, IXMLDOMNode* node)
{
    long count = 0;
    const IXMLDOMNodeListPtr spFields = ChildrenOf(node, count);
    // Blanks between the entries are such nodes.
    if (count == 0)
        return;
    const AuditLogEntry entry = ReadEntry(spFields, count);
    trace.Verbose(L"Check entry #%d {Num Attributes: %d]: %s|%s|%s|%s", static_cast<int>(index),
                  static_cast<int>(count), entry.m_strTimestamp.c_str(), entry.m_strEventId.c_str(),
                  entry.m_strLogType.c_str(), entry.m_strDescription.c_str());
    if (!LogEntryAlreadyInserted(entry.m_strEventId, entry.m_strSource, entry.m_strDescription, entry.m_strTimestamp))
        InsertEntry(trace, entry);
}

void WalkEntries(const TraceScope& trace, IXMLDOMDocument* document)
{
    IXMLDOMElementPtr spRoot;
    // A text that did not parse has no root, which is no failure for the system.
    if (FAILED(document->get_documentElement(&spRoot)) || !spRoot)
        return;
    long count = 0;
    const IXMLDOMNodeListPtr spEntries = ChildrenOf(spRoot.GetInterfacePtr(), count);
    // The last entry first: that order of records is what administrators know.
    for (long i = count - 1; i >= 0; --i)
    {
        if (const IXMLDOMNodePtr spEntry = ItemOf(spEntries, i))
            CheckEntry(trace, i, spEntry);
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
