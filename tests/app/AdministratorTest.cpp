// SPDX-License-Identifier: MIT
#include "app/AdministratorTest.h"

#include <gtest/gtest.h>

#include <windows.h>

TEST(AdministratorTest, LeavesTheThreadWithItsOwnToken)
{
    IsUserAdministrator();
    HANDLE token = nullptr;
    EXPECT_FALSE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, FALSE, &token));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_TOKEN));
}
