// SPDX-License-Identifier: MIT
#include "ldap/Secrecy.h"

#include <windows.h>

void KeepMemoryToOurselves()
{
    SetErrorMode(GetErrorMode() | SEM_NOGPFAULTERRORBOX); // no error report, of which the image is a part
}

void Wipe(ZTString& text)
{
    const auto length = static_cast<std::size_t>(text.GetLength());
    SecureZeroMemory(text.GetBuffer(text.GetLength()), length * sizeof(wchar_t));
}
