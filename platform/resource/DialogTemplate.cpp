// SPDX-License-Identifier: MIT
#include "platform/resource/DialogTemplate.h"

#include <algorithm>
#include <array>
#include <cwctype>

namespace platform
{

namespace
{

constexpr WORD kExtendedSignature = 0xFFFF;

struct ClassName
{
    WORD number;
    const wchar_t* text;
    ControlClass windowClass;
};

constexpr std::array<ClassName, 4> kClasses = {{
    {0x80, L"BUTTON", ControlClass::Button},
    {0x81, L"EDIT", ControlClass::Edit},
    {0x82, L"STATIC", ControlClass::Static},
    {0x85, L"COMBOBOX", ControlClass::ComboBox},
}};

ControlClass FindClass(const ResourceName& name)
{
    for (const ClassName& known : kClasses)
        if (name.isNumber ? name.number == known.number : wcscasecmp(name.text.c_str(), known.text) == 0)
            return known.windowClass;
    return ControlClass::Other;
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
    control.windowClass = FindClass(ResourceName::Read(reader));
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
