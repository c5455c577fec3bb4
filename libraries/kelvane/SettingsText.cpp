// SPDX-License-Identifier: MIT
#include "libraries/kelvane/SettingsText.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace kelvane
{
namespace
{

using Json = nlohmann::ordered_json; // members stay in the order that a person gave them

// Writing goes down one level of the stack for each level of the text.
constexpr int kDeepest = 64;

std::optional<Json> Parse(std::string_view file)
{
    bool tooDeep = false;
    const auto watchDepth = [&tooDeep](int depth, Json::parse_event_t, const Json&)
    {
        tooDeep = tooDeep || depth > kDeepest;
        return !tooDeep;
    };
    std::optional<Json> settings(std::in_place, Json::parse(file, watchDepth, false));
    if (tooDeep || !settings->is_object())
        settings.reset();
    return settings;
}

char Folded(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

Json::iterator Find(Json& settings, std::string_view name)
{
    auto member = settings.begin();
    while (member != settings.end() && !std::ranges::equal(member.key(), name, {}, Folded, Folded))
        ++member;
    return member;
}

} // namespace

FoundSetting FindSetting(std::string_view file, std::string_view name)
{
    std::optional<Json> settings = Parse(file);
    if (!settings)
        return {eFinding::Broken, {}};
    const auto member = Find(*settings, name);
    if (member == settings->end())
        return {eFinding::Absent, {}};
    if (member->is_string())
        return {eFinding::Value, member->get<std::string>()};
    if (member->is_number_unsigned() && member->get<std::uint64_t>() <= UINT32_MAX)
        return {eFinding::Value, member->get<std::uint32_t>()};
    return {eFinding::OtherType, {}};
}

std::optional<std::string> WithSetting(std::string_view file, std::string_view name,
                                       const SettingValue& value)
{
    std::optional<Json> settings = Parse(file);
    if (!settings)
        return std::nullopt;
    const auto member = Find(*settings, name);
    Json& place = member != settings->end() ? *member : (*settings)[std::string(name)];
    std::visit([&place](const auto& plain) { place = plain; }, value);
    // A value's bytes that are not UTF-8 become U+FFFD.
    return settings->dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace kelvane
