#include "app/system/IconPath.h"

#include "res/Resource.h"
#include "shared/OwnerTypes.h"
#include "shared/TraceScope.h"

#include <cstdio>
#include <new>
#include <span>

using Orvik::Shared::TraceScope;
using Orvik::Shared::UniqueFile;

namespace
{
std::wstring TemporaryFolder()
{
    wchar_t folder[260];
    const DWORD length = GetTempPathW(ARRAYSIZE(folder), folder);
    // A length beyond the buffer is what it should have been, and nothing was written.
    return std::wstring(folder, length < ARRAYSIZE(folder) ? length : 0);
}

bool IsReadable(const std::wstring& path)
{
    return UniqueFile(_wfopen(path.c_str(), L"r")) != nullptr;
}

// Lives as long as the module; empty when the module has no such resource.
std::span<const char> IconFileResource(WORD resourceId)
{
    auto* const found = FindResourceW(nullptr, MAKEINTRESOURCEW(resourceId), MAKEINTRESOURCEW(RT_ICON_FILE));
    if (found == nullptr)
        return {};
    const HGLOBAL loaded = LoadResource(nullptr, found);
    if (loaded == nullptr)
        return {};
    const void* data = LockResource(loaded);
    if (data == nullptr)
        return {};
    return {static_cast<const char*>(data), SizeofResource(nullptr, found)};
}

bool WriteIconFile(const std::wstring& path, std::span<const char> content)
{
    UniqueFile file(_wfopen(path.c_str(), L"w+b"));
    if (file == nullptr)
        return false;
    const bool isWhole =
        std::fwrite(content.data(), 1, content.size(), file.get()) == content.size() && std::fflush(file.get()) == 0;
    file.reset();
    // Half an icon would be taken for the icon ever after.
    if (!isWhole)
        DeleteFileW(path.c_str());
    return isWhole;
}

std::wstring FindOrWriteIcon(std::wstring_view fileName, WORD resourceId)
{
    std::wstring path = TemporaryFolder();
    if (path.empty())
        return {};
    path += fileName;
    if (IsReadable(path))
        return path;
    const std::span<const char> content = IconFileResource(resourceId);
    if (content.empty() || !WriteIconFile(path, content))
        return {};
    return path;
}
} // namespace

std::wstring GetDefaultIconPath(std::wstring_view fileName, WORD resourceId)
{
    const TraceScope trace(ORVIK_FUNCTION);
    try
    {
        return FindOrWriteIcon(fileName, resourceId);
    }
    catch (const std::bad_alloc&)
    {
        return {};
    }
}
