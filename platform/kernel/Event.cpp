// SPDX-License-Identifier: MIT
// Events, alone in the process or shared by name. Either way waiting threads sleep in the kernel on one word
// (futex(2)), which lies in the object or in the named block.
#include "platform/kernel/Handle.h"
#include "platform/kernel/NamedMemory.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>

namespace
{

constexpr std::uint32_t kSignalled = 1; // in mWord; the rest of the word counts the times it was set
constexpr std::uint32_t kOneSet = 2;

struct EventState
{
    std::uint32_t mWord;
    std::uint32_t mManualReset;
};

// Sleeps while the word holds `expected`. False when the deadline has passed.
bool SleepOn(std::uint32_t& word, std::uint32_t expected, const Deadline& deadline)
{
    timespec until = {};
    if (deadline)
    {
        const auto since = deadline->time_since_epoch();
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(since);
        until.tv_sec = seconds.count();
        until.tv_nsec = std::chrono::nanoseconds(since - seconds).count();
    }
    // FUTEX_WAIT_BITSET takes an absolute time of the monotonic clock, which is steady_clock's.
    const long result = syscall(SYS_futex, &word, FUTEX_WAIT_BITSET, expected, deadline ? &until : nullptr,
                                nullptr, FUTEX_BITSET_MATCH_ANY);
    return result == 0 || errno != ETIMEDOUT;
}

class Event : public Waitable
{
public:
    explicit Event(const EventState& state) : mOwn(state), mState(&mOwn) {}
    explicit Event(std::unique_ptr<NamedMemory> shared)
        : mOwn(), mShared(std::move(shared)), mState(static_cast<EventState*>(mShared->Data()))
    {
    }

    bool Wait(Deadline deadline) override
    {
        return mState->mManualReset != 0 ? WaitManual(deadline) : WaitAuto(deadline);
    }

    void Set()
    {
        std::uint32_t value = Word().load();
        while ((value & kSignalled) == 0 &&
               !Word().compare_exchange_weak(value, (value + kOneSet) | kSignalled))
        {
        }
        // Also when it was set already: the waiter that was woken for it may have been killed.
        syscall(SYS_futex, &mState->mWord, FUTEX_WAKE, mState->mManualReset != 0 ? INT_MAX : 1, nullptr,
                nullptr, 0);
    }

    void Reset() { Word().fetch_and(~kSignalled); }

private:
    std::atomic_ref<std::uint32_t> Word() { return std::atomic_ref(mState->mWord); }

    // One set releases all who waited at that moment, however soon the reset follows: they see its count.
    bool WaitManual(const Deadline& deadline)
    {
        const std::uint32_t start = Word().load();
        std::uint32_t value = start;
        while ((value & kSignalled) == 0 && value == start)
        {
            if (!SleepOn(mState->mWord, value, deadline))
                return false;
            value = Word().load();
        }
        return true;
    }

    bool WaitAuto(const Deadline& deadline)
    {
        for (;;)
        {
            std::uint32_t value = Word().load();
            if ((value & kSignalled) != 0)
            {
                if (Word().compare_exchange_weak(value, value & ~kSignalled))
                    return true;
            }
            else if (!SleepOn(mState->mWord, value, deadline))
            {
                return false;
            }
        }
    }

    EventState mOwn;
    std::unique_ptr<NamedMemory> mShared;
    EventState* mState;
};

bool HasNullAccessList(const SECURITY_ATTRIBUTES* attributes)
{
    if (attributes == nullptr || attributes->lpSecurityDescriptor == nullptr)
        return false;
    const auto* descriptor = static_cast<const SECURITY_DESCRIPTOR*>(attributes->lpSecurityDescriptor);
    return (descriptor->Control & SE_DACL_PRESENT) != 0 && descriptor->Dacl == nullptr;
}

HANDLE CreateNamedEvent(std::wstring name, NamedMemory::Access access, const EventState& initial)
{
    constexpr std::wstring_view kGlobal = L"Global\\";
    if (name.starts_with(kGlobal))
        name.erase(0, kGlobal.size());
    if (name.find(L'\\') != std::wstring::npos)
    {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return nullptr;
    }
    bool existed = false;
    auto memory = NamedMemory::Open(name, access, &initial, sizeof initial, existed);
    if (memory == nullptr)
        return nullptr;
    const HANDLE handle = MakeHandle(std::make_shared<Event>(std::move(memory)));
    SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}

} // namespace

HANDLE CreateEventW(LPSECURITY_ATTRIBUTES attributes, BOOL manualReset, BOOL initialState, LPCWSTR name)
{
    const EventState initial = {initialState ? kSignalled : 0, manualReset ? 1U : 0U};
    if (name != nullptr && *name != L'\0')
    {
        const bool everybody = HasNullAccessList(attributes);
        return CreateNamedEvent(name, everybody ? NamedMemory::Access::Everybody : NamedMemory::Access::Owner,
                                initial);
    }
    SetLastError(ERROR_SUCCESS);
    return MakeHandle(std::make_shared<Event>(initial));
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
