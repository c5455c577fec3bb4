// SPDX-License-Identifier: MIT
#include "app/TavoApp.h"

#include "foundation/StaticOrder.h"

[[gnu::init_priority(kStaticApplication)]] CTavoApp theApp;
