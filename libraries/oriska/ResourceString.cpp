// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

String::String(UINT id, HINSTANCE instance)
{
    constexpr int kRoom = 256; // every text of the program is shorter
    mStorage.ReleaseBuffer(LoadStringW(instance, id, mStorage.GetBuffer(kRoom), kRoom));
    mText = mStorage;
}

String::~String() = default;
