// SPDX-License-Identifier: MIT
#include "platform/net/LdapResult.h"

#include "platform/net/Ber.h"

#include <cstring>
#include <new>

#include <strings.h>

void LdapResult::Add(std::string_view attributesOfMessage)
{
    std::string_view kept = mLast ? mLast->attributes : std::string_view();
    // Neighbours often bear the same classes and nothing else.
    if (kept != attributesOfMessage)
    {
        char* const bytes = static_cast<char*>(mMemory.allocate(attributesOfMessage.size(), 1));
        std::memcpy(bytes, attributesOfMessage.data(), attributesOfMessage.size());
        kept = {bytes, attributesOfMessage.size()};
    }
    LdapEntry* const entry =
        mLast ? new (mMemory.allocate(sizeof(LdapEntry), alignof(LdapEntry))) LdapEntry : this;
    entry->attributes = kept;
    if (mLast)
        mLast->next = entry;
    mLast = entry;
}

std::optional<LdapAttribute> TakeAttribute(std::string_view& attributes)
{
    std::optional<std::string_view> attribute = TakeBerElement(attributes);
    const std::optional<std::string_view> name = attribute ? TakeBerElement(*attribute) : std::nullopt;
    if (!name)
        return std::nullopt;
    return LdapAttribute{*name, TakeBerElement(*attribute).value_or(std::string_view())};
}

std::optional<std::vector<std::string_view>> ValuesOf(const LdapEntry& entry, std::string_view name)
{
    const auto differsInCase = [name](std::string_view other)
    { return other.size() == name.size() && strncasecmp(other.data(), name.data(), name.size()) == 0; };
    std::optional<std::string_view> found;
    std::string_view rest = entry.attributes;
    while (const std::optional<LdapAttribute> attribute = TakeAttribute(rest))
    {
        const bool same = attribute->name == name;
        if (attribute->values.data() && (same || (!found && differsInCase(attribute->name))))
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
