// SPDX-License-Identifier: MIT
#include "foundation/OpenAccess.h"

SECURITY_ATTRIBUTES* OpenAccessAttributes()
{
    constexpr SIZE_T kDescriptorBytes = 40;
    static SECURITY_ATTRIBUTES attributes{};
    static bool built = false;
    if (!built)
    {
        attributes.nLength = sizeof(attributes);
        attributes.bInheritHandle = TRUE;
        attributes.lpSecurityDescriptor = LocalAlloc(LPTR, kDescriptorBytes);
        InitializeSecurityDescriptor(attributes.lpSecurityDescriptor, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(attributes.lpSecurityDescriptor, TRUE, nullptr, FALSE);
        built = true;
    }
    return &attributes;
}
