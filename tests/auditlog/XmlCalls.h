#pragma once

#include "tests/platform/MethodRedirection.h"

#include <deque>

namespace Tests
{
// For the life of the object the methods that a walk over a document of MSXML calls are journalled and go through the
// call plan: "get_documentElement", "get_childNodes", "get_length", "get_item", "get_nodeName", "get_nodeType",
// "get_text". Any result but S_OK that the plan gives comes without an object. Only the methods of elements are:
// neither those of texts between them nor those of comments. Made on a thread that has initialised COM; one at a time.
class XmlCalls
{
public:
    XmlCalls();
    XmlCalls(const XmlCalls&) = delete;
    XmlCalls& operator=(const XmlCalls&) = delete;
    ~XmlCalls();

    // References to elements and to lists that were given out since the object was made and are not given back, for
    // documents that hold nothing between their elements.
    [[nodiscard]] static long LiveReferences();

private:
    std::deque<MethodRedirection> m_lstMethods;
};
} // namespace Tests
