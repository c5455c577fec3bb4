// SPDX-License-Identifier: MIT
#include "platform/window/Desk.h"
#include "platform/kernel/Error.h"

#include "platform/window/Controls.h"
#include "platform/window/Dialogs.h"

#include <algorithm>
#include <atomic>
#include <ranges>
#include <thread>
#include <unordered_map>
#include <utility>

namespace platform
{

namespace
{

struct Desk
{
    std::mutex handlesMutex; // for the map's changes, and for other threads' looks at it
    std::unordered_map<HWND, Window*> handles;
    std::uintptr_t lastHandle = 0x10000;

    std::vector<std::unique_ptr<Window>> dialogs; // oldest first
    std::unique_ptr<Display> display;
    MessageQueue queue;
    int depth = 0;
    std::atomic<std::thread::id> thread{};
};

// Never destroyed: other threads may post until the process is gone.
Desk& TheDesk()
{
    static Desk& desk = *new Desk;
    return desk;
}

DisplayKind gDisplayKind = DisplayKind::Automatic;

void GiveHandle(Window& window)
{
    Desk& desk = TheDesk();
    desk.lastHandle += 2;
    window.handle = reinterpret_cast<HWND>(desk.lastHandle);
    desk.handles.emplace(window.handle, &window);
}

class DepthCount
{
public:
    DepthCount() { ++TheDesk().depth; }
    ~DepthCount() { --TheDesk().depth; }
    DepthCount(const DepthCount&) = delete;
    DepthCount& operator=(const DepthCount&) = delete;
};

} // namespace

bool UseDisplay(DisplayKind kind)
{
    if (TheDesk().display != nullptr)
        return kind == gDisplayKind;
    std::unique_ptr<Display> display = MakeDisplay(kind);
    if (display == nullptr)
        return false;
    gDisplayKind = kind;
    Desk& desk = TheDesk();
    desk.thread = std::this_thread::get_id();
    desk.display = std::move(display);
    desk.queue.WaitIn(*desk.display);
    return true;
}

bool IsWindowsThread()
{
    return TheDesk().thread.load() == std::this_thread::get_id();
}

bool OpenDesk()
{
    std::thread::id nobody{};
    return TheDesk().thread.compare_exchange_strong(nobody, std::this_thread::get_id())
               ? UseDisplay(DisplayKind::Automatic)
               : IsWindowsThread();
}

Display& TheDisplay()
{
    return *TheDesk().display;
}

MessageQueue& TheQueue()
{
    return TheDesk().queue;
}

Window* FindWindow(HWND handle)
{
    if (IsWindowsThread())
    {
        const auto& handles = TheDesk().handles;
        const auto found = handles.find(handle);
        if (found != handles.end())
            return found->second;
    }
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
}

Window* FindDialog(HWND handle)
{
    Window* const window = FindWindow(handle);
    return window != nullptr && window->dialog ? window : nullptr;
}

HWND HandleOf(const Window* window)
{
    return window != nullptr ? window->handle : nullptr;
}

bool PostTo(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Desk& desk = TheDesk();
    const std::lock_guard lock(desk.handlesMutex);
    if (!desk.handles.contains(handle))
        return false;
    desk.queue.Post(handle, message, wParam, lParam);
    return true;
}

Window& AddDialog(std::unique_ptr<Window> dialog)
{
    Desk& desk = TheDesk();
    Window& added = *desk.dialogs.emplace_back(std::move(dialog));
    added.dialog->depth = desk.depth;
    const std::lock_guard lock(desk.handlesMutex);
    GiveHandle(added);
    for (const auto& control : added.children)
        GiveHandle(*control);
    return added;
}

void RemoveDialog(Window& dialog)
{
    Desk& desk = TheDesk();
    desk.display->Forget(dialog);
    {
        const std::lock_guard lock(desk.handlesMutex);
        desk.handles.erase(dialog.handle);
        for (const auto& control : dialog.children)
            desk.handles.erase(control->handle);
    }
    desk.queue.Drop(dialog.handle);
    for (const auto& control : dialog.children)
        desk.queue.Drop(control->handle);
    std::erase_if(desk.dialogs, [&](const auto& other) { return other.get() == &dialog; });
}

Window* TopDialog()
{
    const auto& dialogs = TheDesk().dialogs;
    return dialogs.empty() ? nullptr : dialogs.back().get();
}

LRESULT Call(Window& window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const DepthCount count;
    return window.dialog ? ServeDialog(window, message, wParam, lParam)
                         : ServeControl(window, message, wParam, lParam);
}

int HandlerDepth()
{
    return TheDesk().depth;
}

bool CanTakeInput(const MSG& message)
{
    Window* const window = FindWindow(message.hwnd);
    if (window == nullptr)
        return false;
    if (message.message != BM_CLICK)
        return DialogOf(*window).visible && DialogOf(*window).enabled;
    if (IsUsable(*window))
        return true;
    // The display may have ticked the box already.
    TheDisplay().Refresh(*window, Change::Check, 0);
    return false;
}

HWND FindUnpainted()
{
    for (const auto& dialog : TheDesk().dialogs)
        if (dialog->visible && dialog->dialog->needsPaint)
            return dialog->handle;
    return nullptr;
}

bool CancelTopDialog()
{
    Window* const top = TopDialog();
    if (top == nullptr || !top->visible || !top->enabled || HandlerDepth() > top->dialog->depth)
        return false;
    if (top->dialog->canceled)
        return EndDialog(top->handle, IDCANCEL) != FALSE;
    top->dialog->canceled = true;
    const UINT id = top->dialog->isMessageBox ? AnswerOfNobody(*top) : IDCANCEL;
    return PostTo(top->handle, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                  reinterpret_cast<LPARAM>(HandleOf(FindControl(*top, id))));
}

void SetVisible(Window& dialog, bool visible)
{
    if (dialog.visible == visible)
        return;
    dialog.visible = visible;
    dialog.dialog->needsPaint = visible;
    if (visible)
        TheDisplay().Show(dialog);
    else
        TheDisplay().Hide(dialog);
}

void SetEnabled(Window& window, bool enabled)
{
    if (window.enabled == enabled)
        return;
    window.enabled = enabled;
    Window& dialog = DialogOf(window);
    if (!enabled && dialog.dialog->focus == &window)
        dialog.dialog->focus = nullptr;
    TheDisplay().Refresh(window, Change::Enabled, 0);
}

void SetFocusTo(Window& control)
{
    Window& dialog = DialogOf(control);
    if (dialog.dialog->focus == &control)
        return;
    dialog.dialog->focus = &control;
    TheDisplay().Focus(control);
}

Window* FindControl(const Window& dialog, UINT id)
{
    const auto found =
        std::ranges::find(dialog.children, id, [](const auto& control) { return control->id; });
    return found == dialog.children.end() ? nullptr : found->get();
}

Window* FirstTabStop(const Window& dialog)
{
    const auto found = std::ranges::find_if(
        dialog.children, [](const auto& control)
        { return (control->style & WS_TABSTOP) != 0 && control->visible && control->enabled; });
    return found == dialog.children.end() ? nullptr : found->get();
}

void UserClicked(Window& button)
{
    TheQueue().AddInput(button.handle, BM_CLICK, 0, 0);
}

void UserTyped(Window& edit, std::wstring wholeText)
{
    if (edit.textLimit != 0 && wholeText.size() > edit.textLimit)
        wholeText.resize(edit.textLimit);
    SetEditText(edit, std::move(wholeText));
    edit.selectionStart = edit.selectionEnd = edit.text.size();
}

void UserSelected(Window& comboBox, int index)
{
    comboBox.selection = index;
}

void UserFocused(Window& control)
{
    DialogOf(control).dialog->focus = &control;
}

void UserPressed(Window& dialog, WORD key)
{
    const Window* const focus = dialog.dialog->focus;
    TheQueue().AddInput(HandleOf(focus != nullptr ? focus : &dialog), WM_KEYDOWN, key, 0);
}

void UserClosed(Window& dialog)
{
    TheQueue().AddInput(dialog.handle, WM_CLOSE, 0, 0);
}

void UserMinimized(Window& dialog, bool iconic)
{
    dialog.dialog->iconic = iconic;
    dialog.dialog->needsPaint = dialog.visible;
}

} // namespace platform
