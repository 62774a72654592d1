#include "simulator/console/Cases.h"

#include "simulator/console/ObjectReader.h"

namespace Simulator
{
namespace
{
nlohmann::json Substituted(const std::string& text, const nlohmann::json& values, const std::string& place)
{
    std::string result;
    std::size_t begin = 0;
    for (std::size_t open = text.find("${"); open != std::string::npos; open = text.find("${", begin))
    {
        const std::size_t close = text.find('}', open);
        const std::string name = close == std::string::npos ? "" : text.substr(open + 2, close - open - 2);
        if (!values.contains(name))
            throw UsageError(place + ": no case value stands for \"" + text.substr(open) + "\"");
        const nlohmann::json& value = values.at(name);
        if (open == 0 && close + 1 == text.size())
            return value;
        result.append(text, begin, open - begin).append(value.is_string() ? value.get<std::string>() : value.dump());
        begin = close + 1;
    }
    return result + text.substr(begin);
}

void Substitute(nlohmann::json& document, const nlohmann::json& values, const std::string& place)
{
    if (document.is_string())
        document = Substituted(document.get<std::string>(), values, place);
    else if (document.is_object())
    {
        nlohmann::json substituted = nlohmann::json::object();
        for (auto& [key, member] : document.items())
        {
            const nlohmann::json name = Substituted(key, values, place);
            if (!name.is_string())
                throw UsageError(place + ": the key \"" + key + "\" must become a text");
            Substitute(member, values, place + "/" + key);
            substituted[name.get<std::string>()] = std::move(member);
        }
        document = std::move(substituted);
    }
    else if (document.is_array())
    {
        for (const auto& [key, member] : document.items())
            Substitute(member, values, place + "/" + key);
    }
}
} // namespace

std::vector<nlohmann::json> ExpandCases(const nlohmann::json& document)
{
    nlohmann::json common = document;
    common.erase("cases");
    if (!document.contains("cases"))
    {
        Substitute(common, nlohmann::json::object(), "");
        return {common};
    }

    std::vector<nlohmann::json> expanded;
    for (std::size_t i = 0; i < document["cases"].size(); ++i)
    {
        ObjectReader reader(document["cases"][i], "/cases/" + std::to_string(i));
        nlohmann::json one = common;
        const auto name = reader.Get<std::string>("name");
        Substitute(one, reader.Get<nlohmann::json>("with", nlohmann::json::object()), "");
        reader.Finish();
        one["title"] = one.value("title", "") + ": " + name;
        expanded.push_back(std::move(one));
    }
    return expanded;
}
} // namespace Simulator
