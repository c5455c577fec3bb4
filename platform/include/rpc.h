// SPDX-License-Identifier: MIT
#pragma once

#include "rpcdce.h"
