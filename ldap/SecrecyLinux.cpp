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
    const auto length = static_cast<std::size_t>(text.GetLength());
    explicit_bzero(text.GetBuffer(text.GetLength()), length * sizeof(wchar_t));
}
