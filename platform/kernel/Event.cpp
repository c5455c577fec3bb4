// SPDX-License-Identifier: MIT
// Named events: a set of System V semaphores for each name (semop(2)). The kernel takes a process that ends,
// killed or not, off the count of holders; no account can shrink what another one uses; where there is no
// room for a set, making it is what fails.
#include "platform/kernel/Handle.h"
#include "text/Unicode.h"

#include <sys/ipc.h>
#include <sys/sem.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

using namespace platform;

namespace
{

enum Semaphore : unsigned short
{
    kIsSet,
    kHolders, // a name without any counts as not there
    kIsGone,  // 1: the last holder has left and removes the set
    kSemaphores,
};

constexpr short kNow = IPC_NOWAIT;
constexpr short kUndone = IPC_NOWAIT | SEM_UNDO; // by the kernel when the process ends

// All of the operations at once, or none and an errno.
template <std::size_t count>
bool Operate(int set, sembuf (&&operations)[count])
{
    return semop(set, operations, count) == 0;
}

void SetValue(int set, Semaphore semaphore, int value)
{
    union
    {
        int mValue;
        void* mPointer;
    } argument = {value};
    semctl(set, semaphore, SETVAL, argument);
}

key_t KeyOf(std::wstring_view name)
{
    std::uint32_t hash = 0x811C9DC5; // FNV-1a
    for (const char byte : "tavo." + text::ToUtf8(name))
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x01000193;
    return static_cast<key_t>(hash == IPC_PRIVATE ? 1 : hash);
}

// Becomes a holder of the name: its set, or -1 and an errno.
int HoldSet(key_t key, int mode, bool& existed)
{
    constexpr int kTries = 1000; // a ms each; a set that is gone is removed in moments
    for (int tries = 0; tries < kTries; ++tries)
    {
        const int set = semget(key, kSemaphores, IPC_CREAT | mode);
        if (set == -1)
            return -1;
        existed = !Operate(set, {{kIsGone, 0, kNow}, {kHolders, 0, kNow}, {kHolders, 1, kUndone}});
        if (!existed)
        {
            SetValue(set, kIsSet, 0); // what a killed holder left
            return set;
        }
        if (errno == EAGAIN &&
            Operate(set, {{kIsGone, 0, kNow}, {kHolders, -1, kUndone}, {kHolders, 2, kUndone}}))
            return set;
        if (errno != EAGAIN && errno != EIDRM && errno != EINVAL && errno != EINTR)
            return -1;
        if (semctl(set, kIsGone, GETVAL) == 1)
            semctl(set, 0, IPC_RMID); // its last holder was killed at it
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    errno = EACCES;
    return -1;
}

bool MayRemove(int set)
{
    semid_ds status = {};
    union
    {
        semid_ds* mStatus;
        int mValue;
    } argument = {&status};
    return semctl(set, 0, IPC_STAT, argument) == 0 && status.sem_perm.uid == geteuid();
}

class Event : public Waitable
{
public:
    explicit Event(int set) : mSet(set) {}

    // Another account's set stays, held by nobody.
    ~Event() override
    {
        if (MayRemove(mSet) &&
            Operate(mSet, {{kHolders, -1, kUndone}, {kHolders, 0, kNow}, {kIsGone, 1, kNow}}))
            semctl(mSet, 0, IPC_RMID);
        else
            Operate(mSet, {{kHolders, -1, kUndone}});
    }

    bool Wait(Deadline deadline) override
    {
        sembuf whenSet[] = {{kIsSet, -1, 0}, {kIsSet, 1, 0}};
        for (;;)
        {
            const int left = MillisecondsUntil(deadline);
            const timespec rest = {left / 1000, left % 1000 * 1'000'000L};
            if (semtimedop(mSet, whenSet, std::size(whenSet), &rest) == 0)
                return true;
            if (errno != EINTR && (errno != EAGAIN || Clock::now() >= deadline))
                return false;
        }
    }

    void Set() { SetValue(mSet, kIsSet, 1); }
    void Reset() { SetValue(mSet, kIsSet, 0); }

private:
    int mSet;
};

bool HasNullAccessList(const SECURITY_ATTRIBUTES* attributes)
{
    if (attributes == nullptr || attributes->lpSecurityDescriptor == nullptr)
        return false;
    const auto* descriptor = static_cast<const SECURITY_DESCRIPTOR*>(attributes->lpSecurityDescriptor);
    return (descriptor->Control & SE_DACL_PRESENT) != 0 && descriptor->Dacl == nullptr;
}

} // namespace

HANDLE CreateEventW(LPSECURITY_ATTRIBUTES attributes, BOOL, BOOL initialState, LPCWSTR name)
{
    constexpr std::wstring_view kGlobal = L"Global\\";
    std::wstring_view own = name == nullptr ? L"" : name;
    if (own.starts_with(kGlobal))
        own.remove_prefix(kGlobal.size());
    if (own.empty() || initialState || own.find(L'\\') != std::wstring_view::npos)
    {
        SetLastError(own.empty() || initialState ? ERROR_INVALID_PARAMETER : ERROR_PATH_NOT_FOUND);
        return nullptr;
    }
    bool existed = false;
    const int set = HoldSet(KeyOf(own), HasNullAccessList(attributes) ? 0666 : 0600, existed);
    if (set == -1)
    {
        // A limit on sets is not a full disk.
        FailWith(errno == ENOSPC ? ERROR_NOT_ENOUGH_MEMORY : ErrorFromErrno(errno));
        return nullptr;
    }
    const HANDLE handle = MakeHandle(std::make_shared<Event>(set));
    SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}

BOOL SetEvent(HANDLE event)
{
    const auto object = ObjectOf<Event>(event);
    if (object == nullptr)
        return FALSE;
    object->Set();
    return TRUE;
}

BOOL ResetEvent(HANDLE event)
{
    const auto object = ObjectOf<Event>(event);
    if (object == nullptr)
        return FALSE;
    object->Reset();
    return TRUE;
}
