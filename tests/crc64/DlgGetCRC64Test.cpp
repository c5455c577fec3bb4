// SPDX-License-Identifier: MIT
// The checksum tool, driven through the messages that its controls get. The expected sums are the checks that
// xz files carry over the bytes that Python's codecs make of each text.
#include "crc64/DlgGetCRC64.h"
#include "resources/resource.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <string>

namespace
{

// Open for as long as `onOpen` runs.
class OpenTool : public CDlgGetCRC64
{
public:
    explicit OpenTool(std::function<void(OpenTool&)> onOpen) : mOnOpen(std::move(onOpen))
    {
        EXPECT_EQ(DoModal(), IDCANCEL);
    }

    void Fill(int id, const wchar_t* text) { SetWindowTextW(::GetDlgItem(m_hWnd, id), text); }
    void TickWide(bool tick)
    {
        SendMessageW(::GetDlgItem(m_hWnd, IDC_WIDE_CHARS), BM_SETCHECK, tick ? BST_CHECKED : BST_UNCHECKED,
                     0);
    }
    void Compute()
    {
        const HWND button = ::GetDlgItem(m_hWnd, IDC_GET_CRC64);
        SendMessageW(m_hWnd, WM_COMMAND, MAKEWPARAM(IDC_GET_CRC64, BN_CLICKED),
                     reinterpret_cast<LPARAM>(button));
    }
    std::wstring TextOf(int id)
    {
        const HWND box = ::GetDlgItem(m_hWnd, id);
        std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(box)) + 1, L'\0');
        text.resize(
            static_cast<std::size_t>(GetWindowTextW(box, text.data(), static_cast<int>(text.size()))));
        return text;
    }

protected:
    BOOL OnInitDialog() override
    {
        const BOOL result = CDlgGetCRC64::OnInitDialog();
        mOnOpen(*this);
        EndDialog(IDCANCEL);
        return result;
    }

private:
    std::function<void(OpenTool&)> mOnOpen;
};

} // namespace

TEST(DlgGetCRC64, ShowsTheSumOfATextInBothForms)
{
    const struct
    {
        const wchar_t* text;
        bool wide;
        const wchar_t* decimal;
        const wchar_t* hexadecimal;
    } kCases[] = {
        {L"", true, L"0", L"00000000"}, // at least eight digits
        {L"", false, L"0", L"00000000"},
        {L"a", true, L"15519453578914781998", L"D7602CCDEF615B2E"},
        {L"123456789", true, L"14707837731928058509", L"CC1CBC7DE1A8AA8D"},
        {L"123456789", false, L"11051210869376104954", L"995DC9BBDF1939FA"},
        {L"Grüße", true, L"11793782814387117310", L"A3ABEEFBC9A69CFE"},
        {L"привет", true, L"15473050810623403712", L"D6BB51BB86C726C0"},
        {L"日本語", true, L"17803759525040339242", L"F713A8F5AC81B92A"},
        {L"a\U0001F600b", true, L"3752509983267961028",
         L"341397F2B8CB38C4"}, // four bytes for the one in the middle
    };
    OpenTool tool(
        [&](OpenTool& open)
        {
            for (const auto& row : kCases)
            {
                open.Fill(IDC_INPUT, row.text);
                open.TickWide(row.wide);
                for (int press = 0; press < 2; ++press)
                {
                    open.Compute();
                    EXPECT_EQ(open.TextOf(IDC_CRC), row.decimal)
                        << testing::PrintToString(row.text) << row.wide;
                    EXPECT_EQ(open.TextOf(IDC_CRC_HEX), row.hexadecimal);
                    EXPECT_EQ(open.TextOf(IDC_INPUT), row.text);
                }
            }
        });
}

TEST(DlgGetCRC64, OpensEmptyWithWideCharactersTicked)
{
    OpenTool tool(
        [](OpenTool& open)
        {
            EXPECT_EQ(SendMessageW(::GetDlgItem(open.m_hWnd, IDC_WIDE_CHARS), BM_GETCHECK, 0, 0),
                      BST_CHECKED);
            for (const int id : {IDC_INPUT, IDC_CRC, IDC_CRC_HEX})
                EXPECT_EQ(open.TextOf(id), L"");
        });
}

TEST(DlgGetCRC64, ComputesWhenTheButtonIsPressedAlone)
{
    OpenTool tool(
        [](OpenTool& open)
        {
            open.Fill(IDC_INPUT, L"123456789");
            EXPECT_EQ(open.TextOf(IDC_CRC_HEX), L"");
            open.Compute();
            const std::wstring wide = open.TextOf(IDC_CRC_HEX);
            open.TickWide(false);
            EXPECT_EQ(open.TextOf(IDC_CRC_HEX), wide);
            open.Fill(IDC_CRC, L"typed over");
            open.Compute();
            EXPECT_EQ(open.TextOf(IDC_CRC), L"11051210869376104954");
        });
}

TEST(DlgGetCRC64, TakesTenMegabytesFromTheClipboard)
{
    if (sizeof(wchar_t) == 2)
        GTEST_SKIP() << "Wine's edit control takes minutes to lay such a text out";
    std::wstring text;
    for (int i = 0; i < 1'000'000; ++i)
        text += L"0123456789";
    OpenTool tool(
        [&text](OpenTool& open)
        {
            // What pasting comes to: it is bound by the box's limit, unlike WM_SETTEXT.
            SendMessageW(::GetDlgItem(open.m_hWnd, IDC_INPUT), EM_REPLACESEL, TRUE,
                         reinterpret_cast<LPARAM>(text.c_str()));
            for (const bool wide : {true, false})
            {
                open.TickWide(wide);
                const std::clock_t start = std::clock();
                open.Compute();
                const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
                testing::Test::RecordProperty(wide ? "wide seconds" : "narrow seconds",
                                              std::to_string(seconds));
                EXPECT_LT(seconds, 10) << "of the processor's time: well below one, but for the sanitizers";
                EXPECT_EQ(open.TextOf(IDC_CRC_HEX), wide ? L"8B10C401882F1ACE" : L"2BB92A0D7848E7DC");
            }
        });
}
