// SPDX-License-Identifier: MIT
// Any bytes as the settings file: what is one takes a setting, gives it back and stays; what is not is told.
#include "libraries/kelvane/SettingsText.h"
#include "tests/fuzz/Require.h"

using namespace kelvane;

static void Fuzz(std::string_view file)
{
    const bool broken = FindSetting(file, "LogLevel").finding == eFinding::Broken;
    for (const SettingValue& value : {SettingValue(std::uint32_t{7}), SettingValue(std::string("Logs"))})
    {
        const std::optional<std::string> written = WithSetting(file, "LogLevel", value);
        Require(written.has_value() != broken);
        if (!written)
            continue;
        const FoundSetting found = FindSetting(*written, "loglevel");
        Require(found.finding == eFinding::Value && found.value == value);
        Require(WithSetting(*written, "LOGLEVEL", value) == written);
    }
}
