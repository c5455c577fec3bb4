/* SPDX-License-Identifier: MIT */
/* Numbers of the resources of the window tests. */
#define IDD_CONTROLS 101
#define IDC_LOG 1000
#define IDC_LINE 1001
#define IDC_BOX 1002
#define IDC_CHOICE 1003
#define IDC_PUSH 1004
#define IDC_HIDDEN 1006
#define IDC_DEFAULT 1007
