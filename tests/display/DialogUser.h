// SPDX-License-Identifier: MIT
// A person at a dialog on Qt's display.
#pragma once

#include "platform/dialogs/Display.h"
#include "tests/support/WindowProbe.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <vector>

// Takes one step after the other while the program waits for input and the dialog on top has the keyboard. A
// dialog in which there is nothing to do for a while is ended with -2.
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

// Shows a dialog of Tavo.rc to a person. Each of its push buttons ends it with the button's id, and so do
// IDOK and IDCANCEL where it has no such button. `owner` may be null; `onInit` runs before it is shown.
int Use(
    int dialogId, std::vector<Person::Step> steps, HWND owner = nullptr, void (*onInit)() = [] {});

// Of the dialog on top.
QWidget& TopWidget();
QWidget& WidgetOf(int id);
template <typename Widget>
Widget& WidgetOf(int id)
{
    return dynamic_cast<Widget&>(WidgetOf(id));
}
HWND ControlOf(int id);

// Where the keyboard is.
void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
void Type(const char* text);
