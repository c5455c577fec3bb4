// SPDX-License-Identifier: MIT
#include "platform/display/terminal/TerminalCommand.h"

#include "platform/dialogs/UserInput.h"
#include "platform/display/LabelOf.h"
#include "text/FoldCase.h"

#include <algorithm>

namespace platform
{

std::wstring_view Trim(std::wstring_view text)
{
    constexpr std::wstring_view kBlanks = L" \t";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::wstring_view::npos ? std::wstring_view()
                                            : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

std::wstring Lower(std::wstring_view text)
{
    std::wstring lower(text);
    text::FoldCase(lower.data(), lower.size());
    return lower;
}

std::wstring NameOf(const Window& control)
{
    if (control.kind != WindowKind::Edit && control.kind != WindowKind::ComboBox)
        return PlainCaption(control.text);
    const Window* const label = LabelOf(control);
    std::wstring name = label != nullptr ? PlainCaption(label->text) : std::to_wstring(control.id);
    while (name.ends_with(L':'))
        name.pop_back();
    return name;
}

bool CanPress(const Window& control)
{
    return control.kind == WindowKind::PushButton && control.visible && control.enabled;
}

bool CanFill(const Window& control)
{
    return IsField(control) && control.enabled &&
           (control.kind != WindowKind::Edit || (control.style & ES_READONLY) == 0);
}

std::vector<Window*> Select(const Window& dialog, const std::function<bool(const Window&)>& isWanted)
{
    std::vector<Window*> controls;
    for (const auto& control : dialog.children)
        if (isWanted(*control))
            controls.push_back(control.get());
    return controls;
}

std::vector<std::wstring> NamesOf(const std::vector<Window*>& controls)
{
    std::vector<std::wstring> names;
    std::ranges::transform(controls, std::back_inserter(names),
                           [](const Window* control) { return NameOf(*control); });
    return names;
}

std::vector<std::wstring> ItemsOf(const Window& comboBox)
{
    std::vector<std::wstring> texts;
    std::ranges::transform(comboBox.items, std::back_inserter(texts), &ComboItem::text);
    return texts;
}

std::wstring Join(const std::vector<std::wstring>& names)
{
    std::wstring joined;
    for (const std::wstring& name : names)
        joined += (joined.empty() ? L"" : L", ") + name;
    return joined;
}

namespace
{

// The place of a name in a list: equal in any case, or the only one that begins so; -1 when there is none.
int FindName(const std::vector<std::wstring>& names, std::wstring_view wanted)
{
    const std::wstring name = Lower(wanted);
    int found = -1;
    bool isUnique = !name.empty();
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        const std::wstring candidate = Lower(names[i]);
        if (candidate == name)
            return static_cast<int>(i);
        if (!candidate.starts_with(name))
            continue;
        isUnique = isUnique && found == -1;
        found = static_cast<int>(i);
    }
    return isUnique ? found : -1;
}

// By id, or by name.
Window* FindOne(const std::vector<Window*>& controls, std::wstring_view wanted)
{
    const auto byId = std::ranges::find(controls, wanted,
                                        [](const Window* control) { return std::to_wstring(control->id); });
    if (byId != controls.end())
        return *byId;
    const int place = FindName(NamesOf(controls), wanted);
    return place >= 0 ? controls[static_cast<std::size_t>(place)] : nullptr;
}

std::wstring Tick(Window& box, std::wstring_view value)
{
    const std::wstring wanted = Lower(Trim(value));
    if (wanted != L"on" && wanted != L"off")
        return NameOf(box) + L" is on or off.";
    if ((wanted == L"on") != (box.check == BST_CHECKED))
        UserClicked(box);
    return L"";
}

std::wstring Choose(Window& box, std::wstring_view value)
{
    const std::wstring_view wanted = Trim(value);
    int index = FindName(ItemsOf(box), wanted);
    for (std::size_t i = 0; index < 0 && i < box.items.size(); ++i)
        if (std::to_wstring(i) == wanted)
            index = static_cast<int>(i);
    if (index < 0)
        return NameOf(box) + L" is one of " + Join(ItemsOf(box)) + L".";
    UserSelected(box, index);
    return L"";
}

} // namespace

std::wstring Fill(Window& control, std::wstring_view value)
{
    switch (control.kind)
    {
    case WindowKind::CheckBox:
        return Tick(control, value);
    case WindowKind::ComboBox:
        return Choose(control, value);
    default:
        UserTyped(control, std::wstring(value));
        return L"";
    }
}

std::wstring PlainCaption(std::wstring_view caption)
{
    std::wstring plain;
    for (std::size_t i = 0; i < caption.size(); ++i)
    {
        if (caption[i] == L'&' && i + 1 < caption.size())
            ++i;
        plain += caption[i];
    }
    return plain;
}

bool IsLog(const Window& control)
{
    return control.kind == WindowKind::Edit && (control.style & ES_MULTILINE) != 0 &&
           (control.style & ES_READONLY) != 0;
}

bool IsField(const Window& control)
{
    return control.visible && !IsLog(control) &&
           (control.kind == WindowKind::Edit || control.kind == WindowKind::ComboBox ||
            control.kind == WindowKind::CheckBox);
}

std::wstring ValueOf(const Window& control)
{
    if (control.kind == WindowKind::CheckBox)
        return control.check == BST_CHECKED ? L"on" : L"off";
    if (control.kind == WindowKind::ComboBox)
        return control.selection >= 0 ? control.items[static_cast<std::size_t>(control.selection)].text : L"";
    return control.text;
}

std::wstring DescribeField(const Window& control)
{
    return NameOf(control) + L": " + ValueOf(control);
}

std::wstring DescribeFieldAndChoice(const Window& control)
{
    std::wstring text = DescribeField(control);
    if (control.kind == WindowKind::ComboBox)
        text += L" (of " + Join(ItemsOf(control)) + L")";
    return text;
}

std::wstring DescribeButtons(const Window& dialog)
{
    const std::vector<Window*> buttons = Select(dialog, CanPress);
    return buttons.empty() ? L"" : L"Press: " + Join(NamesOf(buttons));
}

std::wstring Obey(const Window& dialog, std::wstring_view line)
{
    // What comes after the sign may be a password, of which no copy is made.
    const std::size_t equals = line.find(L'=');
    const bool fills = equals != std::wstring_view::npos;
    const std::wstring_view name = Trim(line.substr(0, equals));
    if (name.empty() && !fills)
        return L"";
    const std::vector<Window*> fields = Select(dialog, CanFill);
    Window* const control = FindOne(fills ? fields : Select(dialog, CanPress), name);
    if (control != nullptr && fills)
        return Fill(*control, line.substr(equals + 1));
    if (control != nullptr)
    {
        UserClicked(*control);
        return L"";
    }
    std::wstring answer = L"Not understood. " + DescribeButtons(dialog);
    if (!fields.empty())
        answer += L". Fill: " + Join(NamesOf(fields));
    return answer;
}

} // namespace platform
