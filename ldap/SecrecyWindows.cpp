// SPDX-License-Identifier: MIT
#include "ldap/Secrecy.h"

#include <windows.h>

void KeepMemoryToOurselves()
{
    SetErrorMode(GetErrorMode() | SEM_NOGPFAULTERRORBOX); // no error report, of which the image is a part
}

void Wipe(ZTString& text)
{
    const int room = text.GetAllocLength();
    if (room == 0)
        return;
    SecureZeroMemory(text.GetBuffer(room), static_cast<std::size_t>(room) * sizeof(wchar_t));
    text.ReleaseBuffer(0);
}
