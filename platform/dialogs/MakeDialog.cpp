// SPDX-License-Identifier: MIT
#include "platform/resource/DialogTemplate.h"
#include "platform/dialogs/DialogLoop.h"

#include <optional>

namespace platform
{

namespace
{

// The low bits of a style that tell one kind from another.
constexpr DWORD kButtonKind = 0x0F;
constexpr DWORD kComboBoxKind = 0x03;

std::optional<WindowKind> KindOf(const ControlTemplate& source)
{
    switch (source.windowClass)
    {
    case ControlClass::Edit:
        return WindowKind::Edit;
    case ControlClass::Static:
        return WindowKind::Label;
    case ControlClass::ComboBox:
        if ((source.style & kComboBoxKind) == CBS_DROPDOWNLIST)
            return WindowKind::ComboBox;
        return std::nullopt;
    case ControlClass::Button:
        switch (source.style & kButtonKind)
        {
        case BS_PUSHBUTTON:
        case BS_DEFPUSHBUTTON:
            return WindowKind::PushButton;
        case BS_AUTOCHECKBOX:
            return WindowKind::CheckBox;
        default:
            return std::nullopt;
        }
    case ControlClass::Other:
        break;
    }
    return std::nullopt;
}

} // namespace

std::unique_ptr<Window> MakeDialog(const DialogTemplate& source)
{
    auto dialog = std::make_unique<Window>();
    dialog->style = source.style;
    dialog->extendedStyle = source.extendedStyle;
    dialog->rect = source.rect;
    dialog->text = source.caption;
    dialog->dialog = std::make_unique<DialogState>();
    dialog->dialog->font = source.font;

    for (const ControlTemplate& part : source.controls)
    {
        const std::optional<WindowKind> kind = KindOf(part);
        if (!kind)
            return nullptr;
        auto control = std::make_unique<Window>();
        control->kind = *kind;
        control->id = part.id;
        control->parent = dialog.get();
        control->style = part.style;
        control->extendedStyle = part.extendedStyle;
        control->rect = part.rect;
        control->visible = (part.style & WS_VISIBLE) != 0;
        control->enabled = (part.style & WS_DISABLED) == 0;
        control->text = part.text;
        if (*kind == WindowKind::PushButton && (part.style & kButtonKind) == BS_DEFPUSHBUTTON)
            dialog->dialog->defaultButton = part.id;
        dialog->children.push_back(std::move(control));
    }
    return dialog;
}

} // namespace platform
