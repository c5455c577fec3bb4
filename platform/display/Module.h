// SPDX-License-Identifier: MIT
// Parts of the layer whose libraries a run may not need or have: loaded when they are wanted.
#pragma once

namespace platform
{

// What a module, a file beside the layer's own library, exports under a name. Null when there is none;
// dlerror(3) says why.
void* FindInModule(const char* file, const char* name);

} // namespace platform
