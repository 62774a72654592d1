#pragma once

#include "simulator/toasts/XmlTree.h"

namespace Simulator
{
// How the doubles reach the tree behind a node that comes back as an argument.
struct ITreeNode : IUnknown
{
    virtual const XmlHandle& Handle() const = 0;
};
} // namespace Simulator

__CRT_UUID_DECL(Simulator::ITreeNode, 0x8d3f9b1e, 0x52a4, 0x4c57, 0x9e, 0x21, 0x6a, 0x0f, 0x4b, 0x7d, 0xc3, 0x15)

namespace Simulator
{
// E_POINTER for null, E_INVALIDARG for an object of somebody else.
[[nodiscard]] HRESULT GetHandle(IUnknown* object, XmlHandle& handle);
} // namespace Simulator
