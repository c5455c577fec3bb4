// SPDX-License-Identifier: MIT
#include "platform/kernel/Text.h"
#include "text/Unicode.h"
#include "timezoneapi.h"

#include <time.h>
#include <unistd.h>
#include <unicode/ucal.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>

using namespace platform;

namespace
{

constexpr time_t kDay = 86'400; // in s

struct tm LocalTime(time_t when)
{
    struct tm fields = {};
    localtime_r(&when, &fields);
    return fields;
}

// The clocks of one year, as offsets to UTC in seconds. Which is daylight time goes by the clock alone: the
// flag of the zone's source marks Dublin's winter.
struct YearClocks
{
    long mStandard;
    long mDaylight;
    bool mChanges; // false: both are the offset in force
    std::string mStandardName;
    std::string mDaylightName;
};

YearClocks ClocksAround(time_t now)
{
    const struct tm today = LocalTime(now);
    YearClocks clocks = {today.tm_gmtoff, today.tm_gmtoff, false, today.tm_zone, today.tm_zone};
    bool normal = false;
    bool marked = false;
    const time_t newYear = now - today.tm_yday * kDay;
    constexpr int kLastDay = 364;
    for (int day = 0; day <= kLastDay; ++day)
    {
        const struct tm fields = LocalTime(newYear + day * kDay);
        (fields.tm_isdst > 0 ? marked : normal) = true;
        if (fields.tm_gmtoff < clocks.mStandard)
        {
            clocks.mStandard = fields.tm_gmtoff;
            clocks.mStandardName = fields.tm_zone;
        }
        if (fields.tm_gmtoff > clocks.mDaylight)
        {
            clocks.mDaylight = fields.tm_gmtoff;
            clocks.mDaylightName = fields.tm_zone;
        }
    }
    clocks.mChanges = normal && marked && clocks.mStandard != clocks.mDaylight;
    if (!clocks.mChanges) // a zone that moved for good has the clock in force
    {
        clocks.mStandard = clocks.mDaylight = today.tm_gmtoff;
        clocks.mStandardName = clocks.mDaylightName = today.tm_zone;
    }
    return clocks;
}

// "Europe/Berlin" of a file below a zoneinfo folder or a link to one; empty for any other and for none.
std::string ZoneOfFile(const std::filesystem::path& file)
{
    constexpr std::string_view kFolder = "/zoneinfo/";
    std::error_code error;
    const std::string path = std::filesystem::canonical(file, error).string();
    const std::size_t at = path.find(kFolder);
    std::string zone = at == std::string::npos ? "" : path.substr(at + kFolder.size());
    for (const std::string_view variant : {"posix/", "right/"}) // without and with leap seconds
        if (zone.starts_with(variant))
            zone.erase(0, variant.size());
    return zone;
}

// The zone that the C library has in force: where it lacks a zone's data it keeps UTC (tzset(3)).
std::string ZoneId()
{
    if (const char* variable = getenv("TZ"))
    {
        const std::string value = *variable == ':' ? variable + 1 : variable;
        const char* const folder = getenv("TZDIR");
        return value.empty() || value == "UTC"
                   ? "UTC"
                   : ZoneOfFile(std::filesystem::path(folder != nullptr ? folder : "/usr/share/zoneinfo") /
                                value);
    }
    if (access("/etc/localtime", R_OK) != 0)
        return "UTC";
    std::string zone = ZoneOfFile("/etc/localtime");
    if (zone.empty())
        zone = ReadWholeFile("/etc/timezone");
    zone.erase(std::min(zone.find('\n'), zone.size()));
    return zone;
}

// Windows' name of a zone by the table that comes with ICU; empty where it has none.
std::string WindowsZone(const std::string& zone)
{
    const std::u16string id(zone.begin(), zone.end());
    std::array<UChar, 64> name = {};
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = ucal_getWindowsTimeZoneID(id.data(), static_cast<int32_t>(id.size()), name.data(),
                                                     name.size(), &error);
    return U_SUCCESS(error) ? std::string(name.data(), name.data() + length) : std::string();
}

// Most zones are named as their key is.
std::string StandardNameOf(const std::string& zone)
{
    constexpr std::pair<const char*, const char*> kOthers[] = {
        {"UTC", "Coordinated Universal Time"},
        {"Cape Verde Standard Time", "Cabo Verde Standard Time"},
        {"Israel Standard Time", "Jerusalem Standard Time"},
        {"Singapore Standard Time", "Malay Peninsula Standard Time"},
        {"Turks And Caicos Standard Time", "Turks and Caicos Standard Time"},
        {"West Bank Standard Time", "West Bank Gaza Standard Time"},
        {"Kaliningrad Standard Time", "Russia TZ 1 Standard Time"},
        {"Russian Standard Time", "Russia TZ 2 Standard Time"},
        {"Russia Time Zone 3", "Russia TZ 3 Standard Time"},
        {"Ekaterinburg Standard Time", "Russia TZ 4 Standard Time"},
        {"N. Central Asia Standard Time", "Novosibirsk Standard Time"},
        {"North Asia Standard Time", "Russia TZ 6 Standard Time"},
        {"North Asia East Standard Time", "Russia TZ 7 Standard Time"},
        {"Yakutsk Standard Time", "Russia TZ 8 Standard Time"},
        {"Vladivostok Standard Time", "Russia TZ 9 Standard Time"},
        {"Russia Time Zone 10", "Russia TZ 10 Standard Time"},
        {"Russia Time Zone 11", "Russia TZ 11 Standard Time"},
    };
    const auto* found = std::ranges::find(kOthers, zone, [](const auto& other) { return other.first; });
    return found == std::end(kOthers) ? zone : found->second;
}

void SetNames(TIME_ZONE_INFORMATION& information, const std::string& zone, const YearClocks& clocks)
{
    constexpr std::string_view kStandard = "Standard Time";
    std::string standard = StandardNameOf(zone);
    std::string daylight = standard;
    if (const std::size_t at = daylight.find(kStandard); at != std::string::npos)
        daylight.replace(at, kStandard.size(), "Daylight Time");
    if (zone.empty())
    {
        standard = clocks.mStandardName;
        daylight = clocks.mDaylightName;
    }
    CopyOut(text::FromUtf8(standard), information.StandardName, std::size(information.StandardName));
    CopyOut(text::FromUtf8(daylight), information.DaylightName, std::size(information.DaylightName));
}

LONG Minutes(long seconds)
{
    return static_cast<LONG>(seconds / 60);
}

} // namespace

DWORD GetTimeZoneInformation(LPTIME_ZONE_INFORMATION information)
{
    tzset();
    const time_t now = time(nullptr);
    const YearClocks clocks = ClocksAround(now);
    const std::string zone = WindowsZone(ZoneId());
    *information = {};
    information->Bias = -Minutes(clocks.mStandard);
    SetNames(*information, zone, clocks);
    if (!clocks.mChanges)
    {
        // Windows keeps an hour's difference for most zones that never use it.
        constexpr LONG kUnusedDaylightBias = -60;
        information->DaylightBias = zone.find("Standard Time") != std::string::npos ? kUnusedDaylightBias : 0;
        return TIME_ZONE_ID_UNKNOWN;
    }
    information->DaylightBias = -Minutes(clocks.mDaylight - clocks.mStandard);
    return LocalTime(now).tm_gmtoff == clocks.mDaylight ? TIME_ZONE_ID_DAYLIGHT : TIME_ZONE_ID_STANDARD;
}
