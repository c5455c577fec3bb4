// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

String::String(UINT id, HINSTANCE instance)
{
    // A string that fills the buffer but for its terminator may have been cut.
    int room = 128;
    int length;
    do
    {
        room *= 2;
        length = LoadStringW(instance, id, mStorage.GetBuffer(room), room);
        mStorage.ReleaseBuffer(length);
    } while (length == room - 1);
    mText = mStorage;
}

String::~String() = default;
