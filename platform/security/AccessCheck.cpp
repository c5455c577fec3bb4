// SPDX-License-Identifier: MIT
#include "platform/kernel/Error.h"
#include "platform/security/AccessList.h"
#include "platform/security/Token.h"
#include "securitybaseapi.h"

#include <algorithm>

namespace
{

constexpr DWORD kGenericRights = GENERIC_READ | GENERIC_WRITE | GENERIC_EXECUTE | GENERIC_ALL;

DWORD MapGeneric(DWORD mask, const GENERIC_MAPPING& mapping)
{
    DWORD mapped = mask & ~kGenericRights;
    mapped |= (mask & GENERIC_READ) != 0 ? mapping.GenericRead : 0;
    mapped |= (mask & GENERIC_WRITE) != 0 ? mapping.GenericWrite : 0;
    mapped |= (mask & GENERIC_EXECUTE) != 0 ? mapping.GenericExecute : 0;
    mapped |= (mask & GENERIC_ALL) != 0 ? mapping.GenericAll : 0;
    return mapped;
}

bool Concerns(const ACCESS_ALLOWED_ACE& entry, const Token& token)
{
    return std::ranges::any_of(
        token.Groups(),
        [&](const Token::Group& group)
        {
            const bool counts = !group.mDenyOnly || entry.Header.AceType == kDeny;
            return counts && IsSameSid(group.mSid.data(), &entry.SidStart);
        });
}

// Entry by entry: each right belongs to the first entry that names it.
bool IsGranted(const SECURITY_DESCRIPTOR& descriptor, const Token& token, DWORD desired,
               const GENERIC_MAPPING& mapping)
{
    if ((descriptor.Control & SE_DACL_PRESENT) == 0 || descriptor.Dacl == nullptr)
        return true;
    const auto entries = EntriesOf(*descriptor.Dacl);
    if (!entries)
        return false;
    DWORD missing = desired;
    for (const ACCESS_ALLOWED_ACE* entry : *entries)
    {
        const DWORD rights = MapGeneric(entry->Mask, mapping);
        if (entry->Header.AceType > kDeny || !Concerns(*entry, token))
            continue;
        if (entry->Header.AceType == kDeny && (missing & rights) != 0)
            return false;
        missing &= entry->Header.AceType == kAllow ? ~rights : ~0U;
    }
    return missing == 0;
}

} // namespace

BOOL AccessCheck(PSECURITY_DESCRIPTOR block, HANDLE tokenHandle, DWORD desired, PGENERIC_MAPPING mapping,
                 PPRIVILEGE_SET privileges, LPDWORD privilegesLength, LPDWORD granted, BOOL* status)
{
    const auto token = ObjectOf<Token>(tokenHandle);
    if (token == nullptr)
        return FALSE;
    if (!token->IsImpersonation())
        return FailWith(ERROR_NO_IMPERSONATION_TOKEN);
    if ((desired & kGenericRights) != 0)
        return FailWith(ERROR_GENERIC_NOT_MAPPED);
    if (*privilegesLength < sizeof(PRIVILEGE_SET))
    {
        *privilegesLength = sizeof(PRIVILEGE_SET);
        return FailWith(ERROR_INSUFFICIENT_BUFFER);
    }
    const auto* descriptor = static_cast<const SECURITY_DESCRIPTOR*>(block);
    if (!IsValidSecurityDescriptor(block) || descriptor->Owner == nullptr || descriptor->Group == nullptr)
        return FailWith(ERROR_INVALID_SECURITY_DESCR);
    *privileges = {};
    *status = IsGranted(*descriptor, *token, desired, *mapping);
    *granted = *status ? desired : 0;
    if (!*status)
        SetLastError(ERROR_ACCESS_DENIED);
    return TRUE;
}
