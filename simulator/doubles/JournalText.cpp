#include "simulator/doubles/JournalText.h"

#include <objbase.h>

#include <cstdio>
#include <cstdlib>

namespace Simulator
{
std::string NarrowBstr(const OLECHAR* text)
{
    return text == nullptr ? std::string() : Narrow({text, SysStringLen(const_cast<BSTR>(text))});
}

std::string GuidText(REFGUID guid)
{
    OLECHAR text[39] = {};
    StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
    return Narrow(text);
}

std::string HResultText(HRESULT hr)
{
    char text[11] = {};
    (void)std::snprintf(text, sizeof(text), "0x%08lX", static_cast<unsigned long>(hr));
    return text;
}

HRESULT HResultFromJson(const nlohmann::json& value, HRESULT fallback)
{
    if (value.is_number_integer())
        return static_cast<HRESULT>(value.get<std::int64_t>());
    if (value.is_string())
        return static_cast<HRESULT>(std::strtoul(value.get<std::string>().c_str(), nullptr, 0));
    return fallback;
}

std::string ApartmentText()
{
    APTTYPE type{};
    APTTYPEQUALIFIER qualifier{};
    if (FAILED(CoGetApartmentType(&type, &qualifier)))
        return "none";
    if (type != APTTYPE_MTA)
        return "sta";
    return qualifier == APTTYPEQUALIFIER_IMPLICIT_MTA ? "implicit-mta" : "mta";
}
} // namespace Simulator
