// SPDX-License-Identifier: MIT
// The report of this very machine, as the program that ships writes it.
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <ctime>
#include <regex>

using testing::HasSubstr;

// One line of the report; a prefix in front means that an append of its own begins there.
constexpr const char* kReport[] = {
    R"(\[\d+ms\] Current Computer: \S+)",
    R"(\[\d+ms\] Current User: .+)",
    R"(\[\d+ms\] Current local time: .+)",
    R"(\[\d+ms\] Current RFC822 mail time: (Sun|Mon|Tue|Wed|Thu|Fri|Sat), \d{1,2} [A-Z][a-z][a-z] \d{4} \d\d:\d\d:\d\d [+-]\d{4})",
    R"(\[\d+ms\] Current ISO8601 time: \d{4}-\d\d-\d\dT\d\d:\d\d:\d\d)",
    R"(\[\d+ms\] Current ODBC time in UTC: \{ts '\d{4}-\d\d-\d\d \d\d:\d\d:\d\d' \})",
    R"(\[\d+ms\] Time Zone Info: (Standard Time.  Bias=-?\d+|Daylight Time.  Bias=-?\d+|Can't determine if standard/daylight time))",
    R"(\[\d+ms\] Timezone base bias: -?\d+)",
    R"(Standard Bias: -?\d+)",
    R"(Daylight Bias: -?\d+)",
    R"(Timezone Standard Name: .+)",
    R"(Timezone Daylight Name: .+)",
    R"(\[\d+ms\] Daylight transitions: 2017-\d\d-\d\d, 2017-\d\d-\d\d)",
    R"(\[\d+ms\] Daylight transitions: 2018-\d\d-\d\d, 2018-\d\d-\d\d)",
    R"(\[\d+ms\] Daylight transitions: 2019-\d\d-\d\d, 2019-\d\d-\d\d)",
    R"(\[\d+ms\] Daylight transitions: 2020-\d\d-\d\d, 2020-\d\d-\d\d)",
    R"(\[\d+ms\] Daylight transitions: 2021-\d\d-\d\d, 2021-\d\d-\d\d)",
    R"(\[\d+ms\] Daylight transitions: 2022-\d\d-\d\d, 2022-\d\d-\d\d)",
    R"(\[\d+ms\] Daylight transitions: 2023-\d\d-\d\d, 2023-\d\d-\d\d)",
    R"(\[\d+ms\] 1\.2 = 1\.2)",
    R"(\[\d+ms\] Formated 1\.2 = 1.2.*)",
    R"(\[\d+ms\] MAC address: ([0-9A-F]{2})*)",
    R"(\[\d+ms\] MAC log: BufSize=\d+, ret=\d+, try:0-.*macCount=\d+, ret=([0-9A-F]{2})*)",
    R"(\[\d+ms\] User default locale: \[[A-Za-z-]*\] \(x[0-9A-F]{4,}\))",
    R"(\[\d+ms\] System default locale: \[[A-Za-z-]*\] \(x[0-9A-F]{4,}\))",
    R"(\[\d+ms\] Call Zq: 17)",
};

TEST(Report, StandsInItsOrderAndTheProgramEndsWithZero)
{
    const ProgramFolder folder;
    WriteFile(folder.Path() / "Tavo.settings.json", R"({"CustomerServiceText": "Call Zq: 17"})");
    const ProgramOutcome outcome = folder.Run({});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.console << outcome.errors;

    std::vector<std::string> lines = Lines(outcome.console);
    while (!lines.empty() && lines.front().find("Current Computer: ") == std::string::npos)
        lines.erase(lines.begin());
    ASSERT_GE(lines.size(), std::size(kReport)) << outcome.console << outcome.errors;
    for (std::size_t i = 0; i < std::size(kReport); ++i)
        EXPECT_TRUE(std::regex_match(lines[i], std::regex(kReport[i])))
            << "line " << i << ": " << lines[i] << "\nwanted: " << kReport[i];
    EXPECT_EQ(lines[0].substr(lines[0].find(": ") + 2),
              RunsOnWindows() ? std::getenv("COMPUTERNAME")
                              : Lines(ReadFile("/proc/sys/kernel/hostname")).at(0));
    const auto last = [](const std::string& line) { return line.substr(line.find_last_of(" =") + 1); };
    EXPECT_EQ(last(lines[21]), last(lines[22])) << "the address and what the survey has chosen";
}

TEST(Report, TellsTheTimeZoneOfTheMachineAndTheLocaleOfItsUser)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "a Windows machine has its zone, and a user his locale, whatever a process says";
    const time_t start = time(nullptr);
    const int month = gmtime(&start)->tm_mon + 1;
    using Variables = std::vector<std::pair<std::string, std::string>>;
    // The first variable that is set and not empty names the locale.
    const std::tuple<const char*, Variables, std::vector<std::string>> rows[] = {
        {"America/St_Johns",
         {{"LC_ALL", "ru_RU.KOI8-R"}, {"LC_NUMERIC", "en_US.UTF-8"}},
         {"Timezone base bias: 210", "Daylight Bias: -60",
          "Timezone Standard Name: Newfoundland Standard Time", "Standard Bias: 0",
          "Timezone Daylight Name: Newfoundland Daylight Time",
          "Daylight transitions: 2023-03-12, 2023-11-05", "User default locale: [ru-ru] (x0419)",
          "Formated 1.2 = 1,2"}},
        {"Asia/Kolkata",
         {{"LC_ALL", ""}, {"LC_NUMERIC", "de_DE.UTF-8"}, {"LANG", "en_US.UTF-8"}},
         {"Timezone base bias: -330", "Daylight Bias: -60", "Timezone Standard Name: India Standard Time",
          "Daylight transitions: 2023-00-00, 2023-00-00", "User default locale: [de-de] (x0407)",
          "System default locale: [en-us] (x0409)", "1.2 = 1.2", "Formated 1.2 = 1,2"}},
        {"UTC",
         {{"LC_ALL", "C"}},
         {"Time Zone Info: Can't determine if standard/daylight time", "Timezone base bias: 0",
          "Daylight Bias: 0", "Timezone Standard Name: Coordinated Universal Time",
          "Daylight transitions: 2023-00-00, 2023-00-00", "User default locale: [en-us] (x0409)"}},
        // Daylight time but for the turn of the year, and standard time in this half of the year.
        {"AAA-3BBB,J2/0,J365/24",
         {{"LC_ALL", ""}, {"LC_NUMERIC", ""}, {"LANG", "fr_FR.UTF-8"}},
         {"Time Zone Info: Daylight Time.  Bias=-60", "User default locale: [fr-fr] (x040C)",
          "Formated 1.2 = 1,2"}},
        // As in Dublin, where the C library calls it daylight time while the clock is behind.
        {"AAA-1BBB0,J2/0,J365/24", {}, {"Time Zone Info: Standard Time.  Bias=0"}},
        {month < 7 ? "AAA-3BBB,J250,J300" : "AAA-3BBB,J50,J100",
         {},
         {"Time Zone Info: Standard Time.  Bias=0"}},
    };
    // As strftime has them, and whether in UTC.
    constexpr std::pair<const char*, bool> kTimes[] = {
        {"\nCurrent local time: %a %b %e %H:%M:%S %Y\n", false},
        {"\nCurrent RFC822 mail time: %a, %-d %b %Y %H:%M:%S %z\n", false},
        {"\nCurrent ISO8601 time: %Y-%m-%dT%H:%M:%S\n", false},
        {"\nCurrent ODBC time in UTC: {ts '%Y-%m-%d %H:%M:%S' }\n", true}};
    const ProgramFolder folder;
    for (auto [zone, variables, lines] : rows)
    {
        variables.emplace_back("TZ", zone);
        const Variable variable("TZ", zone);
        const time_t before = time(nullptr);
        const std::string console = WithoutTimes(folder.Run({.environment = variables}).console);
        for (const std::string& line : lines)
            EXPECT_THAT(console, HasSubstr("\n" + line + "\n")) << zone;
        for (const auto& [format, isUtc] : kTimes)
        {
            std::vector<testing::Matcher<std::string>> moments;
            for (time_t moment = before; moment <= time(nullptr); ++moment)
            {
                char line[80];
                std::strftime(line, sizeof line, format, isUtc ? gmtime(&moment) : localtime(&moment));
                moments.push_back(HasSubstr(line));
            }
            EXPECT_THAT(console, testing::AnyOfArray(moments)) << zone;
        }
    }
}
