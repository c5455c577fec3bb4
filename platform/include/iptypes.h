// SPDX-License-Identifier: MIT
// One record of the adapter list.
#pragma once

#include "ipifcons.h"
#include "windef.h"

#define MAX_ADAPTER_ADDRESS_LENGTH 8

struct IP_ADAPTER_ADDRESSES
{
    ULONG Length; // of this record, in bytes
    IP_ADAPTER_ADDRESSES* Next;
    BYTE PhysicalAddress[MAX_ADAPTER_ADDRESS_LENGTH];
    ULONG PhysicalAddressLength; // at most MAX_ADAPTER_ADDRESS_LENGTH: a longer address is cut
    ULONG IfType;                // IF_TYPE_...
};
using PIP_ADAPTER_ADDRESSES = IP_ADAPTER_ADDRESSES*;
