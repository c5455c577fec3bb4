// SPDX-License-Identifier: MIT
#include "tests/framework/ResourceBytes.h"

#include "platform/resource/ResFile.h"

// The .res file that tavo_resources embeds.
extern "C" const BYTE tavo_resources_begin[];
extern "C" const BYTE tavo_resources_end[];

std::string_view FindResourceBytes(int type, int id)
{
    for (const platform::Resource& resource :
         platform::ReadResFile({tavo_resources_begin, tavo_resources_end}))
    {
        if (resource.type.Is(static_cast<UINT>(type)) && resource.name.Is(static_cast<UINT>(id)))
            return {reinterpret_cast<const char*>(resource.data.data()), resource.data.size()};
    }
    return {};
}
