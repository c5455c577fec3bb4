// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "libraries/kelvane/SettingsStore.h"
#include "libraries/kelvane/Text.h"
#include "text/SafeToShow.h"
#include "text/Unicode.h"

#include <algorithm>
#include <array>
#include <map>
#include <mutex>

namespace
{

using kelvane::eFinding;
using kelvane::SettingValue;

struct Setting
{
    eConfigID id;
    std::wstring_view name;
    eParamType type;
    const char* defaultText;
    std::uint32_t defaultNumber;
    std::uint32_t most; // of a number; the least is 0
};

// What each means stands at its id.
constexpr auto kCatalogue = std::to_array<Setting>({
    {eConfigLogDirectory, L"LogDirectory", eParamString, "Logs", 0, 0},
    {eConfigCustomerServiceText, L"CustomerServiceText", eParamString,
     "Customer service: https://support.zt.example", 0, 0},
    {eConfigLogLevel, L"LogLevel", eParamDWord, nullptr, kLogProgress, kLogProgress},
    {eConfigLogSizeLimitKB, L"LogSizeLimitKB", eParamDWord, nullptr, 4096, 4'194'304},
    {eConfigLogFileCount, L"LogFileCount", eParamDWord, nullptr, 5, kMostOlderLogs},
    {eConfigRecordLockWaits, L"RecordLockWaits", eParamDWord, nullptr, 0, 1},
});

// What this process knows already, never destroyed: static objects log at the very end.
struct Memory
{
    std::mutex guard;
    std::map<eConfigID, SettingValue> values;
};
Memory& Known()
{
    static auto& memory = *new Memory;
    return memory;
}

const Setting* Find(eConfigID id)
{
    const auto* found = std::ranges::find(kCatalogue, id, &Setting::id);
    return found != kCatalogue.end() ? found : nullptr;
}

wchar_t Folded(wchar_t character)
{
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character + (L'a' - L'A'))
                                                  : character;
}

SettingValue DefaultOf(const Setting& setting)
{
    if (setting.type == eParamString)
        return setting.defaultText;
    return setting.defaultNumber;
}

// What a refusal tells of the values that the setting can have.
ZTString WhatItTakes(const Setting& setting)
{
    if (setting.type == eParamString)
        return L"it takes a text";
    return _StrFormat(L"it takes a number from 0 to {0:u}", {setting.most});
}

// Empty when the setting can have the value.
ZTString WhyUnfit(const Setting& setting, const SettingValue& value)
{
    const std::uint32_t* number = std::get_if<std::uint32_t>(&value);
    const bool fits =
        setting.type == eParamString ? number == nullptr : number != nullptr && *number <= setting.most;
    return fits ? ZTString() : WhatItTakes(setting);
}

void Remember(eConfigID id, const SettingValue& value)
{
    const std::lock_guard lock(Known().guard);
    Known().values[id] = value;
}

SettingValue Read(const Setting& setting)
{
    {
        const std::lock_guard lock(Known().guard);
        const auto known = Known().values.find(setting.id);
        if (known != Known().values.end())
            return known->second;
    }
    const kelvane::FoundSetting found = kelvane::ReadStoredSetting(kelvane::Narrow(setting.name));
    const ZTString unfit =
        found.finding == eFinding::Value ? WhyUnfit(setting, found.value) : WhatItTakes(setting);
    SettingValue value = unfit.IsEmpty() ? found.value : DefaultOf(setting);
    Remember(setting.id, value);
    if (!unfit.IsEmpty() && found.finding != eFinding::Absent)
        _Log(kLogFailure, L"The default of {0:s} holds, not what is stored: {1:s}",
             {setting.name.data(), unfit});
    return value;
}

bool Store(eConfigID id, const SettingValue& value)
{
    const Setting* setting = Find(id);
    if (setting == nullptr)
        return false;
    ZTString refusal = WhyUnfit(*setting, value);
    if (refusal.IsEmpty())
        refusal = kelvane::WriteStoredSetting(kelvane::Narrow(setting->name), value);
    if (refusal.IsEmpty())
    {
        Remember(id, value);
        return true;
    }
    _Log(kLogFailure, L"{0:s} is not changed: {1:s}", {setting->name.data(), refusal});
    return false;
}

} // namespace

eConfigID GetConfigID(const wchar_t* name, bool)
{
    const std::wstring_view wanted = kelvane::ViewOf(name);
    const auto* found =
        std::ranges::find_if(kCatalogue, [wanted](const Setting& setting)
                             { return std::ranges::equal(setting.name, wanted, {}, Folded, Folded); });
    return found != kCatalogue.end() ? found->id : eConfigNone;
}

eParamType GetConfigType(eConfigID id)
{
    const Setting* setting = Find(id);
    return setting != nullptr ? setting->type : eParamUnknown;
}

bool SetConfigStr(eConfigID id, const wchar_t* text, bool, RequestTarget*)
{
    // The file's encoding holds characters alone: anything else would come back as another text.
    const std::wstring_view whole = kelvane::ViewOf(text);
    for (std::wstring_view rest = whole; !rest.empty();)
        if (!text::IsCharacter(text::TakePoint(rest)))
        {
            _Log(kLogFailure, L"A setting is not changed: its text is not UTF-8, or holds half a character",
                 {});
            return false;
        }
    return Store(id, kelvane::Narrow(whole));
}

bool SetConfigDWord(eConfigID id, DWORD number, bool, RequestTarget*)
{
    return Store(id, std::uint32_t{number});
}

void ResetConfigVal(eConfigID id)
{
    const std::lock_guard lock(Known().guard);
    Known().values.erase(id);
}

ZTString GetConfigStr(eConfigID id, RequestTarget*)
{
    const Setting* setting = Find(id);
    if (setting == nullptr || setting->type != eParamString)
        return {};
    return kelvane::Widen(std::get<std::string>(Read(*setting)));
}

DWORD GetConfigDWord(eConfigID id, RequestTarget*)
{
    const Setting* setting = Find(id);
    if (setting == nullptr || setting->type != eParamDWord)
        return 0;
    return std::get<std::uint32_t>(Read(*setting));
}
