// SPDX-License-Identifier: MIT
#include "platform/display/terminal/TerminalConversation.h"

#include "platform/dialogs/UserInput.h"
#include "platform/display/terminal/TerminalCommand.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace platform
{

namespace
{

constexpr std::wstring_view kHelpWord = L"help";
constexpr std::wstring_view kShowWord = L"show";
constexpr std::wstring_view kQuitWord = L"quit";

bool IsWord(std::wstring_view command)
{
    const std::wstring word = Lower(command);
    return word == kHelpWord || word == L"?" || word == kShowWord || word == kQuitWord;
}

// A template cannot say that a box holds a secret; its label does.
bool IsSecret(const Window& control)
{
    return control.kind == WindowKind::Edit && Lower(NameOf(control)).find(L"password") != std::wstring::npos;
}

// In a dialog that asks for a password, the other boxes hold names and numbers: blanks around these are
// slips.
bool LosesBlanks(const Window& box)
{
    return !IsSecret(box) &&
           std::ranges::any_of(
               box.parent->children, [](const auto& control) { return IsSecret(*control); });
}

std::wstring DefaultOf(const Window& box)
{
    std::wstring value = IsSecret(box) && !box.text.empty() ? L"......" : ValueOf(box);
    return value.empty() ? value : L" [" + value + L"]";
}

// How many letters must change, come or go to make one text the other.
std::size_t Distance(std::wstring_view from, std::wstring_view to)
{
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < from.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j)
        {
            const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

std::wstring Nearest(const std::vector<std::wstring>& names, std::wstring_view word)
{
    const std::wstring wanted = Lower(word);
    std::wstring nearest;
    std::size_t least = wanted.size() / 2 + 1;
    for (const std::wstring& name : names)
    {
        const std::wstring whole = Lower(name);
        const std::size_t distance = std::min(
            Distance(wanted, whole), Distance(wanted, std::wstring_view(whole).substr(0, wanted.size())));
        if (distance < least)
        {
            least = distance;
            nearest = name;
        }
    }
    return nearest;
}

// The controls that a word can mean: those of that name or id, else whose names begin so, else that hold it.
std::vector<Window*> Meant(const std::vector<Window*>& controls, std::wstring_view word)
{
    const std::wstring wanted = Lower(word);
    if (wanted.empty())
        return {};
    std::vector<Window*> beginning;
    std::vector<Window*> holding;
    for (Window* const control : controls)
    {
        const std::wstring name = Lower(NameOf(*control));
        const std::size_t place = name.find(wanted);
        if (name == wanted || std::to_wstring(control->id) == wanted)
            return {control};
        if (place == 0)
            beginning.push_back(control);
        else if (place != std::wstring::npos)
            holding.push_back(control);
    }
    return beginning.empty() ? holding : beginning;
}

std::vector<std::wstring> CommandsOf(const Window& dialog)
{
    std::vector<std::wstring> names = NamesOf(Select(dialog, CanPress));
    std::ranges::move(NamesOf(Select(dialog, CanFill)), std::back_inserter(names));
    for (const std::wstring_view word : {kHelpWord, kShowWord, kQuitWord})
        names.emplace_back(word);
    return names;
}

std::wstring NotUnderstood(const Window& dialog, std::wstring_view command)
{
    const std::wstring nearest = Nearest(CommandsOf(dialog), command);
    return (nearest.empty() ? L"Not understood: " : L"Not understood, but near \"" + nearest + L"\": ") +
           L"help lists what can be pressed.";
}

std::wstring Help(const Window& dialog)
{
    std::wstring help = DescribeButtons(dialog) + L"\n";
    const std::vector<Window*> boxes = Select(dialog, CanFill);
    if (!boxes.empty())
        help += L"Fill: " + Join(NamesOf(boxes)) + L"\n";
    help += L"A name, or any part of it that no other has, presses a button";
    help += boxes.empty() ? L".\n"
                          : L" or asks for\na box; name=text fills one. Enter takes what stands in [].\n";
    return help + L"show: what the boxes hold. quit: ends the program. Ctrl-D: closes this dialog.\n"
                  L"Tab completes a name, the arrow keys bring back what was typed.";
}

std::wstring ShowBoxes(const Window& dialog)
{
    std::wstring text = dialog.text;
    for (const Window* const box : Select(dialog, IsField))
        text += L"\n" + DescribeSafely(*box);
    return text + L"\n" + DescribeButtons(dialog);
}

// While a box is asked, a line is what it is to hold, unless it is a whole name.
bool MeansCommand(const Window& dialog, std::wstring_view line)
{
    const std::size_t equals = line.find(L'=');
    const bool fills = equals != std::wstring_view::npos;
    const std::wstring name = Lower(Trim(line.substr(0, equals)));
    return (IsWord(name) && !fills) ||
           std::ranges::any_of(Select(dialog, fills ? CanFill : CanPress),
                               [&name](const Window* control) { return Lower(NameOf(*control)) == name; });
}

std::vector<std::wstring> ValuesOf(const Window& box)
{
    if (box.kind == WindowKind::CheckBox)
        return {L"on", L"off"};
    return ItemsOf(box);
}

std::wstring Choices(const Window& box)
{
    std::wstring lines;
    for (std::size_t i = 0; i < box.items.size(); ++i)
        lines += L"  " + std::to_wstring(i) + L"  " + box.items[i].text + L"\n";
    return lines;
}

} // namespace

std::wstring DescribeSafely(const Window& box)
{
    return IsSecret(box) ? NameOf(box) + (box.text.empty() ? L": " : L": ......") : DescribeField(box);
}

void Conversation::Open(const Window& dialog)
{
    Form form;
    for (const auto& control : dialog.children)
    {
        if (CanFill(*control))
            form.boxes.push_back(control.get());
        else if (CanPress(*control) && !form.boxes.empty())
        {
            form.afterBoxes = control.get();
            break;
        }
    }
    mForms[&dialog] = std::move(form);
}

void Conversation::Focus(Window& control)
{
    const auto form = mForms.find(&DialogOf(control));
    if (form != mForms.end() && CanFill(control))
        form->second.boxes = {&control};
}

Window* Conversation::BoxAsked(const Window& dialog) const
{
    const auto form = mForms.find(&dialog);
    if (form == mForms.end())
        return nullptr;
    const auto& boxes = form->second.boxes;
    const auto box = std::ranges::find_if(boxes, [](const Window* control) { return CanFill(*control); });
    return box != boxes.end() ? *box : nullptr;
}

Window* Conversation::Offered(const Window& dialog) const
{
    const std::vector<Window*> buttons = Select(dialog, CanPress);
    if (dialog.dialog->isMessageBox)
        return buttons.size() == 1 ? buttons.front() : nullptr;
    const auto form = mForms.find(&dialog);
    const bool isFilled = form != mForms.end() && form->second.isFilled;
    const auto offered = std::ranges::find_if(buttons,
                                              [&](const Window* button) {
                                                  return isFilled
                                                             ? button == form->second.afterBoxes
                                                             : button->id == dialog.dialog->defaultButton;
                                              });
    return offered != buttons.end() ? *offered : nullptr;
}

Question Conversation::Ask(Window& dialog)
{
    Question question;
    if (Window* const box = BoxAsked(dialog))
    {
        UserFocused(*box);
        question.isSecret = IsSecret(*box);
        question.lines = box->kind == WindowKind::ComboBox ? NameOf(*box) + L":\n" + Choices(*box) : L"";
        question.prompt = NameOf(*box) +
                          (box->kind == WindowKind::CheckBox ? L" (on, off)"
                           : question.isSecret               ? L" (not shown)"
                                                             : L"") +
                          DefaultOf(*box) + L": ";
        return question;
    }
    const Window* const offered = Offered(dialog);
    const std::vector<Window*> buttons = Select(dialog, CanPress);
    const bool hasBoxes = !Select(dialog, CanFill).empty();
    if (!hasBoxes && !dialog.dialog->isMessageBox)
        question.prompt = L"> ";
    else
        question.prompt = Join(NamesOf(buttons)) + (hasBoxes ? L", or a box to change" : L"") +
                          (offered != nullptr ? L" [" + NameOf(*offered) + L"]: " : L": ");
    // So that the keyboard is seen to come back when the program wants a box again.
    if (!buttons.empty() && hasBoxes)
        UserFocused(*buttons.front());
    return question;
}

void Conversation::Press(Window& button)
{
    mForms[&DialogOf(button)].isFilled = false;
    UserClicked(button);
}

std::wstring Conversation::Say(const Window& dialog, std::wstring_view word)
{
    if (word == kShowWord)
        return ShowBoxes(dialog);
    if (word != kQuitWord)
        return Help(dialog);
    mHasQuit = true;
    return L"";
}

std::wstring Conversation::FillBox(Window& box, std::wstring_view text)
{
    UserFocused(box); // or the click on it would, and it would be asked again
    std::wstring answer = Fill(box, LosesBlanks(box) ? Trim(text) : text);
    if (answer.empty())
        Settle(box);
    return answer;
}

void Conversation::Settle(Window& box)
{
    Form& form = mForms[box.parent];
    form.isFilled = true;
    std::erase(form.boxes, &box);
}

std::wstring Conversation::Answer(Window& dialog, std::wstring_view line)
{
    Window* const box = BoxAsked(dialog);
    if (box == nullptr || (!IsSecret(*box) && MeansCommand(dialog, line)))
        return Obey(dialog, line);
    if (!line.empty())
        return FillBox(*box, line);
    Settle(*box);
    return L"";
}

std::wstring Conversation::Obey(const Window& dialog, std::wstring_view line)
{
    // What comes after the sign may be a password, of which no copy is made.
    const std::size_t equals = line.find(L'=');
    const bool fills = equals != std::wstring_view::npos;
    const std::wstring_view name = Trim(line.substr(0, equals));
    if (name.empty() && !fills)
    {
        if (Window* const offered = Offered(dialog))
            Press(*offered);
        return L"";
    }
    if (IsWord(name) && !fills)
        return Say(dialog, Lower(name));

    std::vector<Window*> controls = Select(dialog, CanFill);
    if (!fills)
        std::ranges::copy(Select(dialog, CanPress), std::back_inserter(controls));
    const std::vector<Window*> meant = Meant(controls, name);
    if (meant.size() > 1)
        return L"Which one: " + Join(NamesOf(meant)) + L"?";
    if (meant.empty())
        return NotUnderstood(dialog, name);
    Window& control = *meant.front();
    if (fills && !BeginsSecret(dialog, line))
        return FillBox(control, line.substr(equals + 1));
    if (CanPress(control))
        Press(control);
    else
        mForms[&dialog].boxes.push_front(&control);
    return L"";
}

std::vector<std::wstring> Conversation::Completions(const Window& dialog, std::wstring_view beginning) const
{
    const Window* box = BoxAsked(dialog);
    std::wstring before;
    if (const std::size_t equals = beginning.find(L'='); box == nullptr && equals != std::wstring_view::npos)
    {
        const std::vector<Window*> meant = Meant(Select(dialog, CanFill), Trim(beginning.substr(0, equals)));
        if (meant.size() != 1)
            return {};
        box = meant.front();
        before = beginning.substr(0, equals + 1);
    }
    std::vector<std::wstring> lines = box == nullptr ? CommandsOf(dialog) : ValuesOf(*box);
    for (std::wstring& line : lines)
        line.insert(0, before);
    std::erase_if(lines, [beginning = Lower(beginning)](const std::wstring& line)
                  { return !Lower(line).starts_with(beginning); });
    return lines;
}

bool Conversation::BeginsSecret(const Window& dialog, std::wstring_view line) const
{
    if (!line.ends_with(L'='))
        return false;
    const std::vector<Window*> meant = Meant(Select(dialog, CanFill), Trim(line.substr(0, line.size() - 1)));
    return meant.size() == 1 && IsSecret(*meant.front());
}

} // namespace platform
