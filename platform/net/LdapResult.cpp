// SPDX-License-Identifier: MIT
#include "platform/net/LdapResult.h"

#include "platform/net/Ber.h"

#include <algorithm>
#include <limits>
#include <new>

#include <strings.h>

// The words of a message: either kOwn, the number of bytes of its attributes and these bytes, or how many
// words before it the message with the same attributes is. Neighbours often bear the same classes and nothing
// else; 100,000 of them then take 400 KB.
namespace
{

constexpr std::uint32_t kOwn = 0;
constexpr std::uint32_t kEnd = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t kFirstCapacity = 64;

std::size_t WordsFor(std::size_t bytes)
{
    return 2 + (bytes + sizeof(LdapEntry) - 1) / sizeof(LdapEntry);
}

} // namespace

// Adds words, with the end behind them. A large block grows where it is or moves without being copied.
LdapEntry* LdapResult::Grow(std::size_t words)
{
    const std::size_t wanted = mSize + words + 1;
    if (wanted > mCapacity)
    {
        const std::size_t capacity = std::max({wanted, 2 * mCapacity, kFirstCapacity});
        void* const larger = std::realloc(mEntries.get(), capacity * sizeof(LdapEntry));
        if (larger == nullptr)
            throw std::bad_alloc();
        static_cast<void>(mEntries.release());
        mEntries.reset(static_cast<LdapEntry*>(larger));
        mCapacity = capacity;
    }
    LdapEntry* const added = mEntries.get() + mSize;
    mSize += words;
    mEntries.get()[mSize] = {kEnd};
    return added;
}

void LdapResult::Add(std::string_view attributesOfMessage)
{
    const std::size_t distance = mSize - mKept;
    if (!IsEmpty() && distance < kEnd && AttributesOf(mEntries.get() + mKept) == attributesOfMessage)
    {
        *Grow(1) = {static_cast<std::uint32_t>(distance)};
        return;
    }
    mKept = mSize;
    LdapEntry* const entry = Grow(WordsFor(attributesOfMessage.size()));
    entry[0] = {kOwn};
    entry[1] = {static_cast<std::uint32_t>(attributesOfMessage.size())};
    attributesOfMessage.copy(reinterpret_cast<char*>(entry + 2), attributesOfMessage.size());
}

const LdapEntry* NextOf(const LdapEntry* entry)
{
    const LdapEntry* const next = entry + (entry->word == kOwn ? WordsFor(entry[1].word) : 1);
    return next->word == kEnd ? nullptr : next;
}

std::string_view AttributesOf(const LdapEntry* entry)
{
    const LdapEntry* const kept = entry - entry->word;
    return {reinterpret_cast<const char*>(kept + 2), kept[1].word};
}

std::optional<LdapAttribute> TakeAttribute(std::string_view& attributes)
{
    std::optional<std::string_view> attribute = TakeBerElement(attributes);
    const std::optional<std::string_view> name = attribute ? TakeBerElement(*attribute) : std::nullopt;
    if (!name)
        return std::nullopt;
    return LdapAttribute{*name, TakeBerElement(*attribute).value_or(std::string_view())};
}

std::optional<std::vector<std::string_view>> ValuesOf(const LdapEntry* entry, std::string_view name)
{
    const auto differsInCase = [name](std::string_view other)
    { return other.size() == name.size() && strncasecmp(other.data(), name.data(), name.size()) == 0; };
    std::optional<std::string_view> found;
    std::string_view rest = AttributesOf(entry);
    while (const std::optional<LdapAttribute> attribute = TakeAttribute(rest))
    {
        const bool same = attribute->name == name;
        if (attribute->values.data() != nullptr && (same || (!found && differsInCase(attribute->name))))
            found = attribute->values;
        if (same)
            break;
    }
    if (!found)
        return std::nullopt;
    std::vector<std::string_view> values;
    while (const std::optional<std::string_view> value = TakeBerElement(*found))
        values.push_back(*value);
    return values;
}
