// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

// The bytes of a resource of this program, empty when there is none; types are the numbers behind RT_....
std::string_view FindResourceBytes(int type, int id);
