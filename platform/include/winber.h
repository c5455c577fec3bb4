// SPDX-License-Identifier: MIT
#pragma once

#include "winldap.h"

// `freeBuffer` is not looked at: a position owns no buffer of its own. Null is ignored.
// NOLINTNEXTLINE(readability-redundant-declaration): the library beneath has one of that name
extern "C" PLATFORM_EXPORT void ber_free(BerElement* element, INT freeBuffer) WLDAP32_SYMBOL(ber_free);
