// SPDX-License-Identifier: MIT
// Forms of the user's name, of which the program asks for one.
#pragma once

enum EXTENDED_NAME_FORMAT
{
    NameUnknown = 0
};
