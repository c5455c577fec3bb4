// SPDX-License-Identifier: MIT
#pragma once

#include "secext.h"
