// SPDX-License-Identifier: MIT
// What a line of input means to a dialog, and how a dialog's controls are named in text.
#pragma once

#include "platform/dialogs/Window.h"

#include <string>
#include <string_view>

namespace platform
{

// A caption without the marks of its keys.
std::wstring PlainCaption(std::wstring_view caption);

// "label: text" of a box, "caption: on" of a check box; the id where there is no label.
std::wstring DescribeField(const Window& control);

// The same, and the items to choose from.
std::wstring DescribeFieldAndChoice(const Window& control);

// "Press: OK, Cancel"; empty when there is nothing to press.
std::wstring DescribeButtons(const Window& dialog);

// True for a box that is filled or ticked by the person or the program.
bool IsField(const Window& control);

// True for a box that only the program adds lines to.
bool IsLog(const Window& control);

// Does what a line says with a dialog that is visible and enabled. Gives what there is to answer: nothing
// when the line was understood.
std::wstring Obey(const Window& dialog, std::wstring_view line);

} // namespace platform
