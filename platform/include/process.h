// SPDX-License-Identifier: MIT
// The C runtime's way to start a thread.
#pragma once

#include "platformExport.h"

#include <cstdint>

extern "C"
{
    // Not waitable: the result only tells success. All ones, with errno set, when no thread could be made.
    PLATFORM_EXPORT std::uintptr_t _beginthread(void (*start)(void*), unsigned stackSize, void* argument);
}
