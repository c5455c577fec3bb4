// SPDX-License-Identifier: MIT
// Access rights, tokens and security structures, file attributes.
#pragma once

#include "windef.h"
#include "winerror.h"

using PSID = void*;
using PSECURITY_DESCRIPTOR = void*;
using SECURITY_DESCRIPTOR_CONTROL = WORD;
using LCID = DWORD;
using LANGID = WORD;

#define FILE_ATTRIBUTE_DIRECTORY 0x00000010
#define FILE_ATTRIBUTE_NORMAL 0x00000080
#define FILE_ATTRIBUTE_REPARSE_POINT 0x00000400
#define IO_REPARSE_TAG_SYMLINK 0xA000000CU
#define IO_REPARSE_TAG_MOUNT_POINT 0xA0000003U

#define TOKEN_QUERY 0x0008

#define SECURITY_DESCRIPTOR_REVISION 1
#define SE_DACL_PRESENT 0x0004
#define ACL_REVISION2 2
#define SECURITY_BUILTIN_DOMAIN_RID 0x00000020
#define DOMAIN_ALIAS_RID_ADMINS 0x00000220

struct SID_IDENTIFIER_AUTHORITY
{
    BYTE Value[6];
};
using PSID_IDENTIFIER_AUTHORITY = SID_IDENTIFIER_AUTHORITY*;

// clang-format off
#define SECURITY_NT_AUTHORITY {0, 0, 0, 0, 0, 5}
// clang-format on

struct SID
{
    BYTE Revision;
    BYTE SubAuthorityCount;
    SID_IDENTIFIER_AUTHORITY IdentifierAuthority;
    DWORD SubAuthority[1];
};

struct ACL
{
    BYTE AclRevision;
    BYTE Sbz1;
    WORD AclSize;
    WORD AceCount;
    WORD Sbz2;
};
using PACL = ACL*;

struct ACE_HEADER
{
    BYTE AceType;
    BYTE AceFlags;
    WORD AceSize;
};

struct ACCESS_ALLOWED_ACE
{
    ACE_HEADER Header;
    DWORD Mask;
    DWORD SidStart;
};

struct SECURITY_DESCRIPTOR
{
    BYTE Revision;
    BYTE Sbz1;
    SECURITY_DESCRIPTOR_CONTROL Control;
    PSID Owner;
    PSID Group;
    PACL Sacl;
    PACL Dacl;
};

struct GENERIC_MAPPING
{
    DWORD GenericRead;
    DWORD GenericWrite;
    DWORD GenericExecute;
    DWORD GenericAll;
};
using PGENERIC_MAPPING = GENERIC_MAPPING*;

struct LUID
{
    DWORD LowPart;
    LONG HighPart;
};

struct LUID_AND_ATTRIBUTES
{
    LUID Luid;
    DWORD Attributes;
};

struct PRIVILEGE_SET
{
    DWORD PrivilegeCount;
    DWORD Control;
    LUID_AND_ATTRIBUTES Privilege[1];
};
using PPRIVILEGE_SET = PRIVILEGE_SET*;

enum SECURITY_IMPERSONATION_LEVEL
{
    SecurityImpersonation = 2
};
