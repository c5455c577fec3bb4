// SPDX-License-Identifier: MIT
#include "platform/resource/DialogTemplate.h"

namespace platform
{

namespace
{

constexpr WORD kExtendedSignature = 0xFFFF;

// Resource compilers write the system's classes as numbers, also where the script names them.
ControlClass ClassOf(const ResourceName& name)
{
    switch (name.number)
    {
    case 0x80:
        return ControlClass::Button;
    case 0x81:
        return ControlClass::Edit;
    case 0x82:
        return ControlClass::Static;
    case 0x85:
        return ControlClass::ComboBox;
    default:
        return ControlClass::Other;
    }
}

DialogRect ReadRect(ByteReader& reader)
{
    const auto readUnits = [&] { return static_cast<int>(static_cast<std::int16_t>(reader.ReadWord())); };
    DialogRect rect;
    rect.x = readUnits();
    rect.y = readUnits();
    rect.width = readUnits();
    rect.height = readUnits();
    return rect;
}

ControlTemplate ReadControl(ByteReader& reader)
{
    ControlTemplate control;
    reader.AlignTo4();
    reader.ReadDWord(); // help id
    control.extendedStyle = reader.ReadDWord();
    control.style = reader.ReadDWord();
    control.rect = ReadRect(reader);
    control.id = reader.ReadDWord();
    control.windowClass = ClassOf(ResourceName::Read(reader));
    control.text = ResourceName::Read(reader).text;
    reader.ReadBytes(reader.ReadWord()); // creation data
    return control;
}

} // namespace

std::optional<DialogTemplate> ReadDialogTemplate(Bytes bytes)
{
    DialogTemplate dialog;
    ByteReader reader(bytes);
    reader.ReadWord(); // version
    if (reader.ReadWord() != kExtendedSignature)
        return std::nullopt;
    reader.ReadDWord(); // help id
    dialog.extendedStyle = reader.ReadDWord();
    dialog.style = reader.ReadDWord();
    const std::size_t controls = reader.ReadWord();
    dialog.rect = ReadRect(reader);
    ResourceName::Read(reader); // menu
    ResourceName::Read(reader); // window class
    dialog.caption = reader.ReadText();
    if ((dialog.style & DS_SETFONT) != 0)
    {
        dialog.font.points = reader.ReadWord();
        dialog.font.weight = reader.ReadWord();
        dialog.font.italic = reader.ReadByte() != 0;
        reader.ReadByte(); // character set
        dialog.font.face = reader.ReadText();
    }
    for (std::size_t i = 0; i < controls && !reader.Failed(); ++i)
        dialog.controls.push_back(ReadControl(reader));
    if (reader.Failed())
        return std::nullopt;
    return dialog;
}

} // namespace platform
