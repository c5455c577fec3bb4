// SPDX-License-Identifier: MIT
// Keeps what is typed into the credentials dialog out of what others may read of this process.
#pragma once

#include "foundation/Oriska.h"

// From now on a crash leaves no image of the process's memory, and on Linux no other process of the account
// may read it.
void KeepMemoryToOurselves();

// Empties a text and overwrites all its memory.
void Wipe(ZTString& text);
