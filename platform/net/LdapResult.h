// SPDX-License-Identifier: MIT
// What a search gave: a chain of messages, of which no more is kept than their attributes, in the bytes in
// which these came. Texts are UTF-8.
#pragma once

#include <memory_resource>
#include <optional>
#include <string_view>
#include <vector>

// One message of a result; nothing but entries has attributes.
struct LdapEntry
{
    std::string_view attributes; // what stands in the BER list of them
    LdapEntry* next = nullptr;
};

// The first message and the memory of all.
class LdapResult : public LdapEntry
{
public:
    LdapResult() = default;
    LdapResult(const LdapResult&) = delete;
    LdapResult& operator=(const LdapResult&) = delete;

    bool IsEmpty() const { return mLast == nullptr; }
    void Add(std::string_view attributesOfMessage);

private:
    std::pmr::monotonic_buffer_resource mMemory;
    LdapEntry* mLast = nullptr;
};

struct LdapAttribute
{
    std::string_view name;
    std::string_view values; // a BER list
};

// Takes the first one off a list of attributes; nothing at its end, or where it cannot be read.
std::optional<LdapAttribute> TakeAttribute(std::string_view& attributes);

// An attribute's values in the server's order; nothing when there is none of that name or its values cannot
// be read. Case counts in a name only where the entry has several that differ in nothing else.
std::optional<std::vector<std::string_view>> ValuesOf(const LdapEntry& entry, std::string_view name);
