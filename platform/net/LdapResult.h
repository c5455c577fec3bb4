// SPDX-License-Identifier: MIT
// What a search gave: messages, of which no more is kept than their attributes, in the bytes in which these
// came. Texts are UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

// One message of a result, as a word of the memory that holds all of them.
struct LdapEntry
{
    std::uint32_t word;
};

class LdapResult
{
public:
    bool IsEmpty() const { return mSize == 0; }
    void Add(std::string_view attributesOfMessage);

    const LdapEntry* First() const { return mEntries.get(); }
    // Hands the messages over, for std::free of the first.
    LdapEntry* Release() { return mEntries.release(); }

private:
    struct Free
    {
        void operator()(LdapEntry* entries) const { std::free(entries); }
    };

    LdapEntry* Grow(std::size_t words);

    std::unique_ptr<LdapEntry, Free> mEntries;
    std::size_t mSize = 0; // in words, as the other two; without the end
    std::size_t mCapacity = 0;
    std::size_t mKept = 0; // where the last attributes are
};

// The one behind a message, or null.
const LdapEntry* NextOf(const LdapEntry* entry);

// What stands in the BER list of a message's attributes; nothing but entries has any.
std::string_view AttributesOf(const LdapEntry* entry);

struct LdapAttribute
{
    std::string_view name;
    std::string_view values; // a BER list
};

// Takes the first one off a list of attributes; nothing at its end, or where it cannot be read.
std::optional<LdapAttribute> TakeAttribute(std::string_view& attributes);

// An attribute's values in the server's order; nothing when there is none of that name or its values cannot
// be read. Case counts in a name only where the entry has several that differ in nothing else.
std::optional<std::vector<std::string_view>> ValuesOf(const LdapEntry* entry, std::string_view name);
