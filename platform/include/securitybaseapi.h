// SPDX-License-Identifier: MIT
// Tokens, SIDs, access lists and the access check. A token stands for the process's effective user: it
// carries the Administrators group when that user is root. A list has one entry, which allows.
#pragma once

#include "winnt.h"

#include "platformExport.h"

extern "C"
{
    PLATFORM_EXPORT BOOL ImpersonateSelf(SECURITY_IMPERSONATION_LEVEL level);
    PLATFORM_EXPORT BOOL RevertToSelf();
    PLATFORM_EXPORT BOOL AllocateAndInitializeSid(PSID_IDENTIFIER_AUTHORITY authority, BYTE count, DWORD sub0,
                                                  DWORD sub1, DWORD sub2, DWORD sub3, DWORD sub4, DWORD sub5,
                                                  DWORD sub6, DWORD sub7, PSID* sid);
    PLATFORM_EXPORT PVOID FreeSid(PSID sid);
    PLATFORM_EXPORT DWORD GetLengthSid(PSID sid);
    PLATFORM_EXPORT BOOL InitializeAcl(PACL acl, DWORD size, DWORD revision);
    PLATFORM_EXPORT BOOL AddAccessAllowedAce(PACL acl, DWORD revision, DWORD mask, PSID sid);
    PLATFORM_EXPORT BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision);
    PLATFORM_EXPORT BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL dacl,
                                                   BOOL defaulted);
    PLATFORM_EXPORT BOOL SetSecurityDescriptorGroup(PSECURITY_DESCRIPTOR descriptor, PSID group,
                                                    BOOL defaulted);
    PLATFORM_EXPORT BOOL SetSecurityDescriptorOwner(PSECURITY_DESCRIPTOR descriptor, PSID owner,
                                                    BOOL defaulted);
    PLATFORM_EXPORT BOOL IsValidSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor);

    // Evaluates the access list alone: no privilege grants anything, and the set comes back empty.
    PLATFORM_EXPORT BOOL AccessCheck(PSECURITY_DESCRIPTOR descriptor, HANDLE token, DWORD desired,
                                     PGENERIC_MAPPING mapping, PPRIVILEGE_SET privileges,
                                     LPDWORD privilegesLength, LPDWORD granted, BOOL* status);
}
