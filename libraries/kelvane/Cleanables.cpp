// SPDX-License-Identifier: MIT
// Static objects of the program enter and leave the registry before and after everything else: it is made on
// first use and never destroyed.
#include "foundation/Cleanable.h"

namespace
{

CLockCS* NewLock(const wchar_t* label)
{
    auto* lock = new CLockCS;
    lock->mLabel = label;
    return lock;
}

} // namespace

std::set<Cleanable*>& GetgCleanables()
{
    static auto& registry = *new std::set<Cleanable*>;
    return registry;
}

CLockCS& GetgCleanablesCS()
{
    static CLockCS& lock = *NewLock(L"gCleanablesCS");
    return lock;
}

CLockCS& GetgCleanablesDeleteCS()
{
    static CLockCS& lock = *NewLock(L"gCleanablesDeleteCS");
    return lock;
}
