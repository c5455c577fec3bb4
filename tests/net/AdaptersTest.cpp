// SPDX-License-Identifier: MIT
#include <windows.h>

#include <winsock2.h>
#include <iphlpapi.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <future>
#include <sstream>

#include <sched.h>

// One line an adapter: type, length, address.
static std::string DescribeAdapters()
{
    ULONG size = 0;
    if (GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, nullptr, &size) != ERROR_BUFFER_OVERFLOW)
        return "no size";
    std::vector<IP_ADAPTER_ADDRESSES> records(size / sizeof(IP_ADAPTER_ADDRESSES));
    ULONG used = size - 1;
    if (GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, records.data(), &used) != ERROR_BUFFER_OVERFLOW ||
        used != size)
        return "written to too small a place";
    if (GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, records.data(), &used) != NO_ERROR || used != size)
        return "no list";
    std::ostringstream text;
    for (const IP_ADAPTER_ADDRESSES* record = records.data(); record; record = record->Next)
    {
        text << std::dec << record->IfType << " " << record->PhysicalAddressLength << " " << std::hex;
        for (ULONG i = 0; i < record->PhysicalAddressLength; ++i)
            text << record->PhysicalAddress[i] / 16 << record->PhysicalAddress[i] % 16;
        text << "\n";
    }
    return text.str();
}

// Makes a link without an address whose kind is that of the C library's header (ARPHRD_PPP: 512).
static std::string MakeLink(int hardware)
{
    return "python3 -c 'import fcntl, struct\n"
           "tun = open(\"/dev/net/tun\", \"r+b\", 0)\n"
           "fcntl.ioctl(tun, 0x400454ca, struct.pack(\"16sH14x\", b\"\", 0x1001))\n"
           "fcntl.ioctl(tun, 0x400454cd, " +
           std::to_string(hardware) +
           ")\n"
           "fcntl.ioctl(tun, 0x400454cb, 1)'";
}

// Runs `setUp` in a network namespace and describes its adapters; empty when there is no right to make one.
static std::string AdaptersAfter(const std::string& setUp)
{
    // Not in this thread: its network would be another one afterwards.
    return std::async(std::launch::async,
                      [&setUp]() -> std::string
                      {
                          if (unshare(CLONE_NEWNET | CLONE_NEWNS) != 0)
                              return {};
                          return std::system(setUp.c_str()) == 0 ? DescribeAdapters() : "set-up failed";
                      })
        .get();
}

TEST(Adapters, AreListedWithTypeLengthAndAddressByRisingIndex)
{
    const std::pair<std::string, const char*> kCases[] = {
        // A loopback has no address here, whatever the system says.
        {"true", "24 0 \n"},
        {"ip link add v0 address 00:11:22:33:44:55 type veth peer name v1 address 02:00:00:00:00:01",
         "24 0 \n6 6 020000000001\n6 6 001122334455\n"},
        // Two cards may bear the same address.
        {"ip link add v0 address 0a:00:00:00:00:07 type veth peer name v1 address 0a:00:00:00:00:07",
         "24 0 \n6 6 0a0000000007\n6 6 0a0000000007\n"},
        // A private network's end has no address at all.
        {"ip tuntap add dev t0 mode tun", "24 0 \n131 0 \n"},
        {"ip tuntap add dev t0 mode tap && ip link set t0 address 12:34:56:78:9a:bc",
         "24 0 \n6 6 123456789abc\n"},
        {"mount --make-rprivate / && mount -t tmpfs none /sys/class/net && mkdir -p "
         "/sys/class/net/w0/phy80211 && "
         "ip tuntap add dev w0 mode tap && ip link set w0 address 12:34:56:78:9a:bc",
         "24 0 \n71 6 123456789abc\n"},
        // A dialled line, and links of other kinds: CAN, five tunnels.
        {MakeLink(512) + " && " + MakeLink(280), "24 0 \n23 0 \n1 0 \n"},
        {MakeLink(768) + " && " + MakeLink(769) + " && " + MakeLink(776) + " && " + MakeLink(778) + " && " +
             MakeLink(823),
         "24 0 \n131 0 \n131 0 \n131 0 \n131 0 \n131 0 \n"},
    };
    if (AdaptersAfter("true").empty())
        GTEST_SKIP() << "no right to make a network namespace";
    for (const auto& [setUp, adapters] : kCases)
        EXPECT_EQ(AdaptersAfter(setUp), adapters) << setUp;
}
