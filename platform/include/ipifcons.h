// SPDX-License-Identifier: MIT
// Kinds of network interface.
#pragma once

#define IF_TYPE_OTHER 1
#define IF_TYPE_ETHERNET_CSMACD 6
#define IF_TYPE_PPP 23
#define IF_TYPE_SOFTWARE_LOOPBACK 24
#define IF_TYPE_IEEE80211 71
#define IF_TYPE_TUNNEL 131
