// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <regex>

static std::string Utf8(const ZTString& text)
{
    return static_cast<const char*>(StrConverter(text));
}

TEST(FileNames, HoldOnlyWhatBothSystemsAllow)
{
    const std::tuple<std::string, std::string, const char*, const char*> rows[] = {
        {"a<b>c:d\"e/f\\g|h?i*j", "a_b_c_d_e_f_g_h_i_j", "_", "each forbidden character"},
        {"a\x01\n\x1F\x7F"
         "b",
         "a____b", "_", "control characters"},
        {"ü 東 😀 \uE000", "ü 東 😀 \uE000", "_", "other alphabets and astral characters stay"},
        {"name. .", "name___", "_", "dots and blanks at the end"},
        {" .name", " .name", "_", "but not in front"},
        {"", "_", "_", "an empty name"},
        {".", "_", "_", "this directory"},
        {"..", "__", "_", "the one above"},
        {"nul.txt", "_nul.txt", "_", "a device with an extension, in any case"},
        {"Com7 .log", "_Com7 .log", "_", "a blank before the extension does not help"},
        {"LPT²", "_LPT²", "_", "superscript digits count"},
        {"CONE", "CONE", "_", "no device"},
        {"COM10", "COM10", "_", "no device either"},
        {"a/b", "ab", "", "nothing in its place"},
        {"C/ON.", "_CON", "", "a device that arises by that, and a dot that goes"},
        {"///", "_", "", "nothing left"},
        {std::string(300, 'x'), std::string(251, 'x'), "_", "room for an extension of four"},
        {Repeated("東", 100), Repeated("東", 83), "_", "bytes count, and no character is cut"},
        {Repeated("😀", 70), Repeated("😀", 62), "_", "nor half of an astral one"},
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
    for (const char* device : {"CON", "PRN", "aux", "NUL", "CONIN$", "CONOUT$", "COM1", "LPT9", "COM³"})
    {
        ZTString name(device);
        RemoveIllegalFileSystemCharacters(name, L"_");
        EXPECT_EQ(Utf8(name), std::string("_") + device);
    }
    ZTString lone(std::wstring{L'a', wchar_t{0xD83D}, wchar_t{0xDC00}, wchar_t{0xDC00}, L'b'}.c_str());
    RemoveIllegalFileSystemCharacters(lone, L"_");
    EXPECT_EQ(Utf8(lone), RunsOnWindows() ? "a🐀_b" : "a___b") << "halves of surrogate pairs";
}

TEST(Numbers, AreReadAsAWhole)
{
    std::vector<unsigned long> read;
    for (const wchar_t* text : {L"42", L" \t7 ", L"007", L"0", L"0xA", L"0x1F", L"0XfF", L"4294967295"})
        read.push_back(wtodw(text));
    EXPECT_EQ(read, (std::vector<unsigned long>{42, 7, 7, 0, 10, 31, 255, 0xFFFFFFFF}));
    for (const wchar_t* none : {L"", L" ", L"0x", L"0xg", L"12ab", L"1 2", L"x10", L"-1", L"+1", L"seven",
                                L"\u0661", L"4294967296", L"99999999999999999999999999", L"0x100000000"})
        EXPECT_EQ(wtodw(none), 0xFFFFFFFF) << Utf8(none);
    EXPECT_EQ(wtodw(nullptr), 0xFFFFFFFF);
}

TEST(Files, ThatAreLinksAreKnown)
{
    const auto isLink = [](DWORD attributes, DWORD tag)
    {
        WIN32_FIND_DATAW data{};
        data.dwFileAttributes = attributes;
        data.dwReserved0 = tag;
        return IsFileOrDirLink(data);
    };
    constexpr DWORD kDirectory = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY;
    EXPECT_TRUE(isLink(kDirectory, IO_REPARSE_TAG_SYMLINK) && isLink(kDirectory, IO_REPARSE_TAG_MOUNT_POINT));
    EXPECT_FALSE(isLink(kDirectory, 0x9000001A)) << "a file that is kept in a cloud";
    EXPECT_FALSE(isLink(FILE_ATTRIBUTE_DIRECTORY, IO_REPARSE_TAG_SYMLINK)) << "the tag means nothing then";
}

TEST(SystemErrors, ReadAsCodeAndTextInOneLine)
{
    const auto message = [](DWORD code)
    { return GetSystemErrorMessage(code, eSysErrMsgPlain, eMonitorNone, false); };
    EXPECT_NE(message(ERROR_FILE_NOT_FOUND), L"2: Unknown error.");
    EXPECT_EQ(message(29999), L"29999: Unknown error.");
    EXPECT_EQ(message(0x80000000), L"0x80000000: Unknown error.");
    const std::regex oneLine("[0-9]+: [^ \n]([^\n]*[^ \n])?");
    std::string all;
    for (DWORD code = 0; code < 1200; ++code)
    {
        EXPECT_TRUE(std::regex_match(Utf8(message(code)), oneLine)) << Utf8(message(code));
        all += Utf8(message(code)) + "\n";
    }
    if (!RunsOnWindows()) // Wine has words of its own
        EXPECT_EQ(CRC64(all.data(), all.size()), 2430217514975525191U)
            << std::regex_replace(all, std::regex("\\d+: Unknown error.\n"), "");
}
