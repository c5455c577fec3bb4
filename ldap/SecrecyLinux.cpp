// SPDX-License-Identifier: MIT
#include "ldap/Secrecy.h"

#include <cstring>

#include <sys/prctl.h>

void KeepMemoryToOurselves()
{
    prctl(PR_SET_DUMPABLE, 0);
}

void Wipe(ZTString& text)
{
    const int room = text.GetAllocLength();
    if (room == 0)
        return;
    explicit_bzero(text.GetBuffer(room), static_cast<std::size_t>(room) * sizeof(wchar_t));
    text.ReleaseBuffer(0);
}
