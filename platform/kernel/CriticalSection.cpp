// SPDX-License-Identifier: MIT
#include "winbase.h"

#include <thread>

namespace
{

void RestProcessor()
{
#if defined(__x86_64__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

} // namespace

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

void EnterCriticalSection(LPCRITICAL_SECTION section)
{
    for (DWORD spin = 0; spin < section->SpinCount; ++spin)
    {
        if (pthread_mutex_trylock(&section->Mutex) == 0)
        {
            return;
        }
        RestProcessor();
    }
    pthread_mutex_lock(&section->Mutex);
}

void LeaveCriticalSection(LPCRITICAL_SECTION section)
{
    pthread_mutex_unlock(&section->Mutex);
}

void DeleteCriticalSection(LPCRITICAL_SECTION section)
{
    pthread_mutex_destroy(&section->Mutex);
}
