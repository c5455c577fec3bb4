// SPDX-License-Identifier: MIT
// Network adapters.
#pragma once

#include "iptypes.h"
#include "platformExport.h"

// Every interface of the network namespace, up or down, by rising index. Only AF_UNSPEC and flags 0 are
// offered. The loopback has no address, as on Windows; neither has a tunnel, for which the system gives the
// IP address of an end. ERROR_NO_DATA, with the size as it was, when there is no interface.
extern "C" PLATFORM_EXPORT ULONG WINAPI GetAdaptersAddresses(ULONG family, ULONG flags, PVOID reserved,
                                                             PIP_ADAPTER_ADDRESSES addresses, PULONG size);
