// SPDX-License-Identifier: MIT
// The checksum tool, driven by messages. The sums are the checks that xz files carry over each text's bytes.
#include "crc64/DlgGetCRC64.h"
#include "crc64/TextChecksum.h"
#include "resources/resource.h"
#include "tests/support/ProgramFolder.h"
#include "tests/support/WindowProbe.h"

#include <gtest/gtest.h>

// Computes the sums of some texts as soon as it is open, and closes.
class Tool : public CDlgGetCRC64
{
    BOOL OnInitDialog() override
    {
        const std::tuple<std::wstring, bool, const wchar_t*, const wchar_t*> kCases[] = {
            {L"", true, L"0", L"00000000"}, // at least eight digits
            {L"", false, L"0", L"00000000"},
            {L"123456789", true, L"14707837731928058509", L"CC1CBC7DE1A8AA8D"},
            {L"123456789", false, L"11051210869376104954", L"995DC9BBDF1939FA"},
            // Four bytes for the one in the middle.
            {L"a\U0001F600b", true, L"3752509983267961028", L"341397F2B8CB38C4"},
            {std::wstring(70'000, L'x'), true, L"6362979464528801182", L"584DD81C48582D9E"},
        };
        CDlgGetCRC64::OnInitDialog();
        const auto control = [this](int id) { return ::GetDlgItem(m_hWnd, id); };
        constexpr UINT kGetLimit = 0x00D5; // EM_GETLIMITTEXT: what can be typed; boxes on Linux have no limit
        if (RunsOnWindows())
            EXPECT_GE(SendMessageW(control(IDC_INPUT), kGetLimit, 0, 0), 0x7FFFFFFE);
        for (const auto& [text, wide, decimal, hexadecimal] : kCases)
        {
            SetWindowTextW(control(IDC_INPUT), text.c_str());
            SendMessageW(control(IDC_WIDE_CHARS), BM_SETCHECK, wide ? BST_CHECKED : BST_UNCHECKED, 0);
            for (int press = 0; press < 2; ++press)
            {
                SendMessageW(m_hWnd, WM_COMMAND, IDC_GET_CRC64, 0);
                EXPECT_EQ(TextOf(control(IDC_CRC)), decimal) << text.substr(0, 9) << wide;
                EXPECT_EQ(TextOf(control(IDC_CRC_HEX)), hexadecimal);
                EXPECT_EQ(TextOf(control(IDC_INPUT)), text);
            }
        }
        EndDialog(IDCANCEL);
        return FALSE;
    }
};

TEST(DlgGetCRC64, ShowsTheSumOfATextInBothForms)
{
    EXPECT_EQ(Tool().DoModal(), IDCANCEL);
}

// One "?" stands for each UTF-16 unit that the user's character set lacks.
TEST(NarrowChecksum, RunsOverTheTextInTheCharacterSetOfTheUser)
{
    const Variable locale("LC_ALL", "de_DE.ISO-8859-1"); // Windows programs go by the machine's code page
    char narrow = 0;
    WideCharToMultiByte(CP_ACP, 0, L"\u00FC", 1, &narrow, 1, nullptr, nullptr);
    if (narrow != '\xFC')
        GTEST_SKIP() << "the sums are those of Western Europe's character sets";
    EXPECT_EQ(ChecksumOfNarrowText(L"Grüße"), 0x245027FA544AD50A);
    EXPECT_EQ(ChecksumOfNarrowText(L"привет"), 0x5C57F690707FFEDD);
    EXPECT_EQ(ChecksumOfNarrowText(L"a\U0001F600b"), 0xCEE3C3E5A51B1710);
}
