// SPDX-License-Identifier: MIT
#include <windows.h>

#include <gtest/gtest.h>

// What an access check says of a list with this one entry, or of an empty list for a null SID.
static bool IsGranted(PSID sid, DWORD desired, PSID owner)
{
    alignas(ACL) BYTE block[64] = {};
    const auto acl = reinterpret_cast<PACL>(block);
    EXPECT_TRUE(InitializeAcl(acl, sizeof block, ACL_REVISION2));
    EXPECT_TRUE(sid == nullptr || AddAccessAllowedAce(acl, ACL_REVISION2, 3, sid));
    SECURITY_DESCRIPTOR descriptor = {};
    EXPECT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    EXPECT_TRUE(SetSecurityDescriptorDacl(&descriptor, TRUE, acl, FALSE));
    EXPECT_TRUE(SetSecurityDescriptorOwner(&descriptor, owner, FALSE));
    EXPECT_TRUE(SetSecurityDescriptorGroup(&descriptor, owner, FALSE));
    EXPECT_TRUE(IsValidSecurityDescriptor(&descriptor));

    HANDLE token = nullptr;
    EXPECT_TRUE(ImpersonateSelf(SecurityImpersonation));
    EXPECT_TRUE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, FALSE, &token));
    GENERIC_MAPPING mapping = {1, 2, 0, 3};
    PRIVILEGE_SET privileges = {};
    DWORD length = sizeof privileges;
    DWORD granted = 99;
    BOOL status = TRUE;
    EXPECT_TRUE(AccessCheck(&descriptor, token, desired, &mapping, &privileges, &length, &granted, &status));
    EXPECT_EQ(granted, status ? desired : 0);
    EXPECT_TRUE(CloseHandle(token));
    EXPECT_TRUE(RevertToSelf());
    return status != FALSE;
}

// The tests run as root, and as an administrator under Wine.
TEST(AccessCheck, GrantsWhatTheOneEntryAllowsItsGroup)
{
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    PSID administrators = nullptr;
    PSID stranger = nullptr;
    ASSERT_TRUE(AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS,
                                         0, 0, 0, 0, 0, 0, &administrators));
    ASSERT_TRUE(AllocateAndInitializeSid(&authority, 5, 21, 1, 2, 3, 9999, 0, 0, 0, &stranger));
    const std::tuple<PSID, DWORD, bool> rows[] = {
        {administrators, 1, true}, {administrators, 3, true}, {administrators, 4, false},
        {stranger, 1, false},      {nullptr, 1, false},
    };
    for (const auto& [sid, desired, granted] : rows)
        EXPECT_EQ(IsGranted(sid, desired, stranger), granted) << sid << " " << desired;
    FreeSid(administrators);
    FreeSid(stranger);
}
