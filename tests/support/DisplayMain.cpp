// SPDX-License-Identifier: MIT
// main() of tests with windows on Linux: nothing is shown, or with TAVO_TEST_DISPLAY=qt on Qt's display.
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
