// SPDX-License-Identifier: MIT
#include "shipment/LastWrite.h"

FILETIME LastWrite(const ZTString&, const WIN32_FIND_DATAW& record)
{
    return record.ftLastWriteTime;
}
