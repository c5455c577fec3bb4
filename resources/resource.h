// SPDX-License-Identifier: MIT
// Ids of the dialogs, their controls, the strings and the icon. Read by the resource compiler too.
#pragma once

#define IDD_CONSOLE 102
#define IDI_TAVO 128
#define IDD_LDAP_CREDS 129
#define IDS_ADMINISTRATOR_CAPTION 130
#define IDS_ADMINISTRATOR_TEXT 131
#define IDD_CRC64 132

// A control that nothing asks for, such as a label
#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

// The console, IDD_CONSOLE
#define IDC_OUTPUT 1000
#define IDC_CLOSE 1001
#define IDC_LDAP 1002
#define IDC_STEP_NET_MAP 1011
#define IDC_FULL_MAP 1012
#define IDC_SHOW_UNUSED 1013
#define IDC_HIDDEN_VALUE 1014
#define IDC_FTP_LOGS 1015
#define IDC_INIT_PYTHON 1016
#define IDC_CRC64 1017

// The LDAP test's credentials, IDD_LDAP_CREDS
#define IDC_AUTH_METHOD 1003
#define IDC_USER 1004
#define IDC_SERVER 1006
#define IDC_PASSWORD 1007
#define IDC_PORT 1008
#define IDC_DOMAIN 1009

// The checksum tool, IDD_CRC64
#define IDC_WIDE_CHARS 1013
#define IDC_CRC 1014
#define IDC_CRC_HEX 1015
#define IDC_INPUT 1018
#define IDC_GET_CRC64 1019
