// SPDX-License-Identifier: MIT
// OpenLDAP's reader of BER on bytes that stay where they are. It is made once and begins anew for each text.
#pragma once

#include "base/Owned.h"

#include <new>
#include <string_view>

#include <lber.h>

namespace platform
{

// Not defined here: where the Windows name ber_free is known, it would be that one.
void FreeBerElement(BerElement* element);

class BerReader
{
public:
    // The bytes must outlive what is read; the element is the reader's own. Throws std::bad_alloc.
    BerElement* Begin(std::string_view bytes)
    {
        if (mElement == nullptr)
            mElement.reset(ber_alloc_t(0));
        if (mElement == nullptr)
            throw std::bad_alloc();
        berval all = {bytes.size(), const_cast<char*>(bytes.data())};
        ber_init2(mElement.get(), &all, 0);
        return mElement.get();
    }

private:
    Owned<BerElement, FreeBerElement> mElement;
};

inline std::string_view ViewOf(const berval& value)
{
    return {value.bv_val, value.bv_len};
}

} // namespace platform
