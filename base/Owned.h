// SPDX-License-Identifier: MIT
// The one owner of a thing that a library hands out and takes back.
#pragma once

#include <memory>

template <auto close>
struct Closer
{
    template <typename Kind>
    void operator()(Kind* thing) const
    {
        close(thing);
    }
};

// Owns what a pointer stands for and gives it to `close`, a function, in the end: Owned<void, CloseHandle>.
template <typename Kind, auto close>
using Owned = std::unique_ptr<Kind, Closer<close>>;
