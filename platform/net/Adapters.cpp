// SPDX-License-Identifier: MIT
#include <iphlpapi.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include <ifaddrs.h>
#include <linux/if_arp.h>
#include <linux/if_packet.h>
#include <unistd.h>

namespace
{

bool IsWireless(const char* name)
{
    const std::string link = std::string("/sys/class/net/") + name + "/phy80211";
    return access(link.c_str(), F_OK) == 0;
}

ULONG TypeOf(const ifaddrs& interface, unsigned hardware)
{
    switch (hardware)
    {
    case ARPHRD_LOOPBACK:
        return IF_TYPE_SOFTWARE_LOOPBACK;
    case ARPHRD_TUNNEL:
    case ARPHRD_TUNNEL6:
    case ARPHRD_SIT:
    case ARPHRD_IPGRE:
    case ARPHRD_IP6GRE:
    case ARPHRD_NONE: // made by a program: a private network's end
        return IF_TYPE_TUNNEL;
    case ARPHRD_PPP:
        return IF_TYPE_PPP;
    case ARPHRD_ETHER:
        return IsWireless(interface.ifa_name) ? IF_TYPE_IEEE80211 : IF_TYPE_ETHERNET_CSMACD;
    default:
        return IF_TYPE_OTHER;
    }
}

} // namespace

ULONG WINAPI GetAdaptersAddresses(ULONG family, ULONG flags, PVOID reserved, PIP_ADAPTER_ADDRESSES addresses,
                                  PULONG size)
{
    if (!size || family != AF_UNSPEC || flags != 0 || reserved)
        return ERROR_INVALID_PARAMETER;

    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0)
        return errno == ENOMEM ? ERROR_NOT_ENOUGH_MEMORY : ERROR_NOT_SUPPORTED;
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owner(list, &freeifaddrs);

    struct Link
    {
        const ifaddrs* interface;
        const sockaddr_ll* address;
    };
    std::vector<Link> links;
    for (const ifaddrs* interface = list; interface; interface = interface->ifa_next)
    {
        if (interface->ifa_addr && interface->ifa_addr->sa_family == AF_PACKET)
            links.push_back({interface, reinterpret_cast<const sockaddr_ll*>(interface->ifa_addr)});
    }
    if (links.empty())
        return ERROR_NO_DATA;
    std::ranges::sort(links, {}, [](const Link& link) { return link.address->sll_ifindex; });

    const ULONG needed = static_cast<ULONG>(links.size() * sizeof(IP_ADAPTER_ADDRESSES));
    const bool fits = addresses && *size >= needed;
    *size = needed;
    if (!fits)
        return ERROR_BUFFER_OVERFLOW;

    for (std::size_t i = 0; i < links.size(); ++i)
    {
        const Link& link = links[i];
        IP_ADAPTER_ADDRESSES& record = addresses[i];
        record = {};
        record.Length = sizeof(record);
        record.Next = i + 1 < links.size() ? &addresses[i + 1] : nullptr;
        record.IfType = TypeOf(*link.interface, link.address->sll_hatype);
        if (record.IfType == IF_TYPE_SOFTWARE_LOOPBACK || record.IfType == IF_TYPE_TUNNEL)
            continue;
        record.PhysicalAddressLength = std::min<ULONG>(link.address->sll_halen, MAX_ADAPTER_ADDRESS_LENGTH);
        std::copy_n(link.address->sll_addr, record.PhysicalAddressLength, record.PhysicalAddress);
    }
    return NO_ERROR;
}
