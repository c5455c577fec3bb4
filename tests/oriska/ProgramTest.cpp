// SPDX-License-Identifier: MIT
// What Oriska knows of the program that it is loaded in.
#include "foundation/Oriska.h"
#include "resources/resource.h"

#include <gtest/gtest.h>

TEST(ResourceString, ComesFromTheProgramOrIsEmpty)
{
    EXPECT_EQ(ZTString(String(IDS_ADMINISTRATOR_CAPTION, nullptr).mText),
              String(IDS_ADMINISTRATOR_CAPTION, GetModuleHandleW(nullptr)).mText);
    EXPECT_STRNE(String(IDS_ADMINISTRATOR_CAPTION, nullptr).mText, L"");
    EXPECT_STREQ(String(9999, nullptr).mText, L"");
}
