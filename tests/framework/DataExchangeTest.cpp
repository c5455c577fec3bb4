// SPDX-License-Identifier: MIT
// A number between a member and its box, and what happens to a text that is not one; the dialogs' own tests
// have the other exchanges.
#include "tests/framework/TestDialog.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>

namespace
{

class ExchangeDialog : public TestDialog
{
public:
    ExchangeDialog() : TestDialog(IDD_EXCHANGE) {}

    CStringW mText;
    std::uint32_t mNumber = 389;
    CStringW mAfter; // exchanged after the number

protected:
    void DoDataExchange(CDataExchange* pDX) override
    {
        DDX_Text(pDX, IDC_TEXT, mText);
        DDX_Text(pDX, IDC_NUMBER, mNumber);
        DDX_Text(pDX, IDC_AFTER, mAfter);
    }
};

} // namespace

TEST(DataExchange, TakesNumbersOf32BitsAndStaysOpenWithAnyOtherTextSelected)
{
    std::vector<std::pair<std::wstring, std::optional<std::uint32_t>>> cases = {
        {L"0", 0}, {L"4294967295", UINT32_MAX}, {L" \t636 ", 636}, {L"0000000000000007", 7}};
    // One is 1 in 64 bits, the last has digits of another script.
    for (const wchar_t* refused : {L"", L"  ", L"ldap", L"-1", L"4294967296", L"18446744073709551617",
                                   L"389x", L"3 89", L"0x10", L"1.5", L"\xFF13\xFF18\xFF19"})
        cases.emplace_back(refused, std::nullopt);
    for (const auto& [text, number] : cases)
    {
        ExchangeDialog dialog;
        std::vector<TestDialog::Step> steps = {
            [&, &text = text]
            {
                SetWindowTextW(::GetDlgItem(dialog.m_hWnd, IDC_TEXT), L"before");
                SetWindowTextW(::GetDlgItem(dialog.m_hWnd, IDC_NUMBER), text.c_str());
                SetWindowTextW(::GetDlgItem(dialog.m_hWnd, IDC_AFTER), L"after");
                SendMessageW(dialog.m_hWnd, WM_COMMAND, IDOK, 0);
            },
            Nothing,
            [] { EXPECT_EQ(ReadAndCloseMessageBox(), L"Please enter a positive integer."); },
            [&, &text = text]
            {
                EXPECT_EQ(FocusedControl(), ::GetDlgItem(dialog.m_hWnd, IDC_NUMBER));
                EXPECT_EQ(SelectionOf(FocusedControl()), text);
                dialog.EndDialog(IDCANCEL);
            },
        };
        if (number)
            steps.resize(1);
        EXPECT_EQ(dialog.Run(steps), number ? IDOK : IDCANCEL) << text;
        EXPECT_STREQ(dialog.mText, L"before");
        EXPECT_EQ(dialog.mNumber, number.value_or(389)) << text;
        EXPECT_STREQ(dialog.mAfter, number ? L"after" : L"") << "the exchange ends with a refusal";
    }
}
