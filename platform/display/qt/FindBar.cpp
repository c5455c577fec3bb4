// SPDX-License-Identifier: MIT
#include "platform/display/qt/FindBar.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace platform
{

FindBar::FindBar(QPlainTextEdit& text)
    : QFrame(&text), mText(text), mWanted(new QLineEdit(this)), mAnswer(new QLabel(this))
{
    auto* const label = new QLabel("Find:", this);
    label->setBuddy(mWanted);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->addWidget(label);
    layout->addWidget(mWanted, 1);
    layout->addWidget(mAnswer);
    setAutoFillBackground(true);
    hide();
}

void FindBar::Open()
{
    const QString selected = mText.textCursor().selectedText();
    if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator))
        mWanted->setText(selected);
    Say({});
    show();
    mWanted->setFocus();
    mWanted->selectAll();
}

void FindBar::Find(QTextDocument::FindFlags direction)
{
    const QString wanted = mWanted->text();
    if (wanted.isEmpty())
        return Open();
    const bool isBackwards = direction.testFlag(QTextDocument::FindBackward);
    QTextCursor found = mText.document()->find(wanted, mText.textCursor(), direction);
    const bool goesOn = found.isNull();
    if (goesOn)
    {
        QTextCursor otherEnd(mText.document());
        otherEnd.movePosition(isBackwards ? QTextCursor::End : QTextCursor::Start);
        found = mText.document()->find(wanted, otherEnd, direction);
    }
    if (found.isNull())
    {
        show();
        return Say("Not found");
    }
    mText.setTextCursor(found);
    Say(!goesOn ? "" : isBackwards ? "Went on from the end" : "Went on from the start");
}

void FindBar::Say(const QString& answer)
{
    mAnswer->setText(answer);
    mWanted->setAccessibleDescription(answer);
    QAccessibleEvent event(mWanted, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
}

void FindBar::keyPressEvent(QKeyEvent* event)
{
    switch (event->key())
    {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Find(event->modifiers().testFlag(Qt::ShiftModifier) ? QTextDocument::FindBackward
                                                            : QTextDocument::FindFlags());
        break;
    case Qt::Key_Escape:
        hide();
        mText.setFocus();
        break;
    default:
        break;
    }
    event->accept();
}

} // namespace platform
