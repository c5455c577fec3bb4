// SPDX-License-Identifier: MIT
#include "platform/net/LdapMessageLayer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <new>
#include <optional>

namespace platform
{

namespace
{

// Above the library's own layers, of which the log-on's protection is the highest.
constexpr int kLevel = LBER_SBIOD_LEVEL_APPLICATION + 1;

constexpr unsigned char kSequence = 0x30; // what each message begins with
constexpr unsigned char kTlsAlert = 0x15;
constexpr unsigned char kTlsHandshake = 0x16;
constexpr unsigned char kTlsMajor = 0x03;
constexpr ber_tag_t kExtendedResponse = 0x78;
constexpr ber_tag_t kResponseName = 0x8a;
constexpr ber_tag_t kReferral = 0xa3;
constexpr char kUnknown = '\xbe'; // a tag that no result has
// An entry of a search, a reference to other servers, and what comes before a result: they bear none.
constexpr ber_tag_t kPartsOfAnAnswer[] = {0x64, 0x73, 0x79};
constexpr std::string_view kDisconnection = "1.3.6.1.4.1.1466.20036"; // RFC 4511, 4.4.1

// In bytes.
constexpr std::size_t kReadAhead = 16'384;
constexpr std::size_t kLongestMessage = 16U << 20U;
constexpr std::size_t kLargestAnswer = 64U << 20U;
constexpr std::size_t kLibraryOverhead = 256; // of OpenLDAP's library for each message that it keeps

constexpr std::size_t kNotAMessage = SIZE_MAX;

const LdapFault kUnreadable = {eLdapDecodingError, {}};

// The size of the message that begins here, its head included; 0 while the head is not whole.
std::size_t MessageSize(std::string_view bytes)
{
    constexpr std::size_t kMostLengthBytes = 4;
    if (!bytes.empty() && static_cast<unsigned char>(bytes[0]) != kSequence)
        return kNotAMessage;
    if (bytes.size() < 2)
        return 0;
    const auto first = static_cast<unsigned char>(bytes[1]);
    if (first < 0x80)
        return 2U + first;
    const std::size_t count = first & 0x7fU;
    if (count == 0 || count > kMostLengthBytes)
        return kNotAMessage;
    if (bytes.size() < 2 + count)
        return 0;
    std::size_t length = 0;
    for (const char byte : bytes.substr(2, count))
        length = length << 8U | static_cast<unsigned char>(byte);
    return 2 + count + length;
}

// Reads a result up to its own texts and the servers that it names; nothing where it cannot be read. What the
// library above could not read is changed where it lies.
std::optional<LdapFault> ReadResult(BerElement* result)
{
    ber_int_t code = 0;
    berval name{};
    berval text{};
    if (ber_scanf(result, "e", &code) == LBER_ERROR || ber_skip_element(result, &name) == LBER_DEFAULT ||
        ber_skip_element(result, &text) == LBER_DEFAULT)
        return std::nullopt;
    // The library reads no text that holds a NUL.
    for (const berval& part : {name, text})
        std::replace(part.bv_val, part.bv_val + part.bv_len, '\0', ' ');
    ber_len_t length = 0;
    if (ber_peek_tag(result, &length) == kReferral)
    {
        char* const tag = text.bv_val + text.bv_len;
        berval servers{};
        berval first{};
        BerReader reader;
        ber_skip_element(result, &servers);
        if (code != eLdapReferral)
            *tag = kUnknown; // none may be there, and the library would copy each of them
        else if (text.bv_len == 0 && ber_skip_element(reader.Begin(ViewOf(servers)), &first) != LBER_DEFAULT)
            text = first;
    }
    return LdapFault{static_cast<std::uint32_t>(code), std::string(ViewOf(text).substr(0, kMostOfCause))};
}

// The result in a notice of disconnection; nothing for any other operation.
std::optional<LdapFault> ReadDisconnection(ber_tag_t kind, std::string_view operation)
{
    BerReader reader;
    BerElement* const element = reader.Begin(operation);
    std::optional<LdapFault> result = kind == kExtendedResponse ? ReadResult(element) : std::nullopt;
    berval part{};
    while (result)
    {
        const ber_tag_t tag = ber_skip_element(element, &part);
        if (tag == LBER_DEFAULT)
            result.reset();
        else if (tag == kResponseName && ViewOf(part) == kDisconnection)
            break;
    }
    return result;
}

} // namespace

void FreeBerElement(BerElement* element)
{
    ber_free(element, 0);
}

void LdapMessageLayer::Attach(Sockbuf* buffer)
{
    LdapLayer::Attach(buffer, kLevel);
}

ber_slen_t LdapMessageLayer::Read(char* bytes, std::size_t length)
{
    while (mRead == mReady)
    {
        if (mEnding)
        {
            errno = EPROTO;
            return -1;
        }
        try
        {
            const ber_slen_t got = Fill();
            mIsDrained = got <= 0;
            if (mIsDrained)
                return got;
        }
        catch (const std::bad_alloc&) // the library above knows no exceptions
        {
            mEnding = {eLdapNoMemory, {}};
        }
    }
    const std::size_t count = std::min(length, mReady - mRead);
    mBytes.copy(bytes, count, mRead);
    mRead += count;
    return static_cast<ber_slen_t>(count);
}

ber_slen_t LdapMessageLayer::Write(const char* bytes, std::size_t length)
{
    const ber_slen_t written = WriteBelow(bytes, length); // waits itself; what fails does not come again
    explicit_bzero(const_cast<char*>(bytes), written < 0 ? length : static_cast<std::size_t>(written));
    return written;
}

ber_slen_t LdapMessageLayer::Fill()
{
    const std::size_t before = mReady;
    TakeMessage();
    if (mReady > before || mEnding)
        return 1;
    mBytes.erase(0, mRead);
    mRead = mReady = 0;
    if (mBytes.capacity() > kReadAhead && mBytes.size() < kReadAhead)
        mBytes.shrink_to_fit(); // a long message was here
    std::array<char, kReadAhead> raw;
    const ber_slen_t got = ReadBelow(raw.data(), raw.size());
    if (got > 0)
        mBytes.append(raw.data(), static_cast<std::size_t>(got));
    return got;
}

void LdapMessageLayer::TakeMessage()
{
    const std::string_view rest = std::string_view(mBytes).substr(mReady);
    const std::size_t size = MessageSize(rest);
    if (size == kNotAMessage)
    {
        const auto first = static_cast<unsigned char>(rest[0]);
        const bool tls = !mHasBegun && (first == kTlsAlert || first == kTlsHandshake) &&
                         (rest.size() < 2 || rest[1] == kTlsMajor);
        mEnding = {eLdapDecodingError,
                   tls ? "the server speaks TLS on this port" : "the server's answer is not an LDAP message"};
    }
    else if (size > kLongestMessage)
        mEnding = {eLdapResultsTooLarge, "the server sent a message of more than 16 MB"};
    else if (size == 0 || rest.size() < size)
        mBytes.reserve(mReady + size + kReadAhead);
    else
        Judge(rest.substr(0, size));
}

void LdapMessageLayer::Judge(std::string_view message)
{
    ber_int_t number = 0;
    berval operation{};
    // The library keeps a request whose answer holds no operation, and does not outlive the second such
    // answer.
    BerElement* const reader = mReader.Begin(message);
    const ber_tag_t kind =
        ber_scanf(reader, "{i", &number) != LBER_ERROR ? ber_skip_element(reader, &operation) : LBER_DEFAULT;
    if (kind == LBER_DEFAULT)
    {
        mEnding = {eLdapDecodingError, "the server's answer is not an LDAP message"};
        return;
    }
    mHasBegun = true;
    mReady += message.size();
    if (number != 0)
    {
        mTaken += message.size() + kLibraryOverhead;
        if (mTaken > kLargestAnswer)
            mEnding = {eLdapResultsTooLarge, "the server sent more than 64 MB"};
        else if (std::ranges::find(kPartsOfAnAnswer, kind) == std::end(kPartsOfAnAnswer))
        {
            BerReader result;
            mAnswered = number;
            mResult = ReadResult(result.Begin(ViewOf(operation))).value_or(kUnreadable);
        }
    }
    else
    {
        if (std::optional<LdapFault> disconnection = ReadDisconnection(kind, ViewOf(operation)))
        {
            mEnding = std::move(*disconnection);
            if (!mEnding)
                mEnding.code = eLdapServerDown; // a notice of success disconnects all the same
        }
        mRead = mReady; // anything else is advice
    }
}

LdapFault LdapMessageLayer::ResultOf(int request) const
{
    return request == mAnswered ? mResult : kUnreadable;
}

} // namespace platform
