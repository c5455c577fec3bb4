// SPDX-License-Identifier: MIT
// Ids of the dialogs in FrameworkTest.rc. Read by the resource compiler too.
#pragma once

#define IDD_PLAIN 200
#define IDD_EXCHANGE 201

#define IDC_WORK 1002
#define IDC_TEXT 1010
#define IDC_NUMBER 1011
#define IDC_AFTER 1012
