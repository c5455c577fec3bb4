// SPDX-License-Identifier: MIT
#include "foundation/Veld.h"

const wchar_t* const APPNAME = L"ZT " TAVO_VERSION;
// In the global namespace, so that a program of one session reaches the service of another.
const wchar_t* const FORCE_CORE_EVENT = L"Global\\Tavo_ForceCoreDump";
