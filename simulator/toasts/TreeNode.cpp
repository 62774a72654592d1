#include "simulator/toasts/TreeNode.h"

namespace Simulator
{
HRESULT GetHandle(IUnknown* object, XmlHandle& handle)
{
    if (object == nullptr)
        return E_POINTER;
    ITreeNode* node = nullptr;
    if (FAILED(object->QueryInterface(__uuidof(ITreeNode), reinterpret_cast<void**>(&node))))
        return E_INVALIDARG;
    handle = node->Handle();
    node->Release();
    return S_OK;
}
} // namespace Simulator
