// SPDX-License-Identifier: MIT
#include "shipment/PackingLimit.h"

const std::int64_t kPackingLimit = 2;
