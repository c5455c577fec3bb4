// SPDX-License-Identifier: MIT
// The constants that the product's programs share; they live in Veld.dll (libVeld.so).
#pragma once

#include "veldExport.h"

// The product's name and version, as they stand in log lines.
extern VELD_EXPORT const wchar_t* const APPNAME;

// Name of the manual-reset event that makes the monitoring service write a crash dump.
extern VELD_EXPORT const wchar_t* const FORCE_CORE_EVENT;
