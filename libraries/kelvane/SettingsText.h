// SPDX-License-Identifier: MIT
// The settings file as text: one JSON object, a setting a member. Names count in any case; members that are
// not settings of ours keep their order and their values, if not how these were written ("1.50" becomes 1.5).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace kelvane
{

using SettingValue = std::variant<std::string, std::uint32_t>; // UTF-8

// What a file says of a setting.
enum class eFinding
{
    Broken, // the text is not a settings file
    Absent,
    Value,
    OtherType, // neither a text nor a number of 32 bits
};
struct FoundSetting
{
    eFinding finding = eFinding::Broken;
    SettingValue value;
};
FoundSetting FindSetting(std::string_view file, std::string_view name);

// The text with one setting set; nothing when the text is not a settings file.
std::optional<std::string> WithSetting(std::string_view file, std::string_view name,
                                       const SettingValue& value);

} // namespace kelvane
