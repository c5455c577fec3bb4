// SPDX-License-Identifier: MIT
// What the test for an administrator asks: one SID, one entry that allows, and whether the token's user is
// root.
#include "platform/kernel/Handle.h"
#include "securitybaseapi.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

using namespace platform;

namespace
{

constexpr BYTE kMostSubAuthorities = 8;
constexpr DWORD kEntryHead = offsetof(ACCESS_ALLOWED_ACE, SidStart);

constexpr DWORD SidLength(BYTE subAuthorities)
{
    return static_cast<DWORD>(offsetof(SID, SubAuthority) + sizeof(DWORD) * subAuthorities);
}

// A token of a thread or of the process; which user it stands for does not change.
class Token : public KernelObject
{
public:
    explicit Token(bool isThreads) : mIsThreads(isThreads) {}

    const bool mIsThreads;
    const bool mIsRoot = geteuid() == 0;
};

thread_local std::shared_ptr<Token> gThreadToken;

BOOL OpenToken(DWORD access, std::shared_ptr<Token> token, HANDLE* handle)
{
    if (access != TOKEN_QUERY)
        return FailWith(ERROR_INVALID_PARAMETER);
    *handle = MakeHandle(std::move(token));
    return TRUE;
}

bool IsAdministrators(const DWORD* sid)
{
    const auto* head = reinterpret_cast<const SID*>(sid);
    constexpr SID_IDENTIFIER_AUTHORITY kAuthority = SECURITY_NT_AUTHORITY;
    return head->SubAuthorityCount == 2 &&
           std::ranges::equal(head->IdentifierAuthority.Value, kAuthority.Value) &&
           head->SubAuthority[0] == SECURITY_BUILTIN_DOMAIN_RID && sid[3] == DOMAIN_ALIAS_RID_ADMINS;
}

// The one entry of a list; null for an empty one.
const ACCESS_ALLOWED_ACE* EntryOf(const ACL& acl)
{
    return acl.AceCount == 0 ? nullptr : reinterpret_cast<const ACCESS_ALLOWED_ACE*>(&acl + 1);
}

} // namespace

BOOL ImpersonateSelf(SECURITY_IMPERSONATION_LEVEL level)
{
    if (level != SecurityImpersonation)
        return FailWith(ERROR_INVALID_PARAMETER);
    gThreadToken = std::make_shared<Token>(true);
    return TRUE;
}

BOOL RevertToSelf()
{
    gThreadToken.reset();
    return TRUE;
}

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token)
{
    if (process != GetCurrentProcess())
        return FailWith(ERROR_INVALID_HANDLE);
    return OpenToken(access, std::make_shared<Token>(false), token);
}

BOOL OpenThreadToken(HANDLE thread, DWORD access, BOOL, HANDLE* token)
{
    if (thread != GetCurrentThread())
        return FailWith(ERROR_INVALID_HANDLE);
    return gThreadToken == nullptr ? FailWith(ERROR_NO_TOKEN) : OpenToken(access, gThreadToken, token);
}

BOOL AllocateAndInitializeSid(PSID_IDENTIFIER_AUTHORITY authority, BYTE count, DWORD sub0, DWORD sub1,
                              DWORD sub2, DWORD sub3, DWORD sub4, DWORD sub5, DWORD sub6, DWORD sub7,
                              PSID* result)
{
    const DWORD subAuthorities[kMostSubAuthorities] = {sub0, sub1, sub2, sub3, sub4, sub5, sub6, sub7};
    if (count > kMostSubAuthorities)
        return FailWith(ERROR_INVALID_PARAMETER);
    auto* sid = static_cast<SID*>(malloc(SidLength(count)));
    if (sid == nullptr)
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    sid->Revision = 1;
    sid->SubAuthorityCount = count;
    sid->IdentifierAuthority = *authority;
    std::copy_n(subAuthorities, count, sid->SubAuthority);
    *result = sid;
    return TRUE;
}

PVOID FreeSid(PSID sid)
{
    free(sid);
    return nullptr;
}

DWORD GetLengthSid(PSID sid)
{
    return SidLength(static_cast<const SID*>(sid)->SubAuthorityCount);
}

BOOL InitializeAcl(PACL acl, DWORD size, DWORD revision)
{
    constexpr DWORD kLargest = 0xFFFF;
    if (size < sizeof(ACL) || size > kLargest || revision != ACL_REVISION2)
        return FailWith(ERROR_INVALID_PARAMETER);
    *acl = {ACL_REVISION2, 0, static_cast<WORD>(size), 0, 0};
    return TRUE;
}

BOOL AddAccessAllowedAce(PACL acl, DWORD revision, DWORD mask, PSID sid)
{
    const DWORD size = kEntryHead + GetLengthSid(sid);
    if (revision != ACL_REVISION2 || acl->AceCount != 0)
        return FailWith(ERROR_INVALID_PARAMETER);
    if (size > acl->AclSize - sizeof(ACL))
        return FailWith(ERROR_INSUFFICIENT_BUFFER);
    auto* entry = reinterpret_cast<ACCESS_ALLOWED_ACE*>(acl + 1);
    entry->Header = {0, 0, static_cast<WORD>(size)}; // of the type that allows
    entry->Mask = mask;
    std::memcpy(&entry->SidStart, sid, GetLengthSid(sid));
    acl->AceCount = 1;
    return TRUE;
}

BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision)
{
    if (revision != SECURITY_DESCRIPTOR_REVISION)
        return FailWith(ERROR_INVALID_PARAMETER);
    *static_cast<SECURITY_DESCRIPTOR*>(descriptor) = {
        SECURITY_DESCRIPTOR_REVISION, 0, 0, nullptr, nullptr, nullptr, nullptr};
    return TRUE;
}

BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR block, BOOL present, PACL dacl, BOOL)
{
    auto* descriptor = static_cast<SECURITY_DESCRIPTOR*>(block);
    descriptor->Control = present ? SE_DACL_PRESENT : 0;
    descriptor->Dacl = present ? dacl : nullptr; // on Windows everybody is granted all then
    return TRUE;
}

BOOL SetSecurityDescriptorGroup(PSECURITY_DESCRIPTOR descriptor, PSID group, BOOL)
{
    static_cast<SECURITY_DESCRIPTOR*>(descriptor)->Group = group;
    return TRUE;
}

BOOL SetSecurityDescriptorOwner(PSECURITY_DESCRIPTOR descriptor, PSID owner, BOOL)
{
    static_cast<SECURITY_DESCRIPTOR*>(descriptor)->Owner = owner;
    return TRUE;
}

BOOL IsValidSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor)
{
    const bool isValid =
        static_cast<const SECURITY_DESCRIPTOR*>(descriptor)->Revision == SECURITY_DESCRIPTOR_REVISION;
    return isValid ? TRUE : FailWith(ERROR_INVALID_PARAMETER);
}

BOOL AccessCheck(PSECURITY_DESCRIPTOR block, HANDLE tokenHandle, DWORD desired, PGENERIC_MAPPING,
                 PPRIVILEGE_SET privileges, LPDWORD privilegesLength, LPDWORD granted, BOOL* status)
{
    const auto token = ObjectOf<Token>(tokenHandle);
    const auto* descriptor = static_cast<const SECURITY_DESCRIPTOR*>(block);
    if (token == nullptr)
        return FALSE;
    if (!token->mIsThreads || descriptor->Owner == nullptr || descriptor->Group == nullptr ||
        descriptor->Dacl == nullptr || *privilegesLength < sizeof(PRIVILEGE_SET))
        return FailWith(ERROR_INVALID_PARAMETER);
    const ACCESS_ALLOWED_ACE* entry = EntryOf(*descriptor->Dacl);
    const bool isGranted = token->mIsRoot && entry != nullptr && IsAdministrators(&entry->SidStart) &&
                           (desired & ~entry->Mask) == 0;
    *privileges = {};
    *status = isGranted ? TRUE : FALSE;
    *granted = isGranted ? desired : 0;
    return TRUE;
}
