// SPDX-License-Identifier: MIT
#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

static std::wstring MessageOf(DWORD code)
{
    std::array<wchar_t, 1024> text = {};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        code, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    return {text.data(), length};
}

// The texts themselves are compared with Windows' where both words and numbers have been the same for long.
TEST(SystemMessage, IsTheSystemsOwnTextWithALineEndOrNone)
{
    EXPECT_EQ(MessageOf(0x3FFFFFF0), L"");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MR_MID_NOT_FOUND});
    if (MessageOf(2) == L"File not found.\r\n")
        GTEST_SKIP() << "Wine has words of its own";
    EXPECT_EQ(MessageOf(2), L"The system cannot find the file specified.\r\n");
    EXPECT_EQ(MessageOf(5), L"Access is denied.\r\n");
    EXPECT_EQ(MessageOf(112), L"There is not enough space on the disk.\r\n");
    EXPECT_EQ(MessageOf(267), L"The directory name is invalid.\r\n");
}
