// SPDX-License-Identifier: MIT
#include "platform/kernel/Error.h"
#include "platform/security/AccessList.h"
#include "platform/security/Sid.h"
#include "securitybaseapi.h"

namespace
{

constexpr unsigned kOwnerDefaulted = 0x0001; // bits of the control word
constexpr unsigned kGroupDefaulted = 0x0002;
constexpr unsigned kDaclDefaulted = 0x0008;

// Null with ERROR_UNKNOWN_REVISION for what is no descriptor.
SECURITY_DESCRIPTOR* DescriptorAt(PSECURITY_DESCRIPTOR block)
{
    auto* descriptor = static_cast<SECURITY_DESCRIPTOR*>(block);
    if (descriptor->Revision != SECURITY_DESCRIPTOR_REVISION)
    {
        FailWith(ERROR_UNKNOWN_REVISION);
        return nullptr;
    }
    return descriptor;
}

void SetFlag(SECURITY_DESCRIPTOR& descriptor, unsigned flag, BOOL on)
{
    descriptor.Control = static_cast<WORD>(on ? descriptor.Control | flag : descriptor.Control & ~flag);
}

BOOL SetSid(PSECURITY_DESCRIPTOR block, PSID SECURITY_DESCRIPTOR::*member, PSID sid, unsigned flag,
            BOOL defaulted)
{
    SECURITY_DESCRIPTOR* descriptor = DescriptorAt(block);
    if (descriptor == nullptr)
        return FALSE;
    if (sid != nullptr && !IsValidSid(sid))
        return FailWith(ERROR_INVALID_SID);
    descriptor->*member = sid;
    SetFlag(*descriptor, flag, defaulted);
    return TRUE;
}

} // namespace

BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision)
{
    if (revision != SECURITY_DESCRIPTOR_REVISION)
        return FailWith(ERROR_UNKNOWN_REVISION);
    *static_cast<SECURITY_DESCRIPTOR*>(descriptor) = {
        SECURITY_DESCRIPTOR_REVISION, 0, 0, nullptr, nullptr, nullptr, nullptr};
    return TRUE;
}

BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR block, BOOL present, PACL dacl, BOOL defaulted)
{
    SECURITY_DESCRIPTOR* descriptor = DescriptorAt(block);
    if (descriptor == nullptr)
        return FALSE;
    SetFlag(*descriptor, SE_DACL_PRESENT, present);
    if (present)
    {
        descriptor->Dacl = dacl;
        SetFlag(*descriptor, kDaclDefaulted, defaulted);
    }
    return TRUE;
}

BOOL SetSecurityDescriptorGroup(PSECURITY_DESCRIPTOR descriptor, PSID group, BOOL defaulted)
{
    return SetSid(descriptor, &SECURITY_DESCRIPTOR::Group, group, kGroupDefaulted, defaulted);
}

BOOL SetSecurityDescriptorOwner(PSECURITY_DESCRIPTOR descriptor, PSID owner, BOOL defaulted)
{
    return SetSid(descriptor, &SECURITY_DESCRIPTOR::Owner, owner, kOwnerDefaulted, defaulted);
}

BOOL IsValidSecurityDescriptor(PSECURITY_DESCRIPTOR block)
{
    const auto* descriptor = static_cast<const SECURITY_DESCRIPTOR*>(block);
    const auto isGood = [](const void* sid) { return sid == nullptr || IsValidSid(sid); };
    const bool listed = (descriptor->Control & SE_DACL_PRESENT) != 0 && descriptor->Dacl != nullptr;
    const bool valid = descriptor->Revision == SECURITY_DESCRIPTOR_REVISION && isGood(descriptor->Owner) &&
                       isGood(descriptor->Group) && (!listed || EntriesOf(*descriptor->Dacl));
    return valid ? TRUE : FailWith(ERROR_INVALID_SECURITY_DESCR);
}
