// SPDX-License-Identifier: MIT
#include "app/AdministratorTest.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

// The oracle asks the system in its own words, not through the program's.
bool SystemSaysAdministrator()
{
    wchar_t name[256] = L"";
    DWORD size = 256;
    GetUserNameW(name, &size);
    return std::wstring(name) == L"root";
}

TEST(AdministratorTest, AgreesWithTheUserWhoRunsIt)
{
    EXPECT_EQ(IsUserAdministrator() != 0, SystemSaysAdministrator());
}

TEST(AdministratorTest, LeavesTheThreadWithItsOwnToken)
{
    IsUserAdministrator();
    HANDLE token = nullptr;
    EXPECT_FALSE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, FALSE, &token));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_TOKEN));
}

} // namespace
