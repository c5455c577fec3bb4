// SPDX-License-Identifier: MIT
// The report of this very machine, as the program that ships writes it.
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <windows.h>

#include <regex>
#include <sstream>

using testing::HasSubstr;

namespace
{

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

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
    R"(\[\d+ms\] \S.*)",
};

// The report's lines out of all that the console showed, from the first one on.
std::vector<std::string> ReportLines(const ProgramOutcome& outcome)
{
    std::vector<std::string> lines = Lines(outcome.console);
    const auto first = std::find_if(lines.begin(), lines.end(),
                                    [](const std::string& line)
                                    { return line.find("Current Computer: ") != std::string::npos; });
    return {first, lines.end()};
}

std::string LineWith(const ProgramOutcome& outcome, const std::string& start)
{
    for (const std::string& line : Lines(WithoutTimes(outcome.console)))
        if (line.rfind(start, 0) == 0)
            return line;
    return "no line begins with " + start;
}

TEST(Report, StandsInItsOrderAndTheProgramEndsWithZero)
{
    const ProgramFolder folder;
    const ProgramOutcome outcome = folder.Run({});
    ASSERT_TRUE(outcome.ended) << outcome.console << outcome.errors;
    EXPECT_EQ(outcome.exitCode, 0);

    const std::vector<std::string> lines = ReportLines(outcome);
    ASSERT_GE(lines.size(), std::size(kReport)) << outcome.console << outcome.errors;
    for (std::size_t i = 0; i < std::size(kReport); ++i)
        EXPECT_TRUE(std::regex_match(lines[i], std::regex(kReport[i])))
            << "line " << i << ": " << lines[i] << "\nwanted: " << kReport[i];
    EXPECT_THAT(folder.Log(), HasSubstr("finished tavo app"));
}

TEST(Report, AnUnattendedRunThatMeetsAnotherShowsItsReportAndEnds)
{
    const HANDLE other = CreateEventW(nullptr, FALSE, FALSE, L"Global\\Tavo_FTP");
    ASSERT_NE(other, nullptr);
    ASSERT_NE(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS)) << "a shipment runs on this machine";
    const ProgramFolder folder;
    const ProgramOutcome outcome = folder.Run({{"-FTP_LOG", "x", "-AUTOCLOSE", "yes"}, {}, {}});
    CloseHandle(other);
    ASSERT_TRUE(outcome.ended) << outcome.console;
    if (sizeof(wchar_t) == 4) // a window closes before anybody could read it
    {
        EXPECT_GE(ReportLines(outcome).size(), std::size(kReport));
    }
    EXPECT_EQ(outcome.console.find("FTP_LOG:"), std::string::npos) << outcome.console;
    EXPECT_THAT(folder.Log(), HasSubstr("finished tavo app"));
}

TEST(Report, SwitchesWithoutAValueStartNothing)
{
    const ProgramFolder folder;
    const ProgramOutcome outcome = folder.Run({{"-AUTOCLOSE", "-FTP_LOG"}, {}, {}});
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.console.find("FTP_LOG:"), std::string::npos) << outcome.console;
}

struct ZoneRow
{
    const char* zone;
    const char* baseBias;
    const char* daylightBias;
    const char* standardName;
    const char* transitions2023;
    const char* mailZone; // a pattern where the season decides
    const char* why;
};

constexpr ZoneRow kZones[] = {
    {"America/St_Johns", "210", "-60", "Newfoundland Standard Time", "2023-03-12, 2023-11-05", "-0[23]30",
     "half hours west"},
    {"Asia/Kolkata", "-330", "-60", "India Standard Time", "2023-00-00, 2023-00-00", "\\+0530",
     "no daylight time, but the bias that it would have"},
    {"Australia/Lord_Howe", "-630", "-30", "Lord Howe Standard Time", "2023-04-02, 2023-10-01",
     "\\+1(030|100)", "half an hour, southern"},
    {"Europe/Berlin", "-60", "-60", "W. Europe Standard Time", "2023-03-26, 2023-10-29", "\\+0[12]00",
     "northern"},
    {"UTC", "0", "0", "Coordinated Universal Time", "2023-00-00, 2023-00-00", "\\+0000", "none at all"},
};

TEST(Report, TellsTheTimeZoneOfTheMachine)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "the zone of a Windows machine is set for the machine, not for a process";
    const ProgramFolder folder;
    for (const ZoneRow& row : kZones)
    {
        SCOPED_TRACE(std::string(row.zone) + ": " + row.why);
        const ProgramOutcome outcome = folder.Run({{}, {}, {{"TZ", row.zone}}});
        EXPECT_EQ(LineWith(outcome, "Timezone base bias: "),
                  std::string("Timezone base bias: ") + row.baseBias);
        EXPECT_EQ(LineWith(outcome, "Daylight Bias: "), std::string("Daylight Bias: ") + row.daylightBias);
        EXPECT_EQ(LineWith(outcome, "Timezone Standard Name: "),
                  std::string("Timezone Standard Name: ") + row.standardName);
        EXPECT_EQ(LineWith(outcome, "Daylight transitions: 2023"),
                  std::string("Daylight transitions: ") + row.transitions2023);
        const std::string mail = LineWith(outcome, "Current RFC822 mail time: ");
        EXPECT_TRUE(std::regex_match(mail, std::regex(std::string(".* ") + row.mailZone))) << mail;
    }
}

struct LocaleRow
{
    const char* language;
    const char* user;
};

constexpr LocaleRow kLocales[] = {
    {"", "User default locale: [en-us] (x0409)"},
    {"C", "User default locale: [en-us] (x0409)"},
    {"de_DE.UTF-8", "User default locale: [de-de] (x0407)"},
    {"ru_RU.KOI8-R", "User default locale: [ru-ru] (x0419)"},
    {"pt_BR.UTF-8", "User default locale: [pt-br] (x0416)"},
};

TEST(Report, TellsTheLocaleOfItsUser)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "the locale of a Windows user is set for the user, not for a process";
    const ProgramFolder folder;
    for (const LocaleRow& row : kLocales)
    {
        const ProgramOutcome outcome =
            folder.Run({{}, {}, {{"LC_ALL", row.language}, {"LANG", row.language}, {"LC_CTYPE", ""}}});
        EXPECT_EQ(LineWith(outcome, "User default locale: "), row.user) << row.language;
    }
}

} // namespace
