// SPDX-License-Identifier: MIT
// A person at a dialog on Qt's display.
#pragma once

#include "platform/display/Display.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QTimer>

#include <functional>
#include <string>
#include <vector>

// Takes one step after the other while the program waits for input and the dialog on top has the keyboard. A
// dialog in which there is nothing to do for a while is ended with kLeftOpen.
class Person
{
public:
    using Step = std::function<void()>;

    explicit Person(std::vector<Step> steps);

private:
    void Act();

    std::vector<Step> mSteps;
    std::size_t mNext = 0;
    int mIdleTurns = 0;
    QTimer mTimer;
};

constexpr int kLeftOpen = -2;

// Shows a dialog of Tavo.rc to a person. Each of its push buttons ends it with the button's id, and so do
// IDOK and IDCANCEL where it has no such button. `owner` may be null.
int Use(int dialogId, std::vector<Person::Step> steps, HWND owner = nullptr);

// Of the dialog on top.
QWidget& TopWidget();
QWidget& WidgetOf(int id);
template <typename Widget>
Widget& WidgetOf(int id)
{
    return dynamic_cast<Widget&>(WidgetOf(id));
}
HWND ControlOf(int id);
std::wstring TextOf(int id);

// Presses a key where the keyboard is.
void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
