// SPDX-License-Identifier: MIT
#include "platform/kernel/Handle.h"

#include <mutex>
#include <unordered_map>

using namespace platform;

namespace
{

using Objects = std::unordered_map<HANDLE, std::shared_ptr<HandleObject>>;

struct Table
{
    std::mutex mMutex;
    Objects mObjects;
    ULONG_PTR mLast = 0;
};

// Never destroyed: threads that nobody waits for may use it while the process ends.
Table& TheTable()
{
    static auto* table = new Table;
    return *table;
}

struct CloseAtExit
{
    ~CloseAtExit() { CloseAllHandles(); }
};
const CloseAtExit gCloseAtExit;

} // namespace

HANDLE platform::MakeHandle(std::shared_ptr<HandleObject> object)
{
    constexpr ULONG_PTR kStep = 4; // as on Windows, whose handles leave the two low bits to the program
    Table& table = TheTable();
    const std::scoped_lock lock(table.mMutex);
    table.mLast += kStep;
    const auto handle = reinterpret_cast<HANDLE>(table.mLast);
    table.mObjects.emplace(handle, std::move(object));
    return handle;
}

std::shared_ptr<HandleObject> platform::ObjectOf(HANDLE handle)
{
    Table& table = TheTable();
    const std::scoped_lock lock(table.mMutex);
    const auto found = table.mObjects.find(handle);
    return found == table.mObjects.end() ? nullptr : found->second;
}

void platform::ForgetHandle(HANDLE handle)
{
    Table& table = TheTable();
    Objects::node_type node; // destroyed after the lock is gone: an object may take its time to end
    const std::scoped_lock lock(table.mMutex);
    node = table.mObjects.extract(handle);
}

void platform::CloseAllHandles()
{
    Objects objects;
    const std::scoped_lock lock(TheTable().mMutex);
    objects.swap(TheTable().mObjects);
}

BOOL CloseHandle(HANDLE handle)
{
    return CloseHandleOf<KernelObject>(handle);
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds)
{
    const auto object = ObjectOf<Waitable>(handle);
    if (object == nullptr)
        return WAIT_FAILED;
    const Deadline deadline =
        milliseconds == INFINITE ? kNever : Clock::now() + std::chrono::milliseconds(milliseconds);
    return object->Wait(deadline) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}
