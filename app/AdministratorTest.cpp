// SPDX-License-Identifier: MIT
#include "app/AdministratorTest.h"

#include "base/Owned.h"

#include <windows.h>

namespace
{

// Two rights of our own, since nothing but this test ever asks for them.
constexpr DWORD kRead = 1;
constexpr DWORD kWrite = 2;
constexpr DWORD kDescriptorBytes = 40;
constexpr DWORD kAclHeadBytes = 16; // the list's head and the entry's, around the SID
constexpr DWORD kPrivilegeSetBytes = 20;

using LocalBlock = Owned<void, LocalFree>;
using Sid = Owned<void, FreeSid>;
using Token = Owned<void, CloseHandle>;

Token OpenTokenInForce()
{
    HANDLE token = nullptr;
    if (OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, FALSE, &token))
        return Token(token);
    if (GetLastError() == ERROR_NO_TOKEN && OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token))
        return Token(token);
    return nullptr;
}

Sid MakeAdministratorsSid()
{
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    PSID sid = nullptr;
    if (!AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0,
                                  0, 0, 0, 0, &sid))
        return nullptr;
    return Sid(sid);
}

} // namespace

int IsUserAdministrator()
{
    ImpersonateSelf(SecurityImpersonation);

    // Released in the reverse order: list, descriptor, SID, token.
    const Token token = OpenTokenInForce();
    if (!token)
        return 0;
    const Sid sid = MakeAdministratorsSid();
    if (!sid)
        return 0;

    const LocalBlock descriptor(LocalAlloc(LPTR, kDescriptorBytes));
    if (!descriptor || !InitializeSecurityDescriptor(descriptor.get(), SECURITY_DESCRIPTOR_REVISION))
        return 0;

    const DWORD aclBytes = GetLengthSid(sid.get()) + kAclHeadBytes;
    const LocalBlock aclBlock(LocalAlloc(LPTR, aclBytes));
    const PACL acl = static_cast<PACL>(aclBlock.get());
    if (acl == nullptr || !InitializeAcl(acl, aclBytes, ACL_REVISION2) ||
        !AddAccessAllowedAce(acl, ACL_REVISION2, kRead | kWrite, sid.get()) ||
        !SetSecurityDescriptorDacl(descriptor.get(), TRUE, acl, FALSE))
        return 0;
    // AccessCheck refuses a descriptor without a group and an owner.
    SetSecurityDescriptorGroup(descriptor.get(), sid.get(), FALSE);
    SetSecurityDescriptorOwner(descriptor.get(), sid.get(), FALSE);
    if (!IsValidSecurityDescriptor(descriptor.get()))
        return 0;

    GENERIC_MAPPING mapping{kRead, kWrite, 0, kRead | kWrite};
    alignas(PRIVILEGE_SET) BYTE privileges[kPrivilegeSetBytes] = {};
    DWORD privilegesLength = kPrivilegeSetBytes;
    DWORD granted = 0;
    BOOL status = FALSE;
    if (AccessCheck(descriptor.get(), token.get(), kRead, &mapping,
                    reinterpret_cast<PPRIVILEGE_SET>(privileges), &privilegesLength, &granted, &status))
        RevertToSelf();
    return status;
}
