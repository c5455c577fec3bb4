// SPDX-License-Identifier: MIT
// The process's table of handles. A handle is a number that is never used twice, and each call finds the
// object that it stands for by kind, so a handle that is closed, made up or of another kind cannot be
// mistaken.
#pragma once

#include "base/Deadline.h"
#include "platform/kernel/Error.h"
#include "winbase.h"

#include <memory>

namespace platform
{

class HandleObject
{
public:
    HandleObject() = default;
    virtual ~HandleObject() = default;
    HandleObject(const HandleObject&) = delete;
    HandleObject& operator=(const HandleObject&) = delete;
};

// What CloseHandle closes; other objects have a call of their own.
class KernelObject : public HandleObject
{
};

class Waitable : public KernelObject
{
public:
    // False when the deadline has passed first.
    virtual bool Wait(Deadline deadline) = 0;
};

HANDLE MakeHandle(std::shared_ptr<HandleObject> object);

// Null for a handle that is not in the table.
std::shared_ptr<HandleObject> ObjectOf(HANDLE handle);
void ForgetHandle(HANDLE handle);

// Closes what the program left open as the process ends, so that no name stays behind.
void CloseAllHandles();

// The object of a kind; null and ERROR_INVALID_HANDLE for any other handle.
template <typename Kind>
std::shared_ptr<Kind> ObjectOf(HANDLE handle)
{
    auto object = std::dynamic_pointer_cast<Kind>(ObjectOf(handle));
    if (object == nullptr)
        SetLastError(ERROR_INVALID_HANDLE);
    return object;
}

// Takes a handle of a kind out of the table. Who still uses the object keeps it alive.
template <typename Kind>
BOOL CloseHandleOf(HANDLE handle)
{
    if (ObjectOf<Kind>(handle) == nullptr)
        return FALSE;
    ForgetHandle(handle);
    return TRUE;
}

} // namespace platform
