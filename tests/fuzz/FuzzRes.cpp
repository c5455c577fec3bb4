// SPDX-License-Identifier: MIT
// Any bytes as a .res file, and as a resource of each kind: no more is read than there is.
#include "platform/resource/Resources.h"
#include "tests/fuzz/Require.h"

using namespace platform;

static void ReadAsEachKind(Bytes data)
{
    if (const auto dialog = ReadDialogTemplate(data))
    {
        std::size_t units = dialog->caption.size() + dialog->font.face.size();
        for (const ControlTemplate& control : dialog->controls)
            units += control.text.size();
        Require(units * sizeof(WORD) <= data.size());
    }
    for (UINT index = 0; index < 16; ++index)
        Require(ReadString(data, index).size() * sizeof(WORD) <= data.size());
    Require(ReadIconGroup(data).size() <= data.size());
}

static void Fuzz(std::string_view input)
{
    const Bytes file(reinterpret_cast<const BYTE*>(input.data()), input.size());
    ReadAsEachKind(file);
    for (const Resource& resource : ReadResFile(file))
    {
        Require(resource.data.size() <= file.size());
        ReadAsEachKind(resource.data);
    }
}
