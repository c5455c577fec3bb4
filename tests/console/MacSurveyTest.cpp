// SPDX-License-Identifier: MIT
// The survey on lists of records that the test makes, its three rules and its log.
#include "console/MacSurvey.h"

#include <gtest/gtest.h>

#include <iterator>

struct Adapter
{
    std::vector<BYTE> address;
    ULONG type = IF_TYPE_ETHERNET_CSMACD;
};

// Its log, which ends with its result. Those that lie beyond the end are not looked at.
static std::wstring SurveyOf(const std::vector<Adapter>& adapters, std::size_t beyond = 0)
{
    std::vector<IP_ADAPTER_ADDRESSES> records(std::max<std::size_t>(adapters.size(), 1));
    for (std::size_t i = 0; i < adapters.size(); ++i)
    {
        records[i].Next = i + 1 < adapters.size() ? &records[i + 1] : nullptr;
        records[i].IfType = adapters[i].type;
        records[i].PhysicalAddressLength = static_cast<ULONG>(adapters[i].address.size());
        std::copy_n(adapters[i].address.begin(),
                    std::min(adapters[i].address.size(), sizeof records[i].PhysicalAddress),
                    records[i].PhysicalAddress);
    }
    std::wstring log;
    const std::wstring result =
        ChooseMacAddress(records.data(), records.data() + records.size() - beyond, log);
    EXPECT_EQ(log.substr(log.rfind(L", ret=") + 6), result);
    return log;
}

TEST(MacSurvey, TakesTheLowestAddressOfTheStrictestRuleThatFindsOne)
{
    // A length beyond the field passes the walk up to 15; the text ends with the field.
    const std::vector<BYTE> longest = {0x10, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14};
    std::vector<BYTE> tooLong = longest;
    tooLong.push_back(15);
    const std::tuple<const char*, std::vector<Adapter>, std::wstring> kCases[] = {
        {"first byte 0 is left to the second rule",
         {{{}, IF_TYPE_SOFTWARE_LOOPBACK}, {{0x00, 0x11, 0x22, 0x33, 0x44, 0x55}}},
         L"try:0-addrLen=0,add=0[gu:1,v:0,fvz:1],try:1-addrLen=0,add=1[gu:1,v:0,fvz:1],mac:001122334455,"
         L"macCount=1, ret=001122334455"},
        {"only locally administered and virtual ones: the last rule takes them all",
         {{{0x0a, 0, 0, 0, 0, 2}}, {{0x04, 0, 0, 0, 0, 9}, IF_TYPE_TUNNEL}, {{0x0a, 0, 0, 0, 0, 1}}},
         L"try:0-add=0[gu:0,v:0,fvz:0],add=0[gu:1,v:1,fvz:0],add=0[gu:0,v:0,fvz:0],"
         L"try:1-add=0[gu:0,v:0,fvz:0],add=0[gu:1,v:1,fvz:0],add=0[gu:0,v:0,fvz:0],"
         L"try:2-add=1[gu:0,v:0,fvz:0],mac:0A0000000002,add=1[gu:1,v:1,fvz:0],mac:040000000009,"
         L"add=1[gu:0,v:0,fvz:0],mac:0A0000000001,macCount=3, ret=040000000009"},
        {"equal addresses count once, a lower one of a later rule does not compete",
         {{{0x10, 0, 0, 0, 0, 1}}, {{0x02, 0, 0, 0, 0, 0}}, {{0x10, 0, 0, 0, 0, 1}}},
         L"try:0-add=1[gu:1,v:0,fvz:0],mac:100000000001,add=0[gu:0,v:0,fvz:0],add=1[gu:1,v:0,fvz:0],"
         L"mac:100000000001,macCount=1, ret=100000000001"},
        {"the shorter of two with the same beginning",
         {{{0x10, 0x20, 0x30}}, {{0x10, 0x20}}},
         L"try:0-add=1[gu:1,v:0,fvz:0],mac:102030,add=1[gu:1,v:0,fvz:0],mac:1020,macCount=2, ret=1020"},
        {"lengths that no platform gives",
         {{longest}, {tooLong}},
         L"try:0-add=1[gu:1,v:0,fvz:0],mac:1001020304050607,addrLen=16,macCount=1, ret=1001020304050607"},
        {"no adapter: the zeroed buffer is one record without address",
         {},
         L"try:0-addrLen=0,try:1-addrLen=0,try:2-addrLen=0,macCount=0, ret="},
    };
    for (const auto& [why, adapters, log] : kCases)
        EXPECT_EQ(SurveyOf(adapters), log) << why;
    EXPECT_EQ(SurveyOf({{}, {{0x10}}}, 1), SurveyOf({}));
}

TEST(MacSurvey, TellsTheSizeThatTheListNeeds)
{
    ULONG needed = 0;
    GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, nullptr, &needed);
    std::wstring log;
    const std::wstring result = GetMACAddress(log);
    std::vector<IP_ADAPTER_ADDRESSES> list(needed / sizeof(IP_ADAPTER_ADDRESSES) + 1);
    GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, list.data(), &needed);
    std::wstring survey;
    EXPECT_EQ(result, ChooseMacAddress(list.data(), list.data() + list.size(), survey));
    EXPECT_EQ(log, L"BufSize=" + std::to_wstring(needed) + L", ret=0, " + survey);
}

TEST(FormatToBuffer, FillsPlaceholdersAndCutsAtTheRoom)
{
    const std::tuple<const wchar_t*, PlaceholderValues, int, int, const wchar_t*> kCases[] = {
        {L"{:02X}{}", {10, 3}, 5, 3, L"0A3"},
        {L"{}-{}", {1, 2}, 10, 3, L"1-2"},
        {L"{1}{}", {1, 2}, 10, 2, L"22"}, // the running index counts the placeholders closed so far
        {L"a{1:u}b", {1}, 10, 4, L"a@@@"},
        {L"ab{1}", {1}, 4, 3, L"ab@"},
        {L"abcdef", {}, 4, 3, L"abc"},
        {L"abc", {}, 4, 3, L"abc"},
        {L"", {}, 1, 0, L""},
    };
    for (const auto& [format, values, size, result, text] : kCases)
    {
        wchar_t buffer[16] = L"***************";
        EXPECT_EQ(FormatToBuffer(format, buffer, size, values), result) << format;
        EXPECT_STREQ(buffer, text) << format;
        EXPECT_EQ(buffer[size], L'*') << format;
    }
    wchar_t small[4];
    EXPECT_EQ(FormatToBuffer(L"{0:s}", small, 4, {L"too long"}), -1);
    EXPECT_EQ(FormatToBuffer(L"ab{0:s}", small, 4, {L"cde"}), -1);
    EXPECT_EQ(FormatToBuffer(L"{10}", small, 4, {100, 1, 2, 3, 4, 5, 6, 7, 8, 9, 7}), 1);
}
