// SPDX-License-Identifier: MIT
// The settings file, Tavo.settings.json in the program folder. A file that is no settings file is set aside
// under another name, with a line in the log, so that a person can mend it.
#pragma once

#include "libraries/kelvane/SettingsText.h"

namespace kelvane
{

// Broken is never the answer: such a file is set aside, and the setting is then absent.
FoundSetting ReadStoredSetting(std::string_view name);

// False when the store refuses: it cannot be read or written, or the disk is full. It then holds what it
// held.
bool WriteStoredSetting(std::string_view name, const SettingValue& value);

} // namespace kelvane
