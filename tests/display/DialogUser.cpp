// SPDX-License-Identifier: MIT
#include "tests/display/DialogUser.h"

#include <QApplication>
#include <QTest>

namespace
{

constexpr int kBetweenSteps = 10; // milliseconds
constexpr int kPatience = 500;    // steps

INT_PTR Serve(HWND dialog, UINT message, WPARAM wParam, LPARAM onInit)
{
    if (message == WM_INITDIALOG)
        reinterpret_cast<void (*)()>(onInit)();
    const auto& window = *platform::TopDialog();
    const auto isPushButton = [&](const auto& control)
    { return control->id == LOWORD(wParam) && control->kind == platform::WindowKind::PushButton; };
    const bool ends = LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL ||
                      std::ranges::any_of(window.children, isPushButton);
    if (message == WM_COMMAND && ends)
        EndDialog(dialog, LOWORD(wParam));
    return message == WM_INITDIALOG || message == WM_COMMAND;
}

} // namespace

Person::Person(std::vector<Step> steps) : mSteps(std::move(steps))
{
    QObject::connect(&mTimer, &QTimer::timeout, [this] { Act(); });
    mTimer.start(kBetweenSteps);
}

void Person::Act()
{
    const platform::Window* dialog = platform::TopDialog();
    if (!dialog || !dialog->shown)
        return;
    if (mNext < mSteps.size() && TopWidget().isActiveWindow())
    {
        mIdleTurns = 0;
        mSteps[mNext++]();
    }
    else if (++mIdleTurns > kPatience)
        EndDialog(dialog->handle, -2);
}

int Use(int dialogId, std::vector<Person::Step> steps, HWND owner, void (*onInit)())
{
    const Person person(std::move(steps));
    return static_cast<int>(DialogBoxParamW(nullptr, MAKEINTRESOURCEW(dialogId), owner, &Serve,
                                            reinterpret_cast<LPARAM>(onInit)));
}

QWidget& TopWidget()
{
    return *static_cast<QWidget*>(platform::TopDialog()->shown);
}

QWidget& WidgetOf(int id)
{
    for (const auto& control : platform::TopDialog()->children)
        if (control->id == static_cast<UINT>(id))
            return *static_cast<QWidget*>(control->shown);
    throw std::out_of_range("no such control");
}

HWND ControlOf(int id)
{
    return GetDlgItem(platform::TopDialog()->handle, id);
}

void Press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

void Type(const char* text)
{
    QTest::keyClicks(QApplication::focusWidget(), text);
}
