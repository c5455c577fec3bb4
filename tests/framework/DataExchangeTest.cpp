// SPDX-License-Identifier: MIT
// Values between members and controls: round trips, and what happens to a text that is not a number.
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

    HWND Control(int id) { return ::GetDlgItem(m_hWnd, id); }
    void Type(int id, const wchar_t* text) { SetWindowTextW(Control(id), text); }

    CStringW mText;
    std::uint32_t mNumber = 389;
    CStringW mAfter; // exchanged after the number
    int mCheck = 1;
    CComboBox mChoice;

protected:
    void DoDataExchange(CDataExchange* pDX) override
    {
        DDX_Text(pDX, IDC_TEXT, mText);
        DDX_Text(pDX, IDC_NUMBER, mNumber);
        DDX_Text(pDX, IDC_AFTER, mAfter);
        DDX_Check(pDX, IDC_CHECK, mCheck);
        DDX_Control(pDX, IDC_CHOICE, mChoice);
    }
};

} // namespace

TEST(DataExchange, FillsTheControlsAndTakesTheirValues)
{
    ExchangeDialog dialog;
    dialog.mText = L"Grüße € \x65E5\x672C";
    const INT_PTR result = dialog.Run({
        [&]
        {
            EXPECT_EQ(TextOf(dialog.Control(IDC_TEXT)), dialog.mText.GetString());
            EXPECT_EQ(TextOf(dialog.Control(IDC_NUMBER)), L"389");
            EXPECT_EQ(SendMessageW(dialog.Control(IDC_CHECK), BM_GETCHECK, 0, 0), BST_CHECKED);
            dialog.mText = L"";
            dialog.mNumber = UINT32_MAX;
            dialog.mCheck = 0;
            EXPECT_TRUE(dialog.UpdateData(FALSE));
            EXPECT_EQ(TextOf(dialog.Control(IDC_TEXT)), L"");
            EXPECT_EQ(TextOf(dialog.Control(IDC_NUMBER)), L"4294967295");
            EXPECT_EQ(SendMessageW(dialog.Control(IDC_CHECK), BM_GETCHECK, 0, 0), BST_UNCHECKED);
            dialog.mCheck = -7; // any number but 0 ticks the box
            EXPECT_TRUE(dialog.UpdateData(FALSE));
            EXPECT_TRUE(dialog.UpdateData(TRUE));
            EXPECT_EQ(dialog.mCheck, 1);

            dialog.Type(IDC_TEXT, L" typed ");
            dialog.Type(IDC_NUMBER, L"636");
            SendMessageW(dialog.Control(IDC_CHECK), BM_SETCHECK, BST_UNCHECKED, 0);
            dialog.Click(IDOK);
        },
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_STREQ(dialog.mText, L" typed ");
    EXPECT_EQ(dialog.mNumber, 636U);
    EXPECT_EQ(dialog.mCheck, 0);
}

TEST(DataExchange, TakesNumbersOf32Bits)
{
    struct Case
    {
        const wchar_t* text;
        std::optional<std::uint32_t> number;
    };
    std::vector<Case> cases = {
        {L"0", 0}, {L"4294967295", UINT32_MAX}, {L" \t636 ", 636}, {L"0000000000000007", 7}};
    // One is 1 in 64 bits, the last has digits of another script.
    for (const wchar_t* refused : {L"", L"  ", L"ldap", L"-1", L"4294967296", L"18446744073709551617",
                                   L"389x", L"3 89", L"0x10", L"1.5", L"\xFF13\xFF18\xFF19"})
        cases.push_back({refused, std::nullopt});
    ExchangeDialog dialog;
    std::vector<TestDialog::Step> steps;
    for (const Case& row : cases)
    {
        steps.emplace_back(
            [&]
            {
                dialog.mNumber = 42;
                dialog.Type(IDC_NUMBER, row.text);
                SetFocus(dialog.Control(IDC_CHECK));
                EXPECT_EQ(dialog.UpdateData(TRUE), row.number.has_value()) << row.text;
                EXPECT_EQ(dialog.mNumber, row.number.value_or(42)) << row.text;
                EXPECT_EQ(FocusedControl(), dialog.Control(row.number ? IDC_CHECK : IDC_NUMBER)) << row.text;
            });
        if (!row.number)
        {
            steps.emplace_back(Nothing);
            steps.emplace_back([]
                               { EXPECT_EQ(ReadAndCloseMessageBox(), L"Please enter a positive integer."); });
        }
    }
    steps.emplace_back([&] { dialog.EndDialog(1); });
    dialog.Run(steps);
}

TEST(DataExchange, RefusedNumberKeepsTheDialogOpenAndItsTextSelected)
{
    ExchangeDialog dialog;
    const INT_PTR result = dialog.Run({
        [&]
        {
            dialog.Type(IDC_TEXT, L"before");
            dialog.Type(IDC_NUMBER, L"many");
            dialog.Type(IDC_AFTER, L"after");
            dialog.Click(IDOK);
        },
        Nothing,
        [&] { EXPECT_EQ(ReadAndCloseMessageBox(), L"Please enter a positive integer."); },
        [&]
        {
            EXPECT_EQ(FocusedControl(), dialog.Control(IDC_NUMBER));
            EXPECT_EQ(SelectionOf(dialog.Control(IDC_NUMBER)), L"many");
            EXPECT_STREQ(dialog.mText, L"before");
            EXPECT_EQ(dialog.mNumber, 389U);
            EXPECT_TRUE(dialog.mAfter.IsEmpty()) << "the exchange ends with the refusal";
            dialog.Type(IDC_NUMBER, L"636");
            dialog.Click(IDOK);
        },
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(dialog.mNumber, 636U);
    EXPECT_STREQ(dialog.mAfter, L"after");
}

TEST(DataExchange, ControlObjectsAreTiedWhileTheDialogIsOpen)
{
    ExchangeDialog dialog;
    for (int round = 0; round < 2; ++round)
    {
        dialog.Run({
            [&]
            {
                EXPECT_EQ(dialog.mChoice.m_hWnd, dialog.Control(IDC_CHOICE));
                EXPECT_EQ(dialog.GetDlgItem(IDC_TEXT)->m_hWnd, dialog.Control(IDC_TEXT));
                EXPECT_EQ(dialog.GetDlgItem(IDC_TEXT), dialog.GetDlgItem(IDC_TEXT));
                EXPECT_EQ(dialog.GetDlgItem(4711), nullptr);

                dialog.GetDlgItem(IDOK)->EnableWindow(FALSE);
                EXPECT_FALSE(IsEnabled(dialog.Control(IDOK)));
                dialog.EndDialog(1);
            },
        });
        EXPECT_EQ(dialog.mChoice.m_hWnd, nullptr);
    }
}
