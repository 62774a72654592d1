#include "simulator/doubles/WmiNamespaces.h"

#include "simulator/doubles/WmiQuery.h"
#include "simulator/model/Facts.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace Simulator
{
namespace
{
constexpr std::array<std::string_view, 7> UsualNamespaces = {
    R"(root\cimv2)",
    R"(root\wmi)",
    R"(root\cimv2\security\microsofttpm)",
    R"(root\orvik\instrumentedbios)",
    R"(root\orvik\instrumentedsecurity)",
    R"(root\cimv2\security\microsoftvolumeencryption)",
    R"(root\orvik\instrumentedservices\v1)",
};
} // namespace

std::optional<std::string> NormalNamespace(std::string_view path)
{
    std::string name(path);
    std::ranges::transform(
        name, name.begin(), [](char character)
        { return character == '/' ? '\\' : static_cast<char>(std::tolower(static_cast<unsigned char>(character))); });
    if (name.starts_with(R"(\\.\)"))
        name.erase(0, 4);
    const bool isReadable = name == "root" || name.starts_with(R"(root\)");
    if (!isReadable || name.ends_with('\\') || name.find(R"(\\)") != std::string::npos)
        return std::nullopt;
    return name;
}

bool NamespaceExists(std::string_view normalName)
{
    const nlohmann::json fact = Facts::Instance().Get("/wmi/namespaces");
    if (!fact.is_array())
        return std::ranges::find(UsualNamespaces, normalName) != std::end(UsualNamespaces);
    return std::ranges::any_of(
        fact, [&](const nlohmann::json& entry)
        { return entry.is_string() && NormalNamespace(entry.get<std::string>()) == normalName; });
}
} // namespace Simulator
