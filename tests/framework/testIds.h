// SPDX-License-Identifier: MIT
// Ids of the dialogs in FrameworkTest.rc. Read by the resource compiler too.
#pragma once

#define IDD_PLAIN 200
#define IDD_EXCHANGE 201

// The dialog without buttons of the system's own
#define IDC_LOG 1000
#define IDC_END 1001
#define IDC_WORK 1002
#define IDC_LINE 1003

// The dialog for data exchange
#define IDC_TEXT 1010
#define IDC_NUMBER 1011
#define IDC_AFTER 1012
#define IDC_CHECK 1013
#define IDC_CHOICE 1014
