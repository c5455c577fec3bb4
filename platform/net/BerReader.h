// SPDX-License-Identifier: MIT
// OpenLDAP's reader of BER on bytes that stay where they are.
#pragma once

#include "base/Owned.h"

#include <new>
#include <string_view>

#include <lber.h>

namespace platform
{

inline void FreeBerReader(BerElement* reader)
{
    ber_free(reader, 0);
}
using BerReader = Owned<BerElement, FreeBerReader>;

// The bytes must outlive the reader. Throws std::bad_alloc.
inline BerReader ReaderOf(std::string_view bytes)
{
    BerReader reader(ber_alloc_t(0));
    if (reader == nullptr)
        throw std::bad_alloc();
    berval all = {bytes.size(), const_cast<char*>(bytes.data())};
    ber_init2(reader.get(), &all, 0);
    return reader;
}

inline std::string_view ViewOf(const berval& value)
{
    return {value.bv_val, value.bv_len};
}

} // namespace platform
