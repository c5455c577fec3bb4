// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

static std::string Utf8(const ZTString& text)
{
    return static_cast<const char*>(StrConverter(text));
}

TEST(FileNames, HoldOnlyWhatBothSystemsAllow)
{
    const std::tuple<std::string, std::string, const char*, const char*> rows[] = {
        {"Logs-2023-9-5", "Logs-2023-9-5", "_", "nothing to do"},
        {"a<b>c:d\"e/f\\g|h?i*j", "a_b_c_d_e_f_g_h_i_j", "_", "each forbidden character"},
        {"a\x01\n\x1F\x7F"
         "b",
         "a____b", "_", "control characters"},
        {"\xC3\xBC \xE6\x9D\xB1 \xF0\x9F\x98\x80", "\xC3\xBC \xE6\x9D\xB1 \xF0\x9F\x98\x80", "_",
         "other alphabets and astral characters stay"},
        {"name. .", "name___", "_", "dots and blanks at the end"},
        {" .name", " .name", "_", "but not in front"},
        {"", "_", "_", "an empty name"},
        {".", "_", "_", "this directory"},
        {"..", "__", "_", "the one above"},
        {"../../etc/passwd", ".._.._etc_passwd", "_", "no way out of the directory"},
        {"nul.txt", "_nul.txt", "_", "a device with an extension, in any case"},
        {"Com7 .log", "_Com7 .log", "_", "a blank before the extension does not help"},
        {"LPT\xC2\xB2", "_LPT\xC2\xB2", "_", "superscript digits count"},
        {"CONE", "CONE", "_", "no device"},
        {"COM10", "COM10", "_", "no device either"},
        {"a/b", "ab", "", "nothing in its place"},
        {"C/ON.", "_CON", "", "a device that arises by that, and a dot that goes"},
        {"///", "_", "", "nothing left"},
        {std::string(300, 'x'), std::string(251, 'x'), "_", "room for an extension of four"},
        {Repeated("\xE6\x9D\xB1", 100), Repeated("\xE6\x9D\xB1", 83), "_",
         "bytes count, and no character is cut"},
        {Repeated("\xF0\x9F\x98\x80", 70), Repeated("\xF0\x9F\x98\x80", 62), "_",
         "nor half of an astral one"},
        {std::string(250, 'x') + " y", std::string(250, 'x'), "_", "the cut leaves no blank at the end"},
        {"con" + std::string(250, ' ') + "x", "_con", "_", "nor a device"},
        {"?", "_con .xcon .x", "con .x", "what stands for a character makes a device"},
    };
    for (const auto& [text, expected, replacement, why] : rows)
    {
        ZTString name(text.c_str());
        RemoveIllegalFileSystemCharacters(name, ZTString(replacement));
        EXPECT_EQ(Utf8(name), expected) << why;
    }
    for (const char* device :
         {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$", "COM1", "LPT9", "COM\xC2\xB3"})
    {
        ZTString name(device);
        RemoveIllegalFileSystemCharacters(name, L"_");
        EXPECT_EQ(Utf8(name), std::string("_") + device);
    }
    ZTString lone(std::wstring{L'a', wchar_t{0xD83D}, wchar_t{0xDC00}, wchar_t{0xDC00}, L'b'}.c_str());
    RemoveIllegalFileSystemCharacters(lone, L"_");
    EXPECT_EQ(Utf8(lone), RunsOnWindows() ? "a\xF0\x9F\x90\x80_b" : "a___b") << "halves of surrogate pairs";
}

TEST(Numbers, AreReadAsAWhole)
{
    const std::pair<const wchar_t*, unsigned long> rows[] = {
        {L"42", 42},
        {L" \t7 ", 7},
        {L"007", 7},
        {L"0", 0},
        {L"0x1F", 31},
        {L"0XfF", 255},
        {L"4294967295", 0xFFFFFFFF},
    };
    for (const auto& [text, number] : rows)
        EXPECT_EQ(wtodw(text), number) << Utf8(text);
    for (const wchar_t* none : {L"", L" ", L"0x", L"0xg", L"12ab", L"1 2", L"x10", L"-1", L"+1", L"seven",
                                L"\u0661", L"4294967296", L"99999999999999999999999999", L"0x100000000"})
        EXPECT_EQ(wtodw(none), 0xFFFFFFFF) << Utf8(none);
    EXPECT_EQ(wtodw(nullptr), 0xFFFFFFFF);
}

TEST(FileTimes, BecomeSecondsRoundedDown)
{
    const std::pair<std::uint64_t, std::int64_t> rows[] = {
        {116'444'736'000'000'000, 0},
        {116'444'736'009'999'999, 0},
        {116'444'736'010'000'000, 1},
        {116'444'735'999'999'999, -1},
        {116'444'735'990'000'000, -1},
        {0, -11'644'473'600},
        {133'452'576'000'000'000, 1'700'784'000},
    };
    for (const auto& [ticks, seconds] : rows)
        EXPECT_EQ(FILETIMEToTimeT({static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)}), seconds)
            << ticks;
}

TEST(Files, AreWrittenAsUtf8)
{
    const TestFolder folder;
    const ZTString start = ZTString(folder.Path().string().c_str()) + L"/";
    const ZTString list = start + L"list\u00FC.txt";
    const std::filesystem::path name = u8"list\u00FC.txt";
    EXPECT_EQ(ZTGetFileSize(list), 0u) << "not there";
    EXPECT_TRUE(WriteTextFileAsUTF8(list, L"", true, true, false, false));
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / name)) << "an empty text makes an empty file";
    EXPECT_TRUE(WriteTextFileAsUTF8(list, L"one\r\n\u00FC", true, true, false, false));
    EXPECT_EQ(folder.Read(name), "one\r\n\xC3\xBC") << "line ends stay";
    EXPECT_EQ(ZTGetFileSize(list), 7u);
    EXPECT_TRUE(WriteTextFileAsUTF8(list, L"two", true, true, false, false));
    EXPECT_EQ(folder.Read(name), "two") << "replaced";
    EXPECT_FALSE(WriteTextFileAsUTF8(start + L"missing/x", L"x", true, true, false, false));
    EXPECT_EQ(ZTGetFileSize(start), 0u) << "a directory";
}

TEST(Files, ThatAreLinksAreKnown)
{
    WIN32_FIND_DATAW data{};
    data.dwFileAttributes = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY;
    constexpr DWORD kCloudFile = 0x9000001A;
    for (const auto& [tag, link] : {std::pair<DWORD, bool>{IO_REPARSE_TAG_SYMLINK, true},
                                    {IO_REPARSE_TAG_MOUNT_POINT, true},
                                    {kCloudFile, false}})
    {
        data.dwReserved0 = tag;
        EXPECT_EQ(IsFileOrDirLink(data), link) << tag;
    }
    data.dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
    data.dwReserved0 = IO_REPARSE_TAG_SYMLINK; // means nothing without the attribute
    EXPECT_FALSE(IsFileOrDirLink(data));
}

TEST(SystemErrors, ReadAsCodeAndTextInOneLine)
{
    const auto message = [](DWORD code)
    { return GetSystemErrorMessage(code, eSysErrMsgPlain, eMonitorNone, false); };
    EXPECT_EQ(message(ERROR_FILE_NOT_FOUND).Left(3), L"2: ");
    EXPECT_NE(message(ERROR_FILE_NOT_FOUND), L"2: Unknown error.");
    EXPECT_EQ(message(29999), L"29999: Unknown error.");
    EXPECT_EQ(message(0xEFFFFFFF), L"0xEFFFFFFF: Unknown error.");
    for (DWORD code = 0; code < 300; ++code)
    {
        EXPECT_GT(message(code).GetLength(), 5) << code;
        EXPECT_EQ(message(code).Find(L'\n'), -1) << code;
        EXPECT_EQ(ZTString(message(code)).TrimRight(), message(code)) << code;
    }
}
