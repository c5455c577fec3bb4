// SPDX-License-Identifier: MIT
// What the LDAP client parses by itself: host lists, texts from servers, messages, entries,
// frames of a protected stream.
#include "platform/net/GssFrames.h"
#include "platform/net/LdapHost.h"
#include "platform/net/LdapMessages.h"
#include "platform/net/LdapResult.h"
#include "platform/net/LdapText.h"
#include "tests/fuzz/Require.h"

namespace
{

void CheckHosts(std::string_view text)
{
    const auto hosts = ParseHosts(text, 389);
    if (!hosts)
        return;
    for (const LdapHost& host : *hosts)
        Require(host.port != 0 && host.name.find(' ') == std::string::npos);
}

void CheckTexts(std::string_view text)
{
    for (const wchar_t character : SafeToPrint(text))
        Require(character >= L' ' && (character < 0x7f || character >= 0xa0));
    const std::wstring wide = FromUtf8(text);
    Require(FromUtf8(ToUtf8(wide)) == wide);
}

// However a stream is cut, the tokens are the same.
void CheckFrames(std::string_view stream, std::size_t step)
{
    GssFrames whole;
    GssFrames pieces;
    if (!whole.Append(stream))
        return;
    std::string expected;
    for (std::size_t at = 0; at < stream.size(); at += step)
    {
        if (!pieces.Append(stream.substr(at, step)))
            return;
        for (std::string token; pieces.Next(token);)
        {
            Require(whole.Next(expected));
            Require(token == expected);
        }
    }
    Require(!whole.HasNext());
}

struct Passed
{
    std::string bytes;
    std::uint32_t code;
};

Passed PassMessages(std::string_view stream, std::size_t step)
{
    LdapMessages messages;
    std::string passed;
    for (std::size_t at = 0; at < stream.size() && !messages.Ending(); at += step)
    {
        messages.Append(stream.substr(at, step));
        passed += messages.Ready();
        messages.Drop(messages.Ready().size());
    }
    return {passed, messages.Ending().code};
}

// However a stream is cut, the same messages pass.
void CheckMessages(std::string_view stream, std::size_t step)
{
    const Passed whole = PassMessages(stream, stream.size() + 1);
    const Passed pieces = PassMessages(stream, step);
    Require(whole.bytes == pieces.bytes && whole.code == pieces.code);
}

// Whatever an entry's bytes are, its texts lie within them.
void CheckAttributes(std::string_view bytes)
{
    LdapResult result;
    result.Add(bytes);
    const auto lies = [kept = AttributesOf(result.First())](std::string_view text)
    { return text.empty() || (text.data() >= kept.data() && text.end() <= kept.end()); };
    std::string_view rest = AttributesOf(result.First());
    while (const auto attribute = TakeAttribute(rest))
    {
        Require(lies(attribute->name) && lies(attribute->values));
        for (const std::string_view value :
             ValuesOf(result.First(), attribute->name).value_or(std::vector<std::string_view>()))
            Require(lies(value));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = TextOf(data, size);
    CheckHosts(text);
    CheckTexts(text);
    CheckFrames(text, size % 7 + 1);
    CheckMessages(text, size % 7 + 1);
    CheckAttributes(text);
    return 0;
}
