// SPDX-License-Identifier: MIT
// The line below a text in which a person types what to find in it.
#pragma once

#include <QFrame>
#include <QTextDocument>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace platform
{

class FindBar final : public QFrame
{
public:
    // Hidden until something is to be found; lies in `text`, which owns it.
    explicit FindBar(QPlainTextEdit& text);

    // Takes the keyboard. What is selected is offered.
    void Open();

    // Selects the next place, or the one before with QTextDocument::FindBackward, and goes on at the other
    // end of the text. A miss is said in the bar and moves nothing.
    void Find(QTextDocument::FindFlags direction);

protected:
    // Enter finds, Shift+Enter backwards, Esc closes the bar. No key reaches the dialog.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Say(const QString& answer);

    QPlainTextEdit& mText;
    QLineEdit* mWanted;
    QLabel* mAnswer;
};

} // namespace platform
