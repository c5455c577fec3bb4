// SPDX-License-Identifier: MIT
#include "platform/window/Dialogs.h"
#include "platform/kernel/Error.h"

#include "platform/resource/Resources.h"
#include "platform/window/Controls.h"
#include "platform/window/Desk.h"

namespace platform
{

namespace
{

// Takes the dialog away again on every way out, so that a fault in a handler leaves no dead window behind.
class Shown
{
public:
    explicit Shown(std::unique_ptr<Window> made) : mDialog(AddDialog(std::move(made))) {}
    ~Shown()
    {
        EndDialog(mDialog.handle, mDialog.dialog->result);
        RemoveDialog(mDialog);
    }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;

    Window& Dialog() { return mDialog; }

private:
    Window& mDialog;
};

void PressDefault(Window& dialog)
{
    const Window* const focus = dialog.dialog->focus;
    const bool pressesFocus = focus != nullptr && focus->kind == WindowKind::PushButton;
    const UINT id = pressesFocus                        ? focus->id
                    : dialog.dialog->defaultButton != 0 ? dialog.dialog->defaultButton
                                                        : IDOK;
    const Window* const button = FindControl(dialog, id);
    if (button == nullptr || button->enabled)
        Call(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(HandleOf(button)));
}

void Cancel(Window& dialog)
{
    const Window* const button = FindControl(dialog, IDCANCEL);
    if (button == nullptr || button->enabled)
        PostTo(dialog.handle, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
               reinterpret_cast<LPARAM>(HandleOf(button)));
}

// The keys that a dialog takes before the control with the focus does.
bool TakeKey(Window& dialog, const MSG& message)
{
    if (message.message != WM_KEYDOWN)
        return false;
    if (message.wParam == VK_RETURN)
        PressDefault(dialog);
    else if (message.wParam == VK_ESCAPE)
        Cancel(dialog);
    else
        return false;
    return true;
}

void RunLoop(Window& dialog, const std::optional<std::chrono::milliseconds>& timeout)
{
    const auto deadline = timeout ? MessageQueue::Clock::now() + *timeout : MessageQueue::kNever;
    while (!dialog.dialog->ended)
    {
        MSG message;
        if (TheQueue().Next(message, true))
        {
            if (message.message == WM_QUIT)
            {
                PostQuitMessage(static_cast<int>(message.wParam));
                EndDialog(dialog.handle, 0);
            }
            else if (!IsDialogMessageW(dialog.handle, &message))
                DispatchMessageW(&message);
        }
        else if (MessageQueue::Clock::now() >= deadline)
            EndDialog(dialog.handle, MB_TIMEDOUT);
        else if (!dialog.dialog->ended)
            TheQueue().Wait(deadline);
    }
}

} // namespace

INT_PTR RunModal(std::unique_ptr<Window> made, const ModalRun& run)
{
    Shown shown(std::move(made));
    Window& dialog = shown.Dialog();
    DialogState& state = *dialog.dialog;
    state.procedure = run.procedure;

    if (Window* const owner = FindWindow(run.owner))
    {
        dialog.parent = &DialogOf(*owner);
        state.hasDisabledOwner = dialog.parent->enabled;
        SetEnabled(*dialog.parent, false);
    }
    Window* const first = FirstTabStop(dialog);
    const bool placesFocus =
        Call(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(HandleOf(first)), run.parameter) != 0;
    if (!state.ended)
    {
        // The handler may have disabled or hidden what was first.
        if (Window* const focus = placesFocus ? FirstTabStop(dialog) : nullptr)
            SetFocusTo(*focus);
        SetVisible(dialog, true);
    }
    RunLoop(dialog, run.timeout);
    return state.result;
}

LRESULT ServeDialog(Window& dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    DialogState& state = *dialog.dialog;
    state.messageResult = 0;
    const INT_PTR served = state.procedure(dialog.handle, message, wParam, lParam);
    if (message == WM_INITDIALOG || message == WM_QUERYDRAGICON)
        return served;
    if (served != 0)
        return state.messageResult;

    switch (message)
    {
    case WM_CLOSE:
        Cancel(dialog);
        return 0;
    case WM_PAINT:
        state.needsPaint = false;
        return 0;
    case WM_SETICON:
    {
        HICON& icon = wParam == ICON_BIG ? state.bigIcon : state.smallIcon;
        const HICON former = icon;
        icon = reinterpret_cast<HICON>(lParam);
        TheDisplay().Refresh(dialog, Change::Icon, 0);
        return reinterpret_cast<LRESULT>(former);
    }
    default:
        return ServeText(dialog, message, wParam, lParam);
    }
}

} // namespace platform

using namespace platform;

INT_PTR DialogBoxParamW(HINSTANCE, LPCWSTR name, HWND owner, DLGPROC procedure, LPARAM parameter)
{
    const std::optional<DialogTemplate> source = FindDialogTemplate(name);
    std::unique_ptr<Window> dialog = source ? MakeDialog(*source) : nullptr;
    if (dialog == nullptr)
    {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return -1;
    }
    if (!OpenDesk())
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return -1;
    }
    return RunModal(std::move(dialog), {owner, procedure, parameter, std::nullopt});
}

BOOL IsDialogMessageW(HWND handle, LPMSG message)
{
    Window* const dialog = FindDialog(handle);
    Window* const window = FindWindow(message->hwnd);
    if (dialog == nullptr || window == nullptr || &DialogOf(*window) != dialog)
        return FALSE;
    if (!TakeKey(*dialog, *message))
        DispatchMessageW(message);
    return TRUE;
}

BOOL EndDialog(HWND handle, INT_PTR result)
{
    Window* const dialog = FindDialog(handle);
    if (dialog == nullptr)
        return FALSE;
    DialogState& state = *dialog->dialog;
    state.ended = true;
    state.result = result;
    if (state.hasDisabledOwner)
        SetEnabled(*dialog->parent, true);
    state.hasDisabledOwner = false;
    SetVisible(*dialog, false);
    return TRUE;
}
