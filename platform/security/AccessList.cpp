// SPDX-License-Identifier: MIT
#include "platform/security/AccessList.h"

#include "platform/kernel/Error.h"
#include "platform/security/Sid.h"
#include "securitybaseapi.h"

#include <cstddef>
#include <cstring>

namespace
{

constexpr DWORD kEntryHead = offsetof(ACCESS_ALLOWED_ACE, SidStart);

bool IsValidHead(const ACL& acl)
{
    return acl.AclRevision == ACL_REVISION2 && acl.AclSize >= sizeof(ACL);
}

// Room for a SID of the length that it claims itself.
bool HoldsSid(const ACCESS_ALLOWED_ACE& entry)
{
    const DWORD size = entry.Header.AceSize;
    return size >= kEntryHead + SidLength(0) && IsValidSid(&entry.SidStart) &&
           size >= kEntryHead + GetLengthSid(const_cast<DWORD*>(&entry.SidStart));
}

} // namespace

std::optional<std::vector<const ACCESS_ALLOWED_ACE*>> EntriesOf(const ACL& acl)
{
    if (!IsValidHead(acl))
        return std::nullopt;
    std::vector<const ACCESS_ALLOWED_ACE*> entries;
    const auto* at = reinterpret_cast<const BYTE*>(&acl + 1);
    DWORD left = acl.AclSize - static_cast<DWORD>(sizeof(ACL));
    for (WORD index = 0; index < acl.AceCount; ++index)
    {
        const auto* entry = reinterpret_cast<const ACCESS_ALLOWED_ACE*>(at);
        if (left < sizeof(ACE_HEADER) || left < entry->Header.AceSize || !HoldsSid(*entry))
            return std::nullopt;
        entries.push_back(entry);
        at += entry->Header.AceSize;
        left -= entry->Header.AceSize;
    }
    return entries;
}

BOOL InitializeAcl(PACL acl, DWORD size, DWORD revision)
{
    constexpr DWORD kLargest = 0xFFFF;
    if (size < sizeof(ACL))
        return FailWith(ERROR_INSUFFICIENT_BUFFER);
    if (revision != ACL_REVISION2 || size > kLargest)
        return FailWith(ERROR_INVALID_PARAMETER);
    *acl = {ACL_REVISION2, 0, static_cast<WORD>(size), 0, 0};
    return TRUE;
}

BOOL AddAccessAllowedAce(PACL acl, DWORD revision, DWORD mask, PSID sid)
{
    if (!IsValidSid(sid))
        return FailWith(ERROR_INVALID_SID);
    const auto entries = EntriesOf(*acl);
    if (!entries || revision != ACL_REVISION2)
        return FailWith(ERROR_INVALID_ACL);
    DWORD used = sizeof(ACL);
    for (const ACCESS_ALLOWED_ACE* entry : *entries)
        used += entry->Header.AceSize;
    const DWORD size = kEntryHead + GetLengthSid(sid);
    if (size > acl->AclSize - used)
        return FailWith(ERROR_ALLOTTED_SPACE_EXCEEDED);
    auto* entry = reinterpret_cast<ACCESS_ALLOWED_ACE*>(reinterpret_cast<BYTE*>(acl) + used);
    entry->Header = {kAllow, 0, static_cast<WORD>(size)};
    entry->Mask = mask;
    std::memcpy(&entry->SidStart, sid, GetLengthSid(sid));
    ++acl->AceCount;
    return TRUE;
}
