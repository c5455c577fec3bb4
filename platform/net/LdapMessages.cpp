// SPDX-License-Identifier: MIT
#include "platform/net/LdapMessages.h"

#include "platform/net/Ber.h"

#include <algorithm>
#include <memory>
#include <optional>

#include <lber.h>

namespace
{

// In Windows' numbers.
constexpr std::uint32_t kServerDown = 0x51;
constexpr std::uint32_t kDecodingError = 0x54;
constexpr const char* kNoMessage = "the server's answer is no LDAP message";
constexpr const char* kSpeaksTls = "the server speaks TLS on this port";

constexpr unsigned char kSequence = 0x30; // what each message begins with
constexpr unsigned char kInteger = 0x02;
constexpr unsigned char kTlsAlert = 0x15;
constexpr unsigned char kTlsHandshake = 0x16;
constexpr unsigned char kTlsMajor = 0x03;
constexpr ber_tag_t kExtendedResponse = 0x78;
constexpr ber_tag_t kResponseName = 0x8a;
constexpr std::string_view kDisconnection = "1.3.6.1.4.1.1466.20036";

constexpr std::size_t kLongestMessage = 1U << 26U; // taken from a server, in bytes
constexpr std::size_t kLongestUnasked = 1U << 16U;

// Reads a head that must have this tag.
BerReading ReadHead(std::string_view bytes, unsigned char tag, std::size_t& at, std::size_t& length)
{
    if (bytes.size() > at && static_cast<unsigned char>(bytes[at]) != tag)
        return BerReading::Wrong;
    return ReadBerHead(bytes, at, length);
}

struct Head
{
    std::size_t size = 0; // of the whole message, in bytes
    bool unasked = false; // its number is 0
};

BerReading ReadMessageHead(std::string_view bytes, Head& head)
{
    std::size_t at = 0;
    std::size_t length = 0;
    BerReading reading = ReadHead(bytes, kSequence, at, length);
    if (reading != BerReading::Done)
        return reading;
    if (length > kLongestMessage)
        return BerReading::Wrong;
    head.size = at + length;
    std::size_t numberLength = 0;
    reading = ReadHead(bytes.substr(0, head.size), kInteger, at, numberLength);
    // A message that ends inside its own head never becomes complete.
    if (reading == BerReading::Incomplete && bytes.size() >= head.size)
        return BerReading::Wrong;
    if (reading != BerReading::Done)
        return reading;
    if (numberLength == 0 || numberLength > sizeof(ber_int_t) || at + numberLength > head.size)
        return BerReading::Wrong;
    if (bytes.size() < at + numberLength)
        return BerReading::Incomplete;
    const std::string_view number = bytes.substr(at, numberLength);
    head.unasked = std::ranges::all_of(number, [](char byte) { return byte == '\0'; });
    return BerReading::Done;
}

std::string_view ViewOf(const berval& value)
{
    return {value.bv_val, value.bv_len};
}

struct FreeBer
{
    void operator()(BerElement* element) const { ber_free(element, 1); }
};

// The result that a notice of disconnection bears; nothing for any other message.
std::optional<LdapFault> ReadDisconnection(std::string_view message)
{
    const berval bytes = {message.size(), const_cast<char*>(message.data())};
    const std::unique_ptr<BerElement, FreeBer> ber(ber_init(const_cast<berval*>(&bytes)));
    ber_int_t number = 0;
    ber_int_t code = 0;
    ber_len_t length = 0;
    berval name{};
    berval text{};
    if (!ber || ber_scanf(ber.get(), "{i", &number) == LBER_ERROR ||
        ber_peek_tag(ber.get(), &length) != kExtendedResponse ||
        ber_scanf(ber.get(), "{emm", &code, &name, &text) == LBER_ERROR)
        return std::nullopt;
    std::string words(ViewOf(text));
    for (ber_tag_t tag = ber_peek_tag(ber.get(), &length); tag != LBER_ERROR;
         tag = ber_peek_tag(ber.get(), &length))
    {
        if (ber_scanf(ber.get(), "m", &name) == LBER_ERROR)
            return std::nullopt;
        if (tag == kResponseName && ViewOf(name) == kDisconnection)
            return LdapFault{static_cast<std::uint32_t>(code), words};
    }
    return std::nullopt;
}

} // namespace

void LdapMessages::Append(std::string_view bytes)
{
    if (mRead == mCleared)
    {
        mBytes.erase(0, mRead);
        mCleared = mRead = 0;
    }
    mBytes += bytes;
    Clear();
}

void LdapMessages::Clear()
{
    while (!mEnding)
    {
        const std::size_t come = std::min(mPending, mBytes.size() - mCleared);
        mCleared += come;
        mPending -= come;
        const std::string_view rest = std::string_view(mBytes).substr(mCleared);
        if (rest.empty())
            return;
        Head head;
        const BerReading reading = ReadMessageHead(rest, head);
        if (reading == BerReading::Wrong || (head.unasked && head.size > kLongestUnasked))
        {
            const auto first = static_cast<unsigned char>(rest[0]);
            const bool tls = !mHasBegun && (first == kTlsAlert || first == kTlsHandshake) &&
                             (rest.size() < 2 || rest[1] == kTlsMajor);
            mEnding = {kDecodingError, tls ? kSpeaksTls : kNoMessage};
            return;
        }
        if (reading == BerReading::Incomplete || (head.unasked && rest.size() < head.size))
            return;
        mHasBegun = true;
        if (!head.unasked)
        {
            mPending = head.size;
            continue;
        }
        TakeUnasked(rest.substr(0, head.size));
        mBytes.erase(mCleared, head.size);
    }
}

void LdapMessages::TakeUnasked(std::string_view message)
{
    std::optional<LdapFault> disconnection = ReadDisconnection(message);
    if (!disconnection)
        return; // anything else is advice
    mEnding = std::move(*disconnection);
    if (!mEnding)
        mEnding.code = kServerDown; // a notice of success disconnects all the same
}
