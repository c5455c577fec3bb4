// SPDX-License-Identifier: MIT
// What the tree relies on in the layer's headers and the real ones: types, and numbers that people see.
#define SECURITY_WIN32
#include <windows.h>

#include <security.h>
#include <time.h>
#include <wchar.h>

#include <type_traits>

static_assert(sizeof(DWORD) == 4 && sizeof(ULONG) == 4 && sizeof(LONG) == 4 && sizeof(WORD) == 2 &&
              sizeof(BOOL) == 4);
static_assert(sizeof(LRESULT) == 8 && sizeof(WPARAM) == 8 && sizeof(HANDLE) == 8 && sizeof(__time64_t) == 8);
static_assert(std::is_same_v<WCHAR, wchar_t> && std::is_unsigned_v<DWORD> && std::is_signed_v<LONG>);

static_assert(WAIT_OBJECT_0 == 0 && WAIT_TIMEOUT == 258 && WAIT_FAILED == 0xFFFFFFFF &&
              INFINITE == 0xFFFFFFFF);
static_assert(STILL_ACTIVE == 259 && STARTF_USESHOWWINDOW == 1 && LPTR == 64);
static_assert(TIME_ZONE_ID_UNKNOWN == 0 && TIME_ZONE_ID_STANDARD == 1 && TIME_ZONE_ID_DAYLIGHT == 2);
static_assert(FILE_ATTRIBUTE_DIRECTORY == 16 && FILE_ATTRIBUTE_NORMAL == 128 &&
              FILE_ATTRIBUTE_REPARSE_POINT == 1024);
static_assert(IO_REPARSE_TAG_SYMLINK == 0xA000000C && IO_REPARSE_TAG_MOUNT_POINT == 0xA0000003);
static_assert(FORMAT_MESSAGE_FROM_SYSTEM == 0x1000 && FORMAT_MESSAGE_IGNORE_INSERTS == 0x200);
static_assert(TOKEN_QUERY == 8 && SecurityImpersonation == 2 && SECURITY_DESCRIPTOR_REVISION == 1 &&
              ACL_REVISION2 == 2);
static_assert(SECURITY_BUILTIN_DOMAIN_RID == 32 && DOMAIN_ALIAS_RID_ADMINS == 544 && SE_DACL_PRESENT == 4);
static_assert(CP_ACP == 0 && REG_SZ == 1 && LOCALE_CUSTOM_DEFAULT == 0x0C00);
static_assert(NameUnknown == 0);

// clang-format off
static_assert(ERROR_SUCCESS == 0 && ERROR_FILE_NOT_FOUND == 2 && ERROR_PATH_NOT_FOUND == 3 && ERROR_TOO_MANY_OPEN_FILES == 4);
static_assert(ERROR_ACCESS_DENIED == 5 && ERROR_INVALID_HANDLE == 6 && ERROR_NOT_ENOUGH_MEMORY == 8);
static_assert(ERROR_NO_MORE_FILES == 18 && ERROR_WRITE_PROTECT == 19 && ERROR_GEN_FAILURE == 31);
static_assert(ERROR_SHARING_VIOLATION == 32 && ERROR_NOT_SUPPORTED == 50 && ERROR_INVALID_PARAMETER == 87);
static_assert(ERROR_BUFFER_OVERFLOW == 111 && ERROR_DISK_FULL == 112 && ERROR_INSUFFICIENT_BUFFER == 122);
static_assert(ERROR_BUSY == 170 && ERROR_ALREADY_EXISTS == 183 && ERROR_BAD_EXE_FORMAT == 193);
static_assert(ERROR_FILENAME_EXCED_RANGE == 206 && ERROR_MORE_DATA == 234 && ERROR_DIRECTORY == 267);
static_assert(ERROR_MR_MID_NOT_FOUND == 317 && ERROR_NO_TOKEN == 1008 && ERROR_IO_DEVICE == 1117);
static_assert(CTRL_C_EVENT == 0 && CTRL_CLOSE_EVENT == 2 && CTRL_SHUTDOWN_EVENT == 6);
// clang-format on
