// SPDX-License-Identifier: MIT
// What a person at a terminal is asked, and what an answer does. The boxes of a dialog are asked one by one,
// up to the first button after them, then what to press; a dialog without boxes asks for a command at once.
#pragma once

#include "platform/dialogs/Window.h"

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace platform
{

struct Question
{
    std::wstring lines; // shown above the prompt, each with its end
    std::wstring prompt;
    bool isSecret = false; // the answer is neither echoed nor kept
};

// "label: text", or dots for what is not to be seen.
std::wstring DescribeSafely(const Window& box);

class Conversation
{
public:
    // A dialog that appears; `Forget` when it is gone.
    void Open(const Window& dialog);
    void Forget(const Window& dialog) { mForms.erase(&dialog); }

    // The program has given a box the keyboard: it is asked again.
    void Focus(Window& control);

    Question Ask(Window& dialog);

    // Does what the line says, and gives the lines to be shown, without their last end.
    std::wstring Answer(Window& dialog, std::wstring_view line);

    // The whole lines that a beginning can become.
    std::vector<std::wstring> Completions(const Window& dialog, std::wstring_view beginning) const;

    // True for "Password=": what comes after it is not to be seen.
    bool BeginsSecret(const Window& dialog, std::wstring_view line) const;

    // True for good once the person has said `quit`.
    bool HasQuit() const { return mHasQuit; }

private:
    struct Form
    {
        std::deque<Window*> boxes;    // still to be asked
        Window* afterBoxes = nullptr; // the button that they lead to
        bool isFilled = false;        // and nothing pressed since
    };

    Window* BoxAsked(const Window& dialog) const;
    Window* Offered(const Window& dialog) const; // what an empty line presses
    void Press(Window& button);
    void Settle(Window& box);
    std::wstring FillBox(Window& box, std::wstring_view text);
    std::wstring Say(const Window& dialog, std::wstring_view word);
    std::wstring Obey(const Window& dialog, std::wstring_view line);

    std::map<const Window*, Form> mForms;
    bool mHasQuit = false;
};

} // namespace platform
