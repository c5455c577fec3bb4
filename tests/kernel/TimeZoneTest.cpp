// SPDX-License-Identifier: MIT
#include "tests/support/TestFolder.h"

#include <windows.h>

#include <time.h>

#include <gtest/gtest.h>

TEST(TimeZone, IsTheOneThatWindowsHasForIt)
{
    // As ":/etc/localtime", which servers set to spare the C library a look at that link.
    const TestFolder folder;
    const std::string tokyo = "/usr/share/zoneinfo/Asia/Tokyo";
    fs::create_symlink(tokyo, folder.Path() / "zone");
    const std::string link = ":" + (folder.Path() / "zone").string();
    // With the other names that zones have there.
    folder.Write("zoneinfo/posix/Asia/Tokyo", ReadFile(tokyo));
    const std::string copy = (folder.Path() / "zoneinfo/posix/Asia/Tokyo").string();
    // One that had another clock until this year began.
    const std::string compile =
        "cd '" + folder.Path().string() + R"(' && export YEAR=$(date +%Y) && printf '%s\n' \
        "Rule R $YEAR only - Mar 1 0:00 1:00 D" "Rule R $YEAR only - Oct 1 0:00 0 S" \
        "Zone moved 1:00 - AAA $YEAR" "5:00 R B%sT" | /usr/sbin/zic -d . -)";
    ASSERT_EQ(std::system(compile.c_str()), 0);
    const std::string moved = (folder.Path() / "moved").string();
    // The zone, its bias and that of daylight time, whether it has one, and the names.
    const std::tuple<const char*, LONG, LONG, bool, std::wstring, std::wstring> rows[] = {
        {"Europe/Berlin", -60, -60, true, L"W. Europe Standard Time", L"W. Europe Daylight Time"},
        {"Asia/Calcutta", -330, -60, false, L"India Standard Time", L"India Daylight Time"}, // an old name
        {"Australia/Lord_Howe", -630, -30, true, L"Lord Howe Standard Time", L"Lord Howe Daylight Time"},
        {"Europe/Dublin", 0, -60, true, L"GMT Standard Time",
         L"GMT Daylight Time"}, // winter is its exception
        {"", 0, 0, false, L"Coordinated Universal Time", L"Coordinated Universal Time"},
        {":Europe/Berlin", -60, -60, true, L"W. Europe Standard Time", L"W. Europe Daylight Time"},
        {link.c_str(), -540, -60, false, L"Tokyo Standard Time", L"Tokyo Daylight Time"},
        {copy.c_str(), -540, -60, false, L"Tokyo Standard Time", L"Tokyo Daylight Time"},
        // A rule of its own has no counterpart on Windows.
        {"ABC-3DEF,M3.5.0,M10.5.0", -180, -60, true, L"ABC", L"DEF"},
        {"PST", 0, 0, false, L"PST", L"PST"}, // no zone of the C library, which then keeps UTC
        {"UTC", 0, 0, false, L"Coordinated Universal Time", L"Coordinated Universal Time"},
        {moved.c_str(), -300, -60, true, L"BST", L"BDT"},
        {"XYZ5", 300, 0, false, L"XYZ", L"XYZ"},
    };
    for (const auto& [zone, expectedBias, daylightBias, changes, standardName, daylightName] : rows)
    {
        // Debian 13 has the old names in a package of their own.
        if (zone == std::string("Asia/Calcutta") && !fs::exists("/usr/share/zoneinfo/Asia/Calcutta"))
            continue;
        const Variable variable("TZ", zone);
        TIME_ZONE_INFORMATION information = {};
        const DWORD result = GetTimeZoneInformation(&information);
        EXPECT_EQ(information.Bias, expectedBias) << zone;
        EXPECT_EQ(information.StandardBias, 0) << zone;
        EXPECT_EQ(information.DaylightBias, daylightBias) << zone;
        EXPECT_EQ(information.StandardName, standardName);
        EXPECT_EQ(information.DaylightName, daylightName);
        EXPECT_EQ(result != TIME_ZONE_ID_UNKNOWN, changes) << zone;
    }
    _tzset();
}

TEST(TimeZone, BearsTheNameThatWindowsShowsWhereItsKeyIsAnother)
{
    std::wstring names;
    for (const char* zone :
         {"UTC", "Atlantic/Cape_Verde", "Asia/Jerusalem", "Asia/Singapore", "America/Grand_Turk",
          "Asia/Hebron", "Europe/Kaliningrad", "Europe/Moscow", "Europe/Samara", "Asia/Yekaterinburg",
          "Asia/Novosibirsk", "Asia/Krasnoyarsk", "Asia/Irkutsk", "Asia/Yakutsk", "Asia/Vladivostok",
          "Asia/Srednekolymsk", "Asia/Kamchatka"})
    {
        const Variable variable("TZ", zone);
        TIME_ZONE_INFORMATION information = {};
        GetTimeZoneInformation(&information);
        const std::wstring name = information.StandardName;
        names += name.substr(0, name.find(L" Standard Time")) + L";";
    }
    EXPECT_EQ(names, L"Coordinated Universal Time;Cabo Verde;Jerusalem;Malay Peninsula;Turks and Caicos;"
                     L"West Bank Gaza;Russia TZ 1;Russia TZ 2;Russia TZ 3;Russia TZ 4;Novosibirsk;"
                     L"Russia TZ 6;Russia TZ 7;Russia TZ 8;Russia TZ 9;Russia TZ 10;Russia TZ 11;");
}
