// SPDX-License-Identifier: MIT
#include "foundation/EndOfRun.h"

#include "foundation/Kelvane.h"

#include <mutex>
#include <vector>

namespace
{

struct End
{
    std::recursive_mutex mGuard;
    std::vector<std::function<void()>> mActions;
};

// Never destroyed: an end may come while the process ends by itself.
End& TheEnd()
{
    static auto& end = *new End;
    return end;
}

} // namespace

AtEndOfRun::AtEndOfRun(std::function<void()> action)
{
    const std::scoped_lock lock(TheEnd().mGuard);
    TheEnd().mActions.push_back(std::move(action));
}

AtEndOfRun::~AtEndOfRun()
{
    const std::scoped_lock lock(TheEnd().mGuard);
    TheEnd().mActions.pop_back();
}

EndOfRunWaits::EndOfRunWaits()
{
    TheEnd().mGuard.lock();
}

EndOfRunWaits::~EndOfRunWaits()
{
    TheEnd().mGuard.unlock();
}

void EndRun(const wchar_t* reason)
{
    SignalShutdown(reason);
    TheEnd().mGuard.lock(); // for good
    for (auto action = TheEnd().mActions.rbegin(); action != TheEnd().mActions.rend(); ++action)
        (*action)();
}
