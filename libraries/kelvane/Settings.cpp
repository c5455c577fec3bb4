// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "libraries/kelvane/SettingsStore.h"
#include "libraries/kelvane/Text.h"

#include <algorithm>
#include <array>
#include <map>
#include <mutex>

namespace
{

using kelvane::Finding;
using kelvane::SettingValue;

struct Setting
{
    eConfigID id;
    std::wstring_view name;
    eParamType type;
    const char* defaultText;
    std::uint32_t defaultNumber;
};

// What each means stands at its id.
constexpr std::array<Setting, 6> kCatalogue{{
    {eConfigLogDirectory, L"LogDirectory", eParamString, "Logs", 0},
    {eConfigCustomerServiceText, L"CustomerServiceText", eParamString,
     "Customer service: https://support.zt.example", 0},
    {eConfigLogLevel, L"LogLevel", eParamDWord, nullptr, kLogProgress},
    {eConfigLogSizeLimitKB, L"LogSizeLimitKB", eParamDWord, nullptr, 4096},
    {eConfigLogFileCount, L"LogFileCount", eParamDWord, nullptr, 5},
    {eConfigRecordLockWaits, L"RecordLockWaits", eParamDWord, nullptr, 0},
}};

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
    const SettingValue fallback = DefaultOf(setting);
    const kelvane::FoundSetting found = kelvane::ReadStoredSetting(kelvane::Narrow(setting.name));
    const bool good = found.finding == Finding::Value && found.value.index() == fallback.index();
    const SettingValue& value = good ? found.value : fallback;
    Remember(setting.id, value);
    if (!good && found.finding != Finding::Absent)
        _Log(kLogFailure, L"The stored {0:s} is not of its type: the default holds", {setting.name.data()});
    return value;
}

bool Store(eConfigID id, eParamType type, const SettingValue& value, bool save)
{
    const Setting* setting = Find(id);
    if (setting == nullptr || setting->type != type ||
        (save && !kelvane::WriteStoredSetting(kelvane::Narrow(setting->name), value)))
        return false;
    Remember(id, value);
    return true;
}

} // namespace

eConfigID GetConfigID(const wchar_t* name, bool byName)
{
    const std::wstring_view wanted = kelvane::ViewOf(name);
    const auto* found =
        byName
            ? std::ranges::find_if(kCatalogue, [wanted](const Setting& setting)
                                   { return std::ranges::equal(setting.name, wanted, {}, Folded, Folded); })
            : Find(static_cast<eConfigID>(wtodw(name)));
    return found != nullptr && found != kCatalogue.end() ? found->id : eConfigNone;
}

eParamType GetConfigType(eConfigID id)
{
    const Setting* setting = Find(id);
    return setting != nullptr ? setting->type : eParamUnknown;
}

bool SetConfigStr(eConfigID id, const wchar_t* text, bool save, RequestTarget*)
{
    // A text that the file's encoding cannot hold would come back as another one.
    const std::string narrow = kelvane::Narrow(kelvane::ViewOf(text));
    return kelvane::Widen(narrow) == ZTString(text) && Store(id, eParamString, narrow, save);
}

bool SetConfigDWord(eConfigID id, DWORD number, bool save, RequestTarget*)
{
    return Store(id, eParamDWord, std::uint32_t{number}, save);
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
