// SPDX-License-Identifier: MIT
#include "platform/security/Token.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

enum class Administrators
{
    None,
    DenyOnly,
    Enabled
};

Administrators StateIn(const std::vector<Token::Group>& groups)
{
    const SidBytes sid = {1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 2, 0, 0}; // S-1-5-32-544
    const auto found = std::ranges::find(groups, sid, &Token::Group::mSid);
    return found == groups.end() ? Administrators::None
           : found->mDenyOnly    ? Administrators::DenyOnly
                                 : Administrators::Enabled;
}

} // namespace

TEST(Token, HoldsAdministratorsEnabledForRootAndForDenyOnlyForItsGroups)
{
    EXPECT_EQ(StateIn(GroupsOfUser(0, {0}, false)), Administrators::Enabled);
    EXPECT_EQ(StateIn(GroupsOfUser(0, {0, 27}, true)), Administrators::Enabled);
    EXPECT_EQ(StateIn(GroupsOfUser(1000, {1000, 27}, true)), Administrators::DenyOnly);
    EXPECT_EQ(StateIn(GroupsOfUser(1000, {1000}, false)), Administrators::None);
}

TEST(Token, NumbersUsersAndGroupsApart)
{
    const auto user = GroupsOfUser(7, {}, false);
    const auto group = GroupsOfUser(1, {7}, false);
    EXPECT_EQ(user.size(), 2U);
    EXPECT_EQ(group.size(), 3U);
    EXPECT_NE(user[0].mSid, group[2].mSid);
}
