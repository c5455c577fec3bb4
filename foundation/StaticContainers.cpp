// SPDX-License-Identifier: MIT
// The registered containers of this program, its lock and its string. Nothing here uses them: they are there
// for whoever walks the registry.
#include "foundation/Cleanable.h"
#include "foundation/StaticOrder.h"

namespace
{

[[gnu::init_priority(kStaticContainers)]] CleanableVector<ZTString> gVectors[6];
[[gnu::init_priority(kStaticContainers)]] CLockCS gLock;
[[gnu::init_priority(kStaticContainers)]] ZTString gText;

} // namespace
