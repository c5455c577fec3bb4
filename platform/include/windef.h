// SPDX-License-Identifier: MIT
// Basic types. DWORD, ULONG and LONG have exactly 32 bits, as on Windows; wide text is wchar_t and holds
// one code point a unit. Handles are opaque pointers.
#pragma once

#ifndef RC_INVOKED

#include <cstddef>
#include <cstdint>
#include <cwchar>

using BOOL = int;
using BYTE = unsigned char;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using INT = int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using USHORT = std::uint16_t;
using LONGLONG = long long;
using ULONGLONG = unsigned long long;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using HRESULT = LONG;
using ATOM = WORD;
using WCHAR = wchar_t;
using LPWSTR = wchar_t*;
using PWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using PCWSTR = const wchar_t*;
using LPSTR = char*;
using LPCSTR = const char*;
using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using LPDWORD = DWORD*;
using PBYTE = BYTE*;
using PULONG = ULONG*;
using HANDLE = void*;
using HLOCAL = HANDLE;

#define TAVO_DECLARE_HANDLE(name)                                                                            \
    struct name##__;                                                                                         \
    using name = name##__*

TAVO_DECLARE_HANDLE(HWND);
TAVO_DECLARE_HANDLE(HINSTANCE);
TAVO_DECLARE_HANDLE(HICON);
TAVO_DECLARE_HANDLE(HDC);
TAVO_DECLARE_HANDLE(HKEY);
TAVO_DECLARE_HANDLE(HRSRC);
#undef TAVO_DECLARE_HANDLE
using HMODULE = HINSTANCE;
using HCURSOR = HICON;
using HGLOBAL = HANDLE;

struct POINT
{
    LONG x;
    LONG y;
};

struct RECT
{
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
using LPRECT = RECT*;

struct FILETIME
{
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

#define WINAPI
#define CALLBACK
#define __cdecl

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

#define MAX_PATH 260

#define LOWORD(value) (static_cast<WORD>(static_cast<DWORD_PTR>(value) & 0xFFFF))
#define HIWORD(value) (static_cast<WORD>((static_cast<DWORD_PTR>(value) >> 16) & 0xFFFF))
#define MAKELONG(low, high)                                                                                  \
    (static_cast<LONG>(static_cast<WORD>(low) | (static_cast<DWORD>(static_cast<WORD>(high)) << 16)))
#define MAKEWPARAM(low, high) (static_cast<WPARAM>(static_cast<DWORD>(MAKELONG(low, high))))
#define MAKEINTRESOURCEW(id) (reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(id))))

#endif // RC_INVOKED
