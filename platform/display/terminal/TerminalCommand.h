// SPDX-License-Identifier: MIT
// What a line of input means to a dialog, and how a dialog's controls are named in text.
#pragma once

#include "platform/dialogs/Window.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace platform
{

// Without the blanks at its ends.
std::wstring_view Trim(std::wstring_view text);
std::wstring Lower(std::wstring_view text);
// "Yes, No"
std::wstring Join(const std::vector<std::wstring>& names);

// A caption without the marks of its keys.
std::wstring PlainCaption(std::wstring_view caption);

// True for a box that is filled or ticked by the person or the program.
bool IsField(const Window& control);
// True for a box that only the program adds lines to.
bool IsLog(const Window& control);
bool CanPress(const Window& control);
bool CanFill(const Window& control);

std::vector<Window*> Select(const Window& dialog, const std::function<bool(const Window&)>& isWanted);

// A button's caption; a box's label without its colon, the id where there is no label.
std::wstring NameOf(const Window& control);
std::vector<std::wstring> NamesOf(const std::vector<Window*>& controls);
std::vector<std::wstring> ItemsOf(const Window& comboBox);
// What a box holds; "on" or "off" of a check box.
std::wstring ValueOf(const Window& control);

// "label: text"
std::wstring DescribeField(const Window& control);
// The same, and the items to choose from.
std::wstring DescribeFieldAndChoice(const Window& control);
// "Press: OK, Cancel"; empty when there is nothing to press.
std::wstring DescribeButtons(const Window& dialog);

// Fills, ticks or chooses. Gives what a box does take, when it does not take the value.
std::wstring Fill(Window& control, std::wstring_view value);

// Does what a line of a script says with a dialog that is visible and enabled. Gives what there is to answer:
// nothing when the line was understood.
std::wstring Obey(const Window& dialog, std::wstring_view line);

} // namespace platform
