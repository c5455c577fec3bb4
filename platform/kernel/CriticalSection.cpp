// SPDX-License-Identifier: MIT
#include "winbase.h"

#include <thread>

BOOL InitializeCriticalSectionAndSpinCount(LPCRITICAL_SECTION section, DWORD spinCount)
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&section->Mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    section->SpinCount = std::thread::hardware_concurrency() > 1 ? spinCount : 0;
    return TRUE;
}

void DeleteCriticalSection(LPCRITICAL_SECTION section)
{
    pthread_mutex_destroy(&section->Mutex);
}
