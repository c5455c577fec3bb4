// SPDX-License-Identifier: MIT
#include "foundation/Utf16.h"

#include <gtest/gtest.h>

TEST(Utf16, AstralCharactersAreTwoUnits)
{
    struct Row
    {
        std::wstring text;
        std::u16string units;
    };
    const Row rows[] = {
        {L"", u""},
        {L"a\u20AC", u"a\u20AC"},
        {L"\U0001F600", u"\xD83D\xDE00"},
        {L"\U0010FFFF\U00010000", u"\xDBFF\xDFFF\xD800\xDC00"},
        {std::wstring(1, static_cast<wchar_t>(0xD83D)), u"\xD83D"}, // alone
        {std::wstring(L"a\0b", 3), std::u16string(u"a\0b", 3)},
    };
    for (const Row& row : rows)
    {
        EXPECT_EQ(ToUtf16(row.text.data(), row.text.size()), row.units);
        EXPECT_EQ(FromUtf16(row.units.data(), row.units.size()), row.text);
    }
}
