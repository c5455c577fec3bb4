// SPDX-License-Identifier: MIT
#include "platform/net/LdapFault.h"

#include "text/SafeToShow.h"
#include "text/Unicode.h"

#include <winldap.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace platform
{

namespace
{

struct CodeText
{
    ULONG code;
    const wchar_t* text;
};

// As the Windows client names them: all its codes.
constexpr CodeText kTexts[] = {
    {0x00, L"Success"},
    {0x01, L"Operations Error"},
    {0x02, L"Protocol Error"},
    {0x03, L"Time Limit Exceeded"},
    {0x04, L"Size Limit Exceeded"},
    {0x05, L"Compare False"},
    {0x06, L"Compare True"},
    {0x07, L"Authentication Method Not Supported"},
    {0x08, L"Strong Authentication Required"},
    {0x09, L"Referral (v2)"},
    {0x0a, L"Referral"},
    {0x0b, L"Administration Limit Exceeded"},
    {0x0c, L"Unavailable Critical Extension"},
    {0x0d, L"Confidentiality Required"},
    {0x0e, L"SASL Bind in Progress"},
    {0x10, L"No Such Attribute"},
    {0x11, L"Undefined Type"},
    {0x12, L"Inappropriate Matching"},
    {0x13, L"Constraint Violation"},
    {0x14, L"Attribute Or Value Exists"},
    {0x15, L"Invalid Syntax"},
    {0x20, L"No Such Object"},
    {0x21, L"Alias Problem"},
    {0x22, L"Invalid DN Syntax"},
    {0x23, L"Is Leaf"},
    {0x24, L"Alias Dereference Problem"},
    {0x30, L"Inappropriate Authentication"},
    {0x31, L"Invalid Credentials"},
    {0x32, L"Insufficient Rights"},
    {0x33, L"Busy"},
    {0x34, L"Unavailable"},
    {0x35, L"Unwilling To Perform"},
    {0x36, L"Loop Detected"},
    {0x3c, L"Sort Control Missing"},
    {0x3d, L"Index range error"},
    {0x40, L"Naming Violation"},
    {0x41, L"Object Class Violation"},
    {0x42, L"Not allowed on Non-leaf"},
    {0x43, L"Not allowed on RDN"},
    {0x44, L"Already Exists"},
    {0x45, L"No Object Class Mods"},
    {0x46, L"Results Too Large"},
    {0x47, L"Affects Multiple DSAs"},
    {0x4c, L"Virtual List View Error"},
    {0x50, L"Other"},
    {0x51, L"Server Down"},
    {0x52, L"Local Error"},
    {0x53, L"Encoding Error"},
    {0x54, L"Decoding Error"},
    {0x55, L"Timeout"},
    {0x56, L"Auth Unknown"},
    {0x57, L"Filter Error"},
    {0x58, L"User Canceled"},
    {0x59, L"Parameter Error"},
    {0x5a, L"No Memory"},
    {0x5b, L"Can't connect to the LDAP server"},
    {0x5c, L"Operation not supported by this version of the LDAP protocol"},
    {0x5d, L"Specified control was not found in message"},
    {0x5e, L"No result present in message"},
    {0x5f, L"More results returned"},
    {0x60, L"Loop while handling referrals"},
    {0x61, L"Referral hop limit exceeded"},
};

const wchar_t* TextOf(ULONG code)
{
    const CodeText* entry = std::ranges::find(kTexts, code, &CodeText::code);
    return entry != std::end(kTexts) ? entry->text : L"Unknown Error";
}

constexpr std::size_t kLongestCause = 400; // characters that are shown

// One line with single blanks in it.
std::wstring Shown(const std::string& cause)
{
    std::wstring shown;
    const std::string_view seen = std::string_view(cause).substr(0, kMostOfCause);
    for (const wchar_t character : text::SafeToShow(text::FromUtf8(seen)))
        if (character != L' ' || (!shown.empty() && shown.back() != L' '))
            shown += character;
    if (shown.ends_with(L' '))
        shown.pop_back();
    if (shown.size() > kLongestCause)
        shown.replace(kLongestCause, std::wstring::npos, L"...");
    return shown;
}

struct LastFault
{
    ULONG code = eLdapSuccess;
    std::wstring text;
};
thread_local LastFault gLastFault;

} // namespace

std::uint32_t RememberFault(const LdapFault& fault)
{
    if (!fault)
        return eLdapSuccess;
    gLastFault.code = fault.code;
    gLastFault.text.clear();
    const std::wstring cause = Shown(fault.cause);
    if (!cause.empty())
        gLastFault.text = std::wstring(TextOf(fault.code)) + L": " + cause;
    return fault.code;
}

std::uint32_t WindowsCode(int libraryCode)
{
    // The library counts its own codes down from -1 in the order in which Windows counts up from 0x51.
    const auto code = static_cast<std::uint32_t>(libraryCode);
    return libraryCode < 0 ? 0x50 - code : code;
}

} // namespace platform

ULONG LdapGetLastError()
{
    return platform::gLastFault.code;
}

PWCHAR ldap_err2stringW(ULONG code)
{
    if (code == platform::gLastFault.code && !platform::gLastFault.text.empty())
        return platform::gLastFault.text.data();
    return const_cast<PWCHAR>(platform::TextOf(code));
}
