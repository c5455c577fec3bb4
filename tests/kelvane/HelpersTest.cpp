// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace
{

std::string Utf8(const ZTString& text)
{
    return static_cast<const char*>(StrConverter(text));
}

std::string Repeated(const std::string& part, std::size_t times)
{
    std::string text;
    while (times-- > 0)
        text += part;
    return text;
}

struct NameRow
{
    std::string name;
    std::string expected;
    const char* replacement;
    const char* why;
};

TEST(FileNames, HoldOnlyWhatBothSystemsAllow)
{
    const NameRow rows[] = {
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
        {"CON", "_CON", "_", "a device"},
        {"nul.txt", "_nul.txt", "_", "a device with an extension, in any case"},
        {"Com7 .log", "_Com7 .log", "_", "a blank before the extension does not help"},
        {"LPT\xC2\xB2", "_LPT\xC2\xB2", "_", "superscript digits count"},
        {"conin$", "_conin$", "_", "the console's own"},
        {"CONE", "CONE", "_", "no device"},
        {"COM10", "COM10", "_", "no device either"},
        {"a/b", "ab", "", "nothing in its place"},
        {"C/ON.", "_CON", "", "a device that arises by that, and a dot that goes"},
        {"///", "_", "", "nothing left"},
        {"a/b", "ab", "/", "a replacement that is forbidden itself"},
        {"a.", "a", ".", "a replacement that may not stand at the end"},
        {"a/b", "a--b", "--", "a longer replacement"},
        {std::string(300, 'x'), std::string(251, 'x'), "_", "room for an extension of four"},
        {Repeated("\xE6\x9D\xB1", 100), Repeated("\xE6\x9D\xB1", 83), "_",
         "bytes count, and no character is cut"},
        {Repeated("\xF0\x9F\x98\x80", 70), Repeated("\xF0\x9F\x98\x80", 62), "_",
         "nor half of an astral one"},
        {std::string(250, 'x') + " y", std::string(250, 'x'), "_", "the cut leaves no blank at the end"},
    };
    for (const NameRow& row : rows)
    {
        ZTString name(row.name.c_str());
        RemoveIllegalFileSystemCharacters(name, ZTString(row.replacement));
        EXPECT_EQ(Utf8(name), row.expected) << row.why;
    }
    ZTString lone(std::wstring{L'a', wchar_t{0xD83D}, wchar_t{0xDC00}, wchar_t{0xDC00}, L'b'}.c_str());
    RemoveIllegalFileSystemCharacters(lone, L"_");
    EXPECT_EQ(Utf8(lone), sizeof(wchar_t) == 2 ? "a\xF0\x9F\x90\x80_b" : "a___b")
        << "halves of surrogate pairs";
    ZTString null(L"a/b");
    RemoveIllegalFileSystemCharacters(null, nullptr);
    EXPECT_EQ(null, L"ab");
}

TEST(Numbers, AreReadUpToTheFirstCharacterThatIsNoDigit)
{
    struct Row
    {
        const wchar_t* text;
        unsigned long number;
    };
    const Row rows[] = {
        {L"0", 0},
        {L"42", 42},
        {L" \t7", 7},
        {L"007", 7},
        {L"12ab", 12},
        {L"0x1F", 31},
        {L"0XfFz", 255},
        {L"0x", 0},
        {L"0xg", 0},
        {L"x10", 0},
        {L"", 0},
        {L"-1", 0},
        {L"+1", 0},
        {L"seven", 0},
        {L"1 2", 1},
        {L"4294967295", 0xFFFFFFFF},
        {L"4294967296", 0xFFFFFFFF},
        {L"99999999999999999999999999", 0xFFFFFFFF},
        {L"0xFFFFFFFF", 0xFFFFFFFF},
        {L"0x100000000", 0xFFFFFFFF},
        {L"\u0661", 0},
        {nullptr, 0},
    };
    for (const Row& row : rows)
        EXPECT_EQ(wtodw(row.text), row.number) << Utf8(row.text);
}

TEST(FileTimes, BecomeSecondsRoundedDown)
{
    struct Row
    {
        std::uint64_t ticks;
        std::int64_t seconds;
    };
    const Row rows[] = {{116'444'736'000'000'000, 0},
                        {116'444'736'009'999'999, 0},
                        {116'444'736'010'000'000, 1},
                        {116'444'735'999'999'999, -1},
                        {116'444'735'990'000'000, -1},
                        {0, -11'644'473'600},
                        {133'452'576'000'000'000, 1'700'784'000},
                        {133'452'575'999'999'999, 1'700'783'999}};
    for (const Row& row : rows)
        EXPECT_EQ(FILETIMEToTimeT({static_cast<DWORD>(row.ticks), static_cast<DWORD>(row.ticks >> 32)}),
                  row.seconds)
            << row.ticks;
}

TEST(Texts, BecomeUtf8WithAMarkForWhatIsNoCharacter)
{
    EXPECT_EQ(Utf8(L"a\u00FC\u6771\U0001F600"), "a\xC3\xBC\xE6\x9D\xB1\xF0\x9F\x98\x80");
    EXPECT_EQ(Utf8(std::wstring{L'a', wchar_t{0xD800}, L'b'}.c_str()), "a\xEF\xBF\xBD"
                                                                       "b");
    EXPECT_EQ(Utf8(std::wstring{wchar_t{0xDC00}}.c_str()), "\xEF\xBF\xBD");
    EXPECT_STREQ(StrConverter(nullptr), "");
}

TEST(Texts, OfASetStandInOrderWithTheSeparatorBetweenThem)
{
    EXPECT_EQ(GetStringFromSet({}, L"\r\n"), L"");
    EXPECT_EQ(GetStringFromSet({L"b"}, L"\r\n"), L"b");
    EXPECT_EQ(GetStringFromSet({L"b", L"a", L"ab", L""}, L", "), L", a, ab, b");
}

class Files : public testing::Test
{
protected:
    Files() { std::filesystem::create_directory(mFolder); }
    ~Files() override { std::filesystem::remove_all(mFolder); }

    ZTString Path(const wchar_t* name) const { return ZTString(mFolder.string().c_str()) + L"/" + name; }
    static std::filesystem::path Native(const ZTString& path)
    {
        const std::string narrow = Utf8(path);
        return std::u8string(narrow.begin(), narrow.end());
    }
    std::string Content(const wchar_t* name) const
    {
        const std::ifstream file(Native(Path(name)), std::ios::binary);
        std::stringstream text;
        text << file.rdbuf();
        return text.str();
    }

    std::filesystem::path mFolder =
        std::filesystem::temp_directory_path() / ("kelvane-files-" + std::to_string(std::random_device()()));
};

TEST_F(Files, AreWrittenAsUtf8ByTheFlags)
{
    const ZTString path = Path(L"list\u00FC.txt");
    EXPECT_EQ(ZTGetFileSize(path), 0u) << "not there";
    EXPECT_TRUE(WriteTextFileAsUTF8(path, L"", true, true, false, false));
    EXPECT_TRUE(std::filesystem::exists(Native(path))) << "an empty text makes an empty file";
    EXPECT_TRUE(WriteTextFileAsUTF8(path, L"one\r\n\u00FC", true, true, false, false));
    EXPECT_EQ(Content(L"list\u00FC.txt"), "one\r\n\xC3\xBC") << "line ends stay";
    EXPECT_EQ(ZTGetFileSize(path), 7u);
    EXPECT_TRUE(WriteTextFileAsUTF8(path, L"two", true, true, false, false));
    EXPECT_EQ(Content(L"list\u00FC.txt"), "two") << "replaced";
    EXPECT_FALSE(WriteTextFileAsUTF8(path, L"three", false, true, false, false));
    EXPECT_EQ(Content(L"list\u00FC.txt"), "two") << "not to be overwritten";
    EXPECT_TRUE(WriteTextFileAsUTF8(path, L"four", false, true, true, true));
    EXPECT_EQ(Content(L"list\u00FC.txt"), "twofour") << "appended, without a mark in the middle";
    EXPECT_TRUE(WriteTextFileAsUTF8(Path(L"marked"), L"x", false, false, true, true));
    EXPECT_EQ(Content(L"marked"), "\xEF\xBB\xBFx");
    EXPECT_FALSE(WriteTextFileAsUTF8(Path(L"missing/x"), L"x", true, true, false, false));
    EXPECT_EQ(ZTGetFileSize(ZTString(mFolder.string().c_str())), 0u) << "a directory";
}

TEST_F(Files, ThatAreLinksAreKnown)
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
    EXPECT_EQ(GetSystemErrorMessage(ERROR_FILE_NOT_FOUND, eSysErrMsgPlain, eMonitorNone, false).Left(3),
              L"2: ");
    EXPECT_GT(GetSystemErrorMessage(ERROR_FILE_NOT_FOUND, eSysErrMsgPlain, eMonitorNone, false).GetLength(),
              10);
    EXPECT_EQ(GetSystemErrorMessage(29999, eSysErrMsgPlain, eMonitorNone, false), L"29999: Unknown error.");
    EXPECT_EQ(GetSystemErrorMessage(0xEFFFFFFF, eSysErrMsgPlain, eMonitorNone, false),
              L"0xEFFFFFFF: Unknown error.");
    for (DWORD code = 0; code < 300; ++code)
    {
        const ZTString text = GetSystemErrorMessage(code, eSysErrMsgPlain, eMonitorNone, false);
        EXPECT_EQ(text.Find(L'\n'), -1) << code;
        EXPECT_NE(text[text.GetLength() - 1], L' ') << code;
    }
}

TEST(Names, OfComputerAndUserAreThere)
{
    EXPECT_FALSE(GetLocalComputerName().IsEmpty());
    EXPECT_FALSE(GetUserNameW(NameUnknown).IsEmpty());
    EXPECT_EQ(GetUserNameW(NameUnknown).Find(L'\\'), -1) << "the bare name";
}

} // namespace
