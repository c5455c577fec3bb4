// SPDX-License-Identifier: MIT
#include "platform/resource/Resources.h"
#include "platform/kernel/Error.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>

// Defined by the program that the layer serves (see tavo_resources in cmake/Targets.cmake); absent from one
// without resources.
extern "C"
{
    [[gnu::weak, gnu::visibility("default")]] extern const BYTE tavo_resources_begin[];
    [[gnu::weak, gnu::visibility("default")]] extern const BYTE tavo_resources_end[];
}

namespace platform
{

namespace
{

constexpr UINT kStringsPerBlock = 16;

UINT NumberOf(LPCWSTR name)
{
    return static_cast<UINT>(reinterpret_cast<std::uintptr_t>(name));
}

Bytes FindResource(LPCWSTR type, UINT id)
{
    static const std::vector<Resource> resources =
        tavo_resources_begin != nullptr ? ReadResFile({tavo_resources_begin, tavo_resources_end})
                                        : std::vector<Resource>();
    const auto found =
        std::ranges::find_if(resources, [&](const Resource& resource)
                             { return resource.type.Is(NumberOf(type)) && resource.name.Is(id); });
    return found == resources.end() ? Bytes() : found->data;
}

// The icons in use; an icon's handle is its place here. They are never freed.
std::map<UINT, std::vector<IconEntry>>& Icons()
{
    static std::map<UINT, std::vector<IconEntry>> icons;
    return icons;
}

} // namespace

std::optional<DialogTemplate> FindDialogTemplate(LPCWSTR name)
{
    return ReadDialogTemplate(FindResource(RT_DIALOG, NumberOf(name)));
}

std::wstring ReadString(Bytes block, UINT index)
{
    ByteReader reader(block);
    for (; index > 0; --index)
        reader.ReadBytes(reader.ReadWord() * std::size_t{2});
    const std::size_t codeUnits = reader.ReadWord();
    std::wstring text = reader.ReadText(codeUnits);
    return reader.Failed() ? std::wstring() : text;
}

std::vector<IconEntry> ReadIconGroup(Bytes group)
{
    constexpr WORD kIsIcon = 1;
    ByteReader reader(group);
    reader.ReadWord();
    if (reader.ReadWord() != kIsIcon)
        return {};
    std::vector<IconEntry> entries;
    for (std::size_t left = reader.ReadWord(); left > 0; --left)
    {
        IconEntry entry;
        const BYTE width = reader.ReadByte();
        entry.width = width != 0 ? width : 256;
        reader.ReadBytes(5); // height, colours, reserved, planes
        entry.bitsPerPixel = reader.ReadWord();
        reader.ReadDWord(); // size of the image
        entry.id = reader.ReadWord();
        if (reader.Failed())
            break;
        entries.push_back(entry);
    }
    return entries;
}

IconImage FindIconImage(HICON icon, int pixels)
{
    constexpr std::array<BYTE, 4> kPngSignature = {0x89, 'P', 'N', 'G'};
    const auto* const entries = reinterpret_cast<const std::vector<IconEntry>*>(icon);
    if (entries == nullptr || entries->empty())
        return {};
    // The smallest that is large enough, else the largest; of equal ones that with the most colours.
    const auto best = std::ranges::min_element(
        *entries, {},
        [pixels](const IconEntry& entry)
        {
            const bool isTooSmall = entry.width < pixels;
            return std::tuple(isTooSmall, isTooSmall ? -entry.width : entry.width, -entry.bitsPerPixel);
        });
    const Bytes image = FindResource(RT_ICON, best->id);
    return {image.data(), image.size(),
            image.size() >= kPngSignature.size() &&
                std::equal(kPngSignature.begin(), kPngSignature.end(), image.data())};
}

} // namespace platform

using namespace platform;

HICON LoadIconW(HINSTANCE, LPCWSTR name)
{
    const UINT id = NumberOf(name);
    const auto known = Icons().find(id);
    if (known != Icons().end())
        return reinterpret_cast<HICON>(&known->second);
    std::vector<IconEntry> entries = ReadIconGroup(FindResource(RT_GROUP_ICON, id));
    if (entries.empty())
    {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<HICON>(&Icons().emplace(id, std::move(entries)).first->second);
}

int LoadStringW(HINSTANCE, UINT id, LPWSTR text, int capacity)
{
    if (capacity <= 0)
        return 0;
    const std::wstring found =
        ReadString(FindResource(RT_STRING, id / kStringsPerBlock + 1), id % kStringsPerBlock);
    const std::size_t length = std::min(found.size(), static_cast<std::size_t>(capacity) - 1);
    *std::copy_n(found.data(), length, text) = L'\0';
    if (length == 0)
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return static_cast<int>(length);
}
