// SPDX-License-Identifier: MIT
// Any bytes are lines that somebody types, about a dialog like that of the LDAP test. Text comes through or
// is seen to be unreadable, no answer shows a password, and nothing typed commands the terminal.
#include "platform/dialogs/Display.h"
#include "platform/display/terminal/TerminalCommand.h"
#include "platform/display/terminal/TerminalConversation.h"
#include "platform/display/terminal/TerminalText.h"
#include "tests/fuzz/Require.h"
#include "text/Unicode.h"

#include <algorithm>

using namespace platform;

const std::wstring kPassword = L"\x2603\x2603\x2603"; // that no caption holds

static Window& Add(Window& dialog, WindowKind kind, UINT id, const wchar_t* text, int row)
{
    Window& control = *dialog.children.emplace_back(std::make_unique<Window>());
    control.kind = kind;
    control.id = id;
    control.text = text;
    control.parent = &dialog;
    control.visible = true;
    control.rect = {kind == WindowKind::Label ? 0 : 60, 20 * row, 50, 14};
    return control;
}

static void Fill(Window& dialog)
{
    dialog.dialog = std::make_unique<DialogState>();
    dialog.dialog->defaultButton = IDOK;
    dialog.visible = true;
    Add(dialog, WindowKind::Edit, 1006, L"", 0);
    Add(dialog, WindowKind::Edit, 1007, kPassword.c_str(), 1);
    Add(dialog, WindowKind::CheckBox, 1013, L"&Wide characters", 2);
    Add(dialog, WindowKind::ComboBox, 1003, L"", 3).items = {
        {L"Try all", 0}, {L"NTLM", 3}, {L"Negotiate", 7}};
    Add(dialog, WindowKind::PushButton, IDOK, L"OK", 4);
    Add(dialog, WindowKind::PushButton, IDCANCEL, L"Cancel", 4);
    Add(dialog, WindowKind::Label, 0xFFFF, L"LDAP Server:", 0);
    Add(dialog, WindowKind::Label, 0xFFFF, L"Password:", 1);
}

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    setenv("LC_ALL", "C.UTF-8", 1);
    Require(UseDisplay(DisplayKind::None));
    return 0;
}

static void Fuzz(std::string_view bytes)
{
    static TerminalEncoding encoding;
    Window dialog;
    Fill(dialog);
    Conversation conversation;
    conversation.Open(dialog);
    while (!bytes.empty())
    {
        const std::string_view part = bytes.substr(0, bytes.find('\n'));
        bytes.remove_prefix(std::min(part.size() + 1, bytes.size()));
        const std::wstring line = encoding.Decode(part, true);
        if (!TerminalEncoding::IsText(line))
            continue;
        Require(text::ToUtf8(line) == part && encoding.Encode(line) == part);
        for (const wchar_t character : TypedText(line))
            Require(character >= L' ' && character != L'\x7f');
        for (const std::wstring& whole : conversation.Completions(dialog, line))
            Require(Lower(whole).starts_with(Lower(line)));
        if (line.find(kPassword[0]) != std::wstring::npos)
            continue;
        const Question question = conversation.Ask(dialog);
        const std::wstring answer = question.isSecret ? L"" : conversation.Answer(dialog, line);
        for (const std::wstring& seen : {question.lines, question.prompt, answer})
            Require(seen.find(kPassword[0]) == std::wstring::npos);
        if (question.isSecret)
            conversation.Answer(dialog, L"");
        Obey(dialog, line);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
            continue;
    }
}
