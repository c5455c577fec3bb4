// SPDX-License-Identifier: MIT
#include "platform/net/LdapHost.h"

#include "base/Owned.h"
#include "base/RunWithin.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <system_error>
#include <utility>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unicode/uidna.h>
#include <unistd.h>

namespace platform
{

namespace
{

using Addresses = Owned<addrinfo, freeaddrinfo>;

struct Resolution
{
    int result = EAI_FAIL;
    int systemError = 0;
    Addresses addresses;
};

Resolution Resolve(const LdapHost& host)
{
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV;
    Resolution resolution;
    addrinfo* list = nullptr;
    resolution.result = getaddrinfo(host.name.c_str(), std::to_string(host.port).c_str(), &hints, &list);
    resolution.systemError = errno;
    resolution.addresses.reset(list);
    return resolution;
}

LdapFault Down(const std::string& cause)
{
    return {eLdapServerDown, cause, LdapReach::NoAnswer};
}

LdapReach ReachOf(int error)
{
    switch (error)
    {
    case EADDRNOTAVAIL:
    case EAFNOSUPPORT:
    case ENETUNREACH:
        return LdapReach::NoWay;
    case ECONNREFUSED:
    case ECONNRESET:
        return LdapReach::Answer;
    default:
        return LdapReach::NoAnswer;
    }
}

LdapFault DownBySystem(int error)
{
    return {eLdapServerDown, CauseText(std::generic_category().message(error)), ReachOf(error)};
}

// Why there is no way to an address from this machine, as far as that is known beforehand. Nothing is sent.
LdapFault LackOfWay(const addrinfo& address)
{
    const int probe = socket(address.ai_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const bool known = probe >= 0 && connect(probe, address.ai_addr, address.ai_addrlen) == 0;
    const int error = errno;
    if (probe >= 0)
        close(probe);
    return known || ReachOf(error) != LdapReach::NoWay ? LdapFault() : DownBySystem(error);
}

LdapFault ConnectToAddress(const addrinfo& address, Deadline deadline, int& result)
{
    const int own = socket(address.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (own < 0)
        return DownBySystem(errno);
    int error = connect(own, address.ai_addr, address.ai_addrlen) == 0 ? 0 : errno;
    if (error == EINPROGRESS)
    {
        socklen_t size = sizeof(error);
        if (!WaitForSocket(own, POLLOUT, deadline))
            error = ETIMEDOUT;
        else if (getsockopt(own, SOL_SOCKET, SO_ERROR, &error, &size) != 0)
            error = errno;
    }
    if (error != 0)
    {
        close(own);
        return DownBySystem(error);
    }
    result = own;
    return {};
}

// The name as name servers and certificates know it ("xn--..."), or as it is where there is no such form.
std::string AsciiName(std::string_view name)
{
    std::string typed(name);
    if (std::ranges::all_of(typed, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; }))
        return typed;
    UErrorCode error = U_ZERO_ERROR;
    const Owned<UIDNA, uidna_close> rules(uidna_openUTS46(UIDNA_NONTRANSITIONAL_TO_ASCII, &error));
    UIDNAInfo info = UIDNA_INFO_INITIALIZER;
    std::array<char, 256> ascii; // a name of DNS is shorter
    const int32_t length =
        uidna_nameToASCII_UTF8(rules.get(), typed.data(), static_cast<int32_t>(typed.size()), ascii.data(),
                               static_cast<int32_t>(ascii.size()), &info, &error);
    if (U_FAILURE(error) || info.errors != 0)
        return typed;
    const std::string converted(ascii.data(), static_cast<std::size_t>(length));
    // Some letters stand for a blank and another one.
    return converted.find(' ') == std::string::npos ? converted : typed;
}

std::optional<std::uint16_t> ParsePort(std::string_view text)
{
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port == 0)
        return std::nullopt;
    return port;
}

std::optional<LdapHost> ParseHost(std::string_view text, std::uint16_t defaultPort)
{
    std::string_view name = text;
    std::string_view rest; // after the name
    if (text.starts_with('['))
    {
        const std::size_t end = text.find(']');
        if (end == std::string_view::npos)
            return std::nullopt;
        name = text.substr(1, end - 1);
        rest = text.substr(end + 1);
    }
    else if (std::ranges::count(text, ':') == 1)
    {
        name = text.substr(0, text.find(':'));
        rest = text.substr(name.size());
    }
    const std::optional<std::uint16_t> port =
        rest.empty() ? defaultPort : (rest[0] == ':' ? ParsePort(rest.substr(1)) : std::nullopt);
    if (!port)
        return std::nullopt;
    return LdapHost{AsciiName(name), *port};
}

} // namespace

LdapFault ParseHosts(std::string_view text, std::uint32_t port, std::vector<LdapHost>& hosts)
{
    LdapFault wrongPort = {eLdapParameterError, "the port is not a number from 1 to 65535"};
    if (port == 0 || port > 0xFFFF)
        return wrongPort;
    if (text.find("://") != std::string_view::npos)
        return {eLdapParameterError, "the server's name is wanted, not a URL"};
    while (!text.empty())
    {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (word.empty())
            continue;
        std::optional<LdapHost> host = ParseHost(word, static_cast<std::uint16_t>(port));
        if (!host)
            return wrongPort;
        hosts.push_back(std::move(*host));
    }
    if (hosts.empty())
        hosts.push_back({"", static_cast<std::uint16_t>(port)});
    return {};
}

bool IsAddress(const std::string& name)
{
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST;
    addrinfo* list = nullptr;
    const bool numeric = getaddrinfo(name.c_str(), nullptr, &hints, &list) == 0;
    const Addresses owner(list);
    return numeric;
}

bool WaitForSocket(int socket, short events, Deadline deadline)
{
    while (true)
    {
        const int left = MillisecondsUntil(deadline);
        if (left == 0)
            return false;
        pollfd entry{socket, events, 0};
        const int ready = poll(&entry, 1, left);
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            return false;
    }
}

LdapFault ConnectTo(const LdapHost& host, Deadline deadline, int& socket)
{
    if (host.name.empty())
        return Down("no server name was given");
    std::optional<Resolution> resolution = RunWithin(deadline, [host] { return Resolve(host); });
    if (!resolution)
        return Down("the name server gave no answer in time");
    if (resolution->result == EAI_SYSTEM)
        return DownBySystem(resolution->systemError);
    if (resolution->result != 0)
        return Down(CauseText(gai_strerror(resolution->result)));

    LdapFault fault;
    std::vector<const addrinfo*> addresses;
    for (const addrinfo* address = resolution->addresses.get(); address != nullptr;
         address = address->ai_next)
        if (LdapFault lack = LackOfWay(*address))
            KeepMoreTelling(fault, std::move(lack));
        else
            addresses.push_back(address);
    auto waiting = static_cast<long>(addresses.size());
    for (const addrinfo* address : addresses)
    {
        LdapFault said = ConnectToAddress(*address, EndOfTurn(deadline, waiting--), socket);
        if (!said)
            return {};
        KeepMoreTelling(fault, std::move(said));
    }
    return fault;
}

std::string CauseText(std::string text)
{
    if (text.size() > 1 && text[0] >= 'A' && text[0] <= 'Z' && text[1] >= 'a' && text[1] <= 'z')
        text[0] = static_cast<char>(text[0] - 'A' + 'a');
    return text;
}

} // namespace platform
