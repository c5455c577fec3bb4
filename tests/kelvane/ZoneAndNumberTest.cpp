// SPDX-License-Identifier: MIT
#include "tests/kelvane/AgentFolder.h"

#include <gtest/gtest.h>

#include <array>

namespace
{

constexpr int kFirstYear = 2017;

struct ZoneRow
{
    const char* zone;
    std::array<const char*, 7> dates; // of 2017 to 2023
    const char* why;
};

// From the zones' published rules, as `zdump -v` of tzdata 2024 tells them.
const ZoneRow kZones[] = {
    {"Europe/Berlin",
     {"03-26 10-29", "03-25 10-28", "03-31 10-27", "03-29 10-25", "03-28 10-31", "03-27 10-30",
      "03-26 10-29"},
     "the last Sundays"},
    {"America/St_Johns",
     {"03-12 11-05", "03-11 11-04", "03-10 11-03", "03-08 11-01", "03-14 11-07", "03-13 11-06",
      "03-12 11-05"},
     "half an hour's zone"},
    {"Asia/Kolkata",
     {"00-00 00-00", "00-00 00-00", "00-00 00-00", "00-00 00-00", "00-00 00-00", "00-00 00-00",
      "00-00 00-00"},
     "no daylight time"},
    {"Australia/Lord_Howe",
     {"04-02 10-01", "04-01 10-07", "04-07 10-06", "04-05 10-04", "04-04 10-03", "04-03 10-02",
      "04-02 10-01"},
     "southern, and half an hour's daylight time"},
};
// Where the systems' data tell different stories, so that only this system's are compared.
const ZoneRow kLinuxZones[] = {
    {"Europe/Dublin",
     {"03-26 10-29", "03-25 10-28", "03-31 10-27", "03-29 10-25", "03-28 10-31", "03-27 10-30",
      "03-26 10-29"},
     "winter is the exception there"},
    {"Africa/Casablanca",
     {"03-26 05-21", "03-25 05-13", "05-05 06-09", "04-19 05-31", "04-11 05-16", "03-27 05-08",
      "03-19 04-23"},
     "up to four changes a year: the first two"},
    {"Pacific/Apia",
     {"04-02 09-24", "04-01 09-30", "04-07 09-29", "04-05 09-27", "04-04 00-00", "00-00 00-00",
      "00-00 00-00"},
     "daylight time given up: one change, then none"},
    {"America/Asuncion",
     {"03-26 10-01", "03-25 10-07", "03-24 10-06", "03-22 10-04", "03-28 10-03", "03-27 10-02",
      "03-26 10-01"},
     "changes at midnight count for the day that begins"},
    {"Asia/Pyongyang",
     {"00-00 00-00", "00-00 00-00", "00-00 00-00", "00-00 00-00", "00-00 00-00", "00-00 00-00",
      "00-00 00-00"},
     "the zone itself moved in 2018"},
    {"EST5EDT,M3.2.0,M11.1.0",
     {"03-12 11-05", "03-11 11-04", "03-10 11-03", "03-08 11-01", "03-14 11-07", "03-13 11-06",
      "03-12 11-05"},
     "a rule in place of a name"},
    {"UTC",
     {"00-00 00-00", "00-00 00-00", "00-00 00-00", "00-00 00-00", "00-00 00-00", "00-00 00-00",
      "00-00 00-00"},
     "no zone"},
};

// A Windows program runs in the zone that it was started in.
bool CanRunIn(std::string_view zone)
{
    const char* const own = std::getenv("TZ");
    return sizeof(wchar_t) == 4 || (own != nullptr && own == zone);
}

void Check(const ZoneRow& row)
{
    const AgentFolder folder;
    std::vector<std::string> steps;
    std::string dates;
    for (std::size_t index = 0; index < row.dates.size(); ++index)
    {
        steps.push_back("year:" + std::to_string(kFirstYear + static_cast<int>(index)));
        dates += std::string(row.dates[index]) + "\n";
    }
    EXPECT_EQ(folder.Run(steps, {{"TZ", row.zone}}).answers, dates) << row.zone << ": " << row.why;
}

TEST(Transitions, AreTheDaysOnWhichTheClockIsPutForwardOrBack)
{
    for (const ZoneRow& row : kZones)
        if (CanRunIn(row.zone))
            Check(row);
}

TEST(Transitions, FollowTheMachinesZoneData)
{
    if (sizeof(wchar_t) == 2)
        GTEST_SKIP() << "the system's own zone rules know two changes a year at most";
    for (const ZoneRow& row : kLinuxZones)
        Check(row);
}

TEST(Transitions, AreFoundInAnyYear)
{
    const AgentFolder folder;
    const std::string answers =
        folder.Run({"year:2100", "year:9999", "year:0", "year:10000"}, {{"TZ", "Europe/Berlin"}}).answers;
    EXPECT_EQ(answers, "03-28 10-31\n03-28 10-31\n00-00 00-00\n00-00 00-00\n");
    if (sizeof(wchar_t) == 2)
        return; // the system's own zone rules begin later
    EXPECT_EQ(folder.Run({"year:1980", "year:1850"}, {{"TZ", "Europe/Berlin"}}).answers,
              "04-06 09-28\n00-00 00-00\n");
}

struct NumberRow
{
    const char* locale;
    const char* step;
    const char* shown;
};

TEST(NumberFormat, IsTheUsersOwn)
{
    const NumberRow rows[] = {
        {"C", "number:1.2", "1.2"},
        {"C", "number:1", "1"},
        {"C", "number:-0.5", "-0.5"},
        {"C", "number:-0.0001::2", "0.00"},
        {"C", "number:2.675::2", "2.67"},
        {"C", "number:1.23456789012", "1.23456789"},
        {"C", "number:1.5::0", "2"},
        {"C", "number:1234567.25", "1234567.25"},
        {"C", "number:1e20", "100000000000000000000"},
        {"C", "number:nan", "nan"},
        {"C", "number:-inf", "-inf"},
        {"de_DE.UTF-8", "number:1.2", "1,2"},
        {"de_DE.UTF-8", "number:1234567.25:grouped", "1.234.567,25"},
        {"de_DE.UTF-8", "number:1234567.25:plain:3", "1234567,250"},
        {"en_IN.UTF-8", "number:1234567.25:grouped", "12,34,567.25"},
        {"xx_XX.UTF-8", "number:1.2", "1.2"},
    };
    const AgentFolder folder;
    for (const NumberRow& row : rows)
    {
        if (sizeof(wchar_t) == 2 && std::string_view(row.locale) != "C")
            continue; // the format lies in the registry there, which all tests share
        const AgentFolder::Environment environment{{"LC_ALL", row.locale}, {"LANG", row.locale}};
        EXPECT_EQ(folder.Run({row.step}, environment).answers, std::string(row.shown) + "\n")
            << row.locale << " " << row.step;
    }
}

} // namespace
