// SPDX-License-Identifier: MIT
// A person at a dialog on Qt's display.
#pragma once

#include "platform/dialogs/Display.h"
#include "tests/support/WindowProbe.h"

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <vector>

// Of the dialog on top.
inline QWidget& TopWidget()
{
    return *static_cast<QWidget*>(platform::TopDialog()->shown);
}

template <typename Widget = QWidget>
Widget& WidgetOf(int id)
{
    for (const auto& control : platform::TopDialog()->children)
        if (control->id == static_cast<UINT>(id))
            return dynamic_cast<Widget&>(*static_cast<QWidget*>(control->shown));
    throw std::out_of_range("no such control");
}

inline HWND ControlOf(int id)
{
    return GetDlgItem(platform::TopDialog()->handle, id);
}

// Where the keyboard is.
inline void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

inline void Type(const char* text)
{
    QTest::keyClicks(QApplication::focusWidget(), text);
}

using Step = std::function<void()>;

// Takes one step after the other while the program waits for input and the dialog on top has the keyboard. A
// dialog in which there is nothing to do for 5 s is ended with -2.
class Person
{
public:
    explicit Person(std::vector<Step> steps) : mSteps(std::move(steps))
    {
        QObject::connect(&mTimer, &QTimer::timeout, [this] { Act(); });
        mTimer.start(10);
    }

private:
    void Act()
    {
        const platform::Window* dialog = platform::TopDialog();
        if (dialog == nullptr || dialog->shown == nullptr)
            return;
        if (mNext < mSteps.size() && TopWidget().isActiveWindow())
        {
            mIdleTurns = 0;
            mSteps[mNext++]();
        }
        else if (++mIdleTurns > 500)
            EndDialog(dialog->handle, -2);
    }

    std::vector<Step> mSteps;
    std::size_t mNext = 0;
    int mIdleTurns = 0;
    QTimer mTimer;
};

inline INT_PTR Serve(HWND dialog, UINT message, WPARAM wParam, LPARAM onInit)
{
    if (message == WM_INITDIALOG)
        (*reinterpret_cast<const Step*>(onInit))();
    const auto isPushButton = [&](const auto& control)
    { return control->id == LOWORD(wParam) && control->kind == platform::WindowKind::PushButton; };
    if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL ||
                                  std::ranges::any_of(platform::TopDialog()->children, isPushButton)))
        EndDialog(dialog, LOWORD(wParam));
    return message == WM_INITDIALOG || message == WM_COMMAND;
}

// Shows a dialog of Tavo.rc to a person. Each of its push buttons ends it with the button's id, and so do
// IDOK and IDCANCEL where it has no such button. `owner` may be null; `onInit` runs before it is shown.
inline INT_PTR Use(
    int dialogId, std::vector<Step> steps, HWND owner = nullptr, const Step& onInit = [] {})
{
    const Person person(std::move(steps));
    return DialogBoxParamW(nullptr, MAKEINTRESOURCEW(dialogId), owner, &Serve,
                           reinterpret_cast<LPARAM>(&onInit));
}
