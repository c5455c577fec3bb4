// SPDX-License-Identifier: MIT
#include "platform/dialogs/DialogLoop.h"

#include "platform/dialogs/Controls.h"
#include "platform/dialogs/WindowTable.h"
#include "platform/kernel/Error.h"
#include "platform/resource/Resources.h"

namespace platform
{

namespace
{

// Takes the dialog away again on every way out, so that a fault in a handler leaves no dead window.
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

void RunLoop(Window& dialog, Deadline deadline)
{
    while (!dialog.dialog->ended)
    {
        MSG message;
        if (TheQueue().Next(message, true))
        {
            if (!IsDialogMessageW(dialog.handle, &message))
                DispatchMessageW(&message);
        }
        else if (Clock::now() >= deadline)
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
    RunLoop(dialog, run.deadline);
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
        PostCancel(dialog);
        return 0;
    case WM_PAINT:
        state.needsPaint = false;
        return 0;
    case WM_SETICON:
        state.icon = reinterpret_cast<HICON>(lParam);
        TheDisplay().Refresh(dialog, Change::Icon, 0);
        return 0;
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
    if (!StartWindows())
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return -1;
    }
    return RunModal(std::move(dialog), {owner, procedure, parameter});
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
