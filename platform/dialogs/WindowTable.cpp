// SPDX-License-Identifier: MIT
#include "platform/dialogs/WindowTable.h"
#include "platform/kernel/Error.h"

#include "platform/dialogs/Controls.h"
#include "platform/dialogs/DialogLoop.h"

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

struct WindowTable
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
WindowTable& TheTable()
{
    static WindowTable& table = *new WindowTable;
    return table;
}

DisplayKind gDisplayKind = DisplayKind::Automatic;

void GiveHandle(Window& window)
{
    WindowTable& table = TheTable();
    table.lastHandle += 2;
    window.handle = reinterpret_cast<HWND>(table.lastHandle);
    table.handles.emplace(window.handle, &window);
}

class DepthCount
{
public:
    DepthCount() { ++TheTable().depth; }
    ~DepthCount() { --TheTable().depth; }
    DepthCount(const DepthCount&) = delete;
    DepthCount& operator=(const DepthCount&) = delete;
};

} // namespace

bool UseDisplay(DisplayKind kind)
{
    if (TheTable().display != nullptr)
        return kind == gDisplayKind;
    std::unique_ptr<Display> display = MakeDisplay(kind);
    if (display == nullptr)
        return false;
    gDisplayKind = kind;
    WindowTable& table = TheTable();
    table.thread = std::this_thread::get_id();
    table.display = std::move(display);
    table.queue.WaitIn(*table.display);
    return true;
}

bool IsWindowsThread()
{
    return TheTable().thread.load() == std::this_thread::get_id();
}

bool StartWindows()
{
    std::thread::id nobody{};
    return TheTable().thread.compare_exchange_strong(nobody, std::this_thread::get_id())
               ? UseDisplay(DisplayKind::Automatic)
               : IsWindowsThread();
}

Display& TheDisplay()
{
    return *TheTable().display;
}

MessageQueue& TheQueue()
{
    return TheTable().queue;
}

Window* FindWindow(HWND handle)
{
    if (IsWindowsThread())
    {
        const auto& handles = TheTable().handles;
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
    WindowTable& table = TheTable();
    const std::lock_guard lock(table.handlesMutex);
    if (!table.handles.contains(handle))
        return false;
    table.queue.Post(handle, message, wParam, lParam);
    return true;
}

Window& AddDialog(std::unique_ptr<Window> dialog)
{
    WindowTable& table = TheTable();
    Window& added = *table.dialogs.emplace_back(std::move(dialog));
    added.dialog->depth = table.depth;
    const std::lock_guard lock(table.handlesMutex);
    GiveHandle(added);
    for (const auto& control : added.children)
        GiveHandle(*control);
    return added;
}

void RemoveDialog(Window& dialog)
{
    WindowTable& table = TheTable();
    table.display->Forget(dialog);
    {
        const std::lock_guard lock(table.handlesMutex);
        table.handles.erase(dialog.handle);
        for (const auto& control : dialog.children)
            table.handles.erase(control->handle);
    }
    std::erase_if(table.dialogs, [&](const auto& other) { return other.get() == &dialog; });
}

Window* TopDialog()
{
    const auto& dialogs = TheTable().dialogs;
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
    return TheTable().depth;
}

HWND FindUnpainted()
{
    for (const auto& dialog : TheTable().dialogs)
        if (dialog->visible && dialog->dialog->needsPaint)
            return dialog->handle;
    return nullptr;
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

} // namespace platform
