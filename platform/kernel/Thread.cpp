// SPDX-License-Identifier: MIT
#include "platform/kernel/Error.h"
#include "winbase.h"

#include <process.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <thread>

using namespace platform;

namespace
{

struct Start
{
    void (*mProcedure)(void*);
    void* mArgument;
};

void* RunThread(void* argument)
{
    const std::unique_ptr<Start> start(static_cast<Start*>(argument));
    start->mProcedure(start->mArgument);
    return nullptr;
}

} // namespace

std::uintptr_t _beginthread(void (*start)(void*), unsigned stackSize, void* argument)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    int result = stackSize == 0 ? 0 : pthread_attr_setstacksize(&attributes, stackSize);
    if (result == 0)
    {
        auto block = std::make_unique<Start>(Start{start, argument});
        pthread_t thread;
        result = pthread_create(&thread, &attributes, RunThread, block.get());
        if (result == 0)
            static_cast<void>(block.release()); // the thread's from here on
    }
    pthread_attr_destroy(&attributes);
    if (result != 0)
    {
        errno = result;
        SetLastError(ErrorFromErrno(result));
        return UINTPTR_MAX;
    }
    return 1;
}

DWORD GetCurrentThreadId()
{
    // Asked by every acquisition of a lock: kept where reading it needs no call.
    [[gnu::tls_model("initial-exec")]] static constinit thread_local DWORD id = 0;
    if (id == 0)
        id = static_cast<DWORD>(gettid());
    return id;
}

void Sleep(DWORD milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
