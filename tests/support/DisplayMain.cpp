// SPDX-License-Identifier: MIT
// main() of a test program with windows on Linux: TAVO_TEST_DISPLAY=qt shows them on Qt's display, without a
// screen unless QT_QPA_PLATFORM names one. Otherwise nothing is shown.
#include "platform/dialogs/Display.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const char* name = std::getenv("TAVO_TEST_DISPLAY");
    const bool qt = name && std::string_view(name) == "qt";
    if (qt)
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
    if (!platform::UseDisplay(qt ? platform::DisplayKind::Qt : platform::DisplayKind::None))
    {
        std::fputs("the display cannot be used\n", stderr);
        return 1;
    }
    return RUN_ALL_TESTS();
}
