// SPDX-License-Identifier: MIT
// What Oriska knows of the program that it is loaded in.
#include "foundation/Oriska.h"
#include "resources/resource.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(AppFolder, IsTheFolderOfTheProgram)
{
    const std::filesystem::path folder = GetPathInAppFolder(L"").GetString();
    EXPECT_EQ(folder.wstring().back(), wchar_t{std::filesystem::path::preferred_separator});
    EXPECT_TRUE(folder.is_absolute());
    bool found = false;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        found = found || entry.path().stem() == "oriska_tests";
    EXPECT_TRUE(found) << folder;
    EXPECT_EQ(GetPathInAppFolder(L"no such file"), (folder / "no such file").wstring().c_str());
}

TEST(ResourceString, ComesFromTheProgramOrIsEmpty)
{
    EXPECT_EQ(ZTString(String(IDS_ADMINISTRATOR_CAPTION, nullptr).mText),
              String(IDS_ADMINISTRATOR_CAPTION, GetModuleHandleW(nullptr)).mText);
    EXPECT_STRNE(String(IDS_ADMINISTRATOR_CAPTION, nullptr).mText, L"");
    EXPECT_STREQ(String(9999, nullptr).mText, L"");
}
