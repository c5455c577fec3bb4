// SPDX-License-Identifier: MIT
#include <iphlpapi.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include <ifaddrs.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <netpacket/packet.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace platform
{

namespace
{

// Missing in the C library's header.
constexpr unsigned ARPHRD_IP6GRE = 823;

struct Link
{
    std::string name;
    int index = 0;
    unsigned hardware = ARPHRD_NONE;
    std::vector<BYTE> address;
};

// The kind of an interface that has no address to tell it.
unsigned HardwareOf(const std::string& name)
{
    const int channel = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    name.copy(request.ifr_name, sizeof(request.ifr_name) - 1);
    const bool known = channel >= 0 && ioctl(channel, SIOCGIFHWADDR, &request) == 0;
    if (channel >= 0)
        close(channel);
    return known ? request.ifr_hwaddr.sa_family : unsigned{ARPHRD_NONE};
}

// False when the system cannot tell, with the reason in errno.
bool ListLinks(std::vector<Link>& links)
{
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0)
        return false;
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next)
    {
        if (entry->ifa_addr == nullptr)
        {
            const int index = static_cast<int>(if_nametoindex(entry->ifa_name));
            links.push_back({entry->ifa_name, index, HardwareOf(entry->ifa_name), {}});
        }
        else if (entry->ifa_addr->sa_family == AF_PACKET)
        {
            const auto* address = reinterpret_cast<const sockaddr_ll*>(entry->ifa_addr);
            links.push_back({entry->ifa_name,
                             address->sll_ifindex,
                             address->sll_hatype,
                             {address->sll_addr, address->sll_addr + address->sll_halen}});
        }
    }
    freeifaddrs(list);
    std::ranges::stable_sort(links, {}, &Link::index);
    const auto sameIndex = [](const Link& one, const Link& other) { return one.index == other.index; };
    links.erase(std::unique(links.begin(), links.end(), sameIndex), links.end());
    return true;
}

bool IsWireless(const std::string& name)
{
    return access(("/sys/class/net/" + name + "/phy80211").c_str(), F_OK) == 0;
}

ULONG TypeOf(const Link& link)
{
    switch (link.hardware)
    {
    case ARPHRD_LOOPBACK:
        return IF_TYPE_SOFTWARE_LOOPBACK;
    case ARPHRD_TUNNEL:
    case ARPHRD_TUNNEL6:
    case ARPHRD_SIT:
    case ARPHRD_IPGRE:
    case ARPHRD_IP6GRE:
    case ARPHRD_NONE: // the end of a private network that a program made
        return IF_TYPE_TUNNEL;
    case ARPHRD_PPP:
        return IF_TYPE_PPP;
    case ARPHRD_ETHER:
        return IsWireless(link.name) ? IF_TYPE_IEEE80211 : IF_TYPE_ETHERNET_CSMACD;
    default:
        return IF_TYPE_OTHER;
    }
}

} // namespace

} // namespace platform

using namespace platform;

ULONG WINAPI GetAdaptersAddresses(ULONG family, ULONG flags, PVOID reserved, PIP_ADAPTER_ADDRESSES addresses,
                                  PULONG size)
{
    if (size == nullptr || family != AF_UNSPEC || flags != 0 || reserved != nullptr)
        return ERROR_INVALID_PARAMETER;
    std::vector<Link> links;
    if (!ListLinks(links))
        return errno == ENOMEM ? ERROR_NOT_ENOUGH_MEMORY : ERROR_NOT_SUPPORTED;
    if (links.empty())
        return ERROR_NO_DATA;

    const ULONG needed = static_cast<ULONG>(links.size() * sizeof(IP_ADAPTER_ADDRESSES));
    const bool fits = addresses != nullptr && *size >= needed;
    *size = needed;
    if (!fits)
        return ERROR_BUFFER_OVERFLOW;

    for (std::size_t i = 0; i < links.size(); ++i)
    {
        const Link& link = links[i];
        IP_ADAPTER_ADDRESSES& record = addresses[i];
        record = {};
        record.Length = sizeof(record);
        record.Next = i + 1 < links.size() ? &record + 1 : nullptr;
        record.IfType = TypeOf(link);
        if (record.IfType == IF_TYPE_SOFTWARE_LOOPBACK || record.IfType == IF_TYPE_TUNNEL)
            continue;
        const std::size_t length = std::min<std::size_t>(link.address.size(), MAX_ADAPTER_ADDRESS_LENGTH);
        std::copy_n(link.address.data(), length, record.PhysicalAddress);
        record.PhysicalAddressLength = static_cast<ULONG>(length);
    }
    return NO_ERROR;
}
