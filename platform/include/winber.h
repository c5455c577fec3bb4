// SPDX-License-Identifier: MIT
#pragma once

#include "winldap.h"

// With `freeBuffer` 0, since the buffer of a position is that of its message. Null is ignored.
// NOLINTNEXTLINE(readability-redundant-declaration): the library beneath has one of that name
extern "C" PLATFORM_EXPORT void ber_free(BerElement* element, INT freeBuffer) WLDAP32_SYMBOL(ber_free);
