// SPDX-License-Identifier: MIT
// The settings file, Tavo.settings.json in the program folder. A file that is not a settings file is set
// aside under another name, with a line in the log, so that a person can mend it.
#pragma once

#include "foundation/Oriska.h"
#include "libraries/kelvane/SettingsText.h"

namespace kelvane
{

// Broken is never the answer: such a file is set aside, and the setting is then absent. Where another process
// holds the lock, the file stays; nobody is waited for.
FoundSetting ReadStoredSetting(std::string_view name);

// Empty when the value is stored. Otherwise why not, for the log; the store then holds what it held.
ZTString WriteStoredSetting(std::string_view name, const SettingValue& value);

} // namespace kelvane
