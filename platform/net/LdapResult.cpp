// SPDX-License-Identifier: MIT
#include "platform/net/LdapResult.h"

#include <cstring>
#include <new>

#include <lber.h>
#include <strings.h>

namespace
{

std::string TextOf(const berval& value)
{
    return std::string(value.bv_val, value.bv_len);
}

// Reads an attribute's name and leaves its values in `values`.
std::optional<std::string> ReadAttribute(BerElement* position, berval& values)
{
    berval attribute{};
    if (ber_skip_element(position, &attribute) == LBER_DEFAULT)
        return std::nullopt;
    const std::unique_ptr<BerElement, FreeAttributePosition> inside(ber_alloc_t(LBER_USE_DER));
    ber_init2(inside.get(), &attribute, LBER_USE_DER);
    berval name{};
    if (ber_skip_element(inside.get(), &name) == LBER_DEFAULT)
        return std::nullopt;
    if (ber_skip_element(inside.get(), &values) == LBER_DEFAULT)
        values = {};
    return TextOf(name);
}

} // namespace

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

void FreeAttributePosition::operator()(berelement* position) const
{
    ber_free(position, 0); // the bytes are the result's
}

AttributePosition BeforeAttributes(const LdapEntry& entry)
{
    berval bytes = {entry.attributes.size(), const_cast<char*>(entry.attributes.data())};
    AttributePosition position(ber_alloc_t(LBER_USE_DER));
    ber_init2(position.get(), &bytes, LBER_USE_DER);
    return position;
}

std::optional<std::string> NextAttribute(berelement* position)
{
    berval values{};
    return ReadAttribute(position, values);
}

std::optional<std::vector<std::string>> ValuesOf(const LdapEntry& entry, const std::string& name)
{
    const AttributePosition position = BeforeAttributes(entry);
    std::optional<berval> found;
    berval values{};
    while (const std::optional<std::string> attribute = ReadAttribute(position.get(), values))
    {
        const bool same = *attribute == name;
        if (values.bv_val && (same || (!found && strcasecmp(attribute->c_str(), name.c_str()) == 0)))
            found = values;
        if (same)
            break;
    }
    if (!found)
        return std::nullopt;
    const AttributePosition list(ber_alloc_t(LBER_USE_DER));
    ber_init2(list.get(), &*found, LBER_USE_DER);
    std::vector<std::string> texts;
    for (berval value{}; ber_skip_element(list.get(), &value) != LBER_DEFAULT;)
        texts.push_back(TextOf(value));
    return texts;
}
