// SPDX-License-Identifier: MIT
#include "tests/shipment/ShipmentRun.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    gHasOwnNetwork = EnterOwnNetwork();
    if (gHasOwnNetwork)
        PointHostHere(TAVO_SUPPORT_HOST);
    return RUN_ALL_TESTS();
}
