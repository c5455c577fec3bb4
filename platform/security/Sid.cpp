// SPDX-License-Identifier: MIT
#include "platform/security/Sid.h"

#include "platform/kernel/Error.h"
#include "securitybaseapi.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

static_assert(offsetof(SID, SubAuthority) == SidLength(0));

namespace
{

void WriteSid(void* bytes, const SID_IDENTIFIER_AUTHORITY& authority, const DWORD* subAuthorities, BYTE count)
{
    auto* sid = static_cast<SID*>(bytes);
    sid->Revision = 1;
    sid->SubAuthorityCount = count;
    sid->IdentifierAuthority = authority;
    std::copy_n(subAuthorities, count, sid->SubAuthority);
}

} // namespace

SidBytes MakeSid(const SID_IDENTIFIER_AUTHORITY& authority, std::initializer_list<DWORD> subAuthorities)
{
    const auto count = static_cast<BYTE>(subAuthorities.size());
    SidBytes bytes(SidLength(count));
    WriteSid(bytes.data(), authority, subAuthorities.begin(), count);
    return bytes;
}

bool IsValidSid(const void* sid)
{
    const auto* head = static_cast<const SID*>(sid);
    return head != nullptr && head->Revision == 1 && head->SubAuthorityCount <= kMaxSubAuthorities;
}

bool IsSameSid(const void* left, const void* right)
{
    const DWORD length = SidLength(static_cast<const SID*>(left)->SubAuthorityCount);
    return length == SidLength(static_cast<const SID*>(right)->SubAuthorityCount) &&
           std::memcmp(left, right, length) == 0;
}

BOOL AllocateAndInitializeSid(PSID_IDENTIFIER_AUTHORITY authority, BYTE count, DWORD sub0, DWORD sub1,
                              DWORD sub2, DWORD sub3, DWORD sub4, DWORD sub5, DWORD sub6, DWORD sub7,
                              PSID* sid)
{
    const DWORD subAuthorities[] = {sub0, sub1, sub2, sub3, sub4, sub5, sub6, sub7};
    if (authority == nullptr || count > std::size(subAuthorities))
        return FailWith(ERROR_INVALID_SID);
    void* bytes = malloc(SidLength(count));
    if (bytes == nullptr)
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    WriteSid(bytes, *authority, subAuthorities, count);
    *sid = bytes;
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
