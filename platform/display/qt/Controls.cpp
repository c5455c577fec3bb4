// SPDX-License-Identifier: MIT
#include "platform/display/qt/Controls.h"

#include "platform/dialogs/UserInput.h"
#include "platform/display/qt/DialogLayout.h"
#include "platform/display/qt/TextArea.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QTextBlock>
#include <QValidator>
#include <QTextDocument>

namespace platform
{

namespace
{

// Qt's button draws its caption on one line.
class WrappingButton final : public QPushButton
{
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QStylePainter painter(this);
        QStyleOptionButton option;
        initStyleOption(&option);
        painter.drawControl(QStyle::CE_PushButtonBevel, option);
        const QRect inside = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this);
        painter.drawItemText(inside, Qt::AlignCenter | Qt::TextWordWrap | Qt::TextShowMnemonic, palette(),
                             isEnabled(), text(), QPalette::ButtonText);
    }
};

template <typename Widget>
Widget& WidgetOf(const Window& control)
{
    return *static_cast<Widget*>(static_cast<QWidget*>(control.shown));
}

// An edit keeps "\r\n" where a document of Qt's keeps one separator: where `position` lies in the latter.
int DocumentPosition(const std::wstring& text, std::size_t position)
{
    return static_cast<int>(ToQString(text.substr(0, position)).remove(u'\r').size());
}

// Costs what the added part costs. A selection stays what the person made it, even where it reaches the end,
// and the place that is seen stays: only the program scrolls.
void AppendText(QPlainTextEdit& edit, const QString& added)
{
    const int column = edit.horizontalScrollBar()->value();
    const int line = edit.verticalScrollBar()->value();
    const QTextCursor before = edit.textCursor();
    const int anchor = before.anchor();
    const int position = before.position();
    QTextCursor end(edit.document());
    end.movePosition(QTextCursor::End);
    const bool moves = before.hasSelection() && std::max(anchor, position) == end.position();
    end.insertText(added);
    if (moves)
    {
        QTextCursor restored(edit.document());
        restored.setPosition(anchor);
        restored.setPosition(position, QTextCursor::KeepAnchor);
        edit.setTextCursor(restored);
    }
    edit.horizontalScrollBar()->setValue(column);
    edit.verticalScrollBar()->setValue(line);
}

void RefreshText(const Window& control)
{
    const QString text = ToQString(control.text);
    switch (control.kind)
    {
    case WindowKind::PushButton:
    case WindowKind::CheckBox:
        return WidgetOf<QAbstractButton>(control).setText(text);
    case WindowKind::Label:
        return WidgetOf<QLabel>(control).setText(text);
    case WindowKind::Edit:
        if (IsMultiLine(control))
            return WidgetOf<QPlainTextEdit>(control).setPlainText(text);
        return WidgetOf<QLineEdit>(control).setText(text);
    default:
        return;
    }
}

void RefreshAppended(const Window& control, std::size_t oldLength)
{
    const bool splitsLineEnd = oldLength > 0 && control.text[oldLength - 1] == L'\r';
    if (!IsMultiLine(control) || splitsLineEnd)
        return RefreshText(control);
    AppendText(WidgetOf<QPlainTextEdit>(control),
               QString::fromWCharArray(control.text.data() + oldLength,
                                       static_cast<qsizetype>(control.text.size() - oldLength)));
}

void RefreshItems(const Window& control)
{
    auto& box = WidgetOf<QComboBox>(control);
    box.clear();
    for (const ComboItem& item : control.items)
        box.addItem(ToQString(item.text));
    box.setCurrentIndex(control.selection);
}

void RefreshSelection(const Window& control)
{
    if (control.kind == WindowKind::ComboBox)
        return WidgetOf<QComboBox>(control).setCurrentIndex(control.selection);
    const int start = DocumentPosition(control.text, control.selectionStart);
    const int end = DocumentPosition(control.text, control.selectionEnd);
    if (!IsMultiLine(control))
        return WidgetOf<QLineEdit>(control).setSelection(start, end - start);
    auto& edit = WidgetOf<QPlainTextEdit>(control);
    QTextCursor cursor(edit.document());
    cursor.setPosition(start);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    edit.setTextCursor(cursor);
}

QWidget* MakeButton(Window& control, QWidget& parent)
{
    auto* button =
        (control.style & BS_MULTILINE) != 0 ? new WrappingButton(&parent) : new QPushButton(&parent);
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, [&control] { UserClicked(control); });
    return button;
}

QWidget* MakeCheckBox(Window& control, QWidget& parent)
{
    auto* box = new QCheckBox(&parent);
    QObject::connect(box, &QCheckBox::clicked,
                     [&control, box]
                     {
                         UserClicked(control);
                         box->setChecked(control.check == BST_CHECKED); // the layer has the word
                     });
    return box;
}

// A box of several lines has both scroll bars, wraps nothing and cannot be edited in any dialog.
QWidget* MakeTextArea(const Window& control, QWidget& parent)
{
    auto* edit = new TextArea(control, parent);
    edit->setReadOnly(true);
    // Qt would leave it to the mouse alone.
    edit->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    edit->setUndoRedoEnabled(false);
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    edit->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    edit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    QPalette palette; // a text that cannot be edited lies on the dialog's own colour
    palette.setColor(QPalette::Base, palette.color(QPalette::Window));
    edit->setPalette(palette);
    return edit;
}

// A box of one line takes pasted text up to its first line end, as on Windows. The caret then stands after
// what was pasted.
class FirstLine : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString& text, int& caret) const override
    {
        const auto pasted = QStringView(text).first(caret);
        const auto end = std::ranges::find_if(pasted, [](QChar c) { return c == u'\r' || c == u'\n'; });
        const auto firstLine = static_cast<int>(end - pasted.begin());
        text.remove(firstLine, caret - firstLine);
        caret = firstLine;
        return Acceptable;
    }
};

QWidget* MakeLineEdit(Window& control, QWidget& parent)
{
    auto* edit = new QLineEdit(&parent);
    edit->setMaxLength(INT_MAX); // what the program sets has no limit
    edit->setValidator(new FirstLine(edit));
    QObject::connect(edit, &QLineEdit::textEdited,
                     [&control](const QString& text) { UserTyped(control, text.toStdWString()); });
    return edit;
}

QWidget* MakeComboBox(Window& control, QWidget& parent)
{
    auto* box = new QComboBox(&parent);
    QObject::connect(box, &QComboBox::activated, [&control](int index) { UserSelected(control, index); });
    return box;
}

QWidget* MakeLabel(QWidget& parent)
{
    auto* label = new QLabel(&parent);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

QWidget* MakeBareControl(Window& control, QWidget& parent)
{
    switch (control.kind)
    {
    case WindowKind::PushButton:
        return MakeButton(control, parent);
    case WindowKind::CheckBox:
        return MakeCheckBox(control, parent);
    case WindowKind::ComboBox:
        return MakeComboBox(control, parent);
    case WindowKind::Edit:
        return IsMultiLine(control) ? MakeTextArea(control, parent) : MakeLineEdit(control, parent);
    default:
        return MakeLabel(parent);
    }
}

} // namespace

QWidget* MakeControl(Window& control, QWidget& parent)
{
    QWidget* widget = MakeBareControl(control, parent);
    control.shown = widget;
    widget->setVisible(control.visible);
    for (const Change change :
         {Change::Text, Change::Items, Change::Check, Change::Selection, Change::Enabled})
        RefreshControl(control, change, 0);
    return widget;
}

void RefreshControl(const Window& control, Change change, std::size_t oldLength)
{
    auto& widget = WidgetOf<QWidget>(control);
    const QSignalBlocker quiet(widget); // only what the person does is reported
    const bool isEdit = control.kind == WindowKind::Edit;
    switch (change)
    {
    case Change::Text:
        return RefreshText(control);
    case Change::TextAppended:
        return RefreshAppended(control, oldLength);
    case Change::Check:
        if (control.kind == WindowKind::CheckBox)
            WidgetOf<QCheckBox>(control).setChecked(control.check == BST_CHECKED);
        return;
    case Change::Items:
        if (control.kind == WindowKind::ComboBox)
            RefreshItems(control);
        return;
    case Change::Selection:
        if (isEdit || control.kind == WindowKind::ComboBox)
            RefreshSelection(control);
        return;
    case Change::Enabled:
        // Nothing has the keyboard then; Qt would give it to the next control.
        if (!control.enabled && widget.window()->focusWidget() == &widget)
            widget.window()->setFocus();
        return widget.setEnabled(control.enabled);
    default:
        return;
    }
}

void ScrollControl(const Window& edit, long lines)
{
    if (!IsMultiLine(edit))
        return;
    // All lines are more rows where they are wrapped.
    QScrollBar& bar = *WidgetOf<QPlainTextEdit>(edit).verticalScrollBar();
    const bool isToTheEnd = lines >= static_cast<long>(edit.lineCount);
    bar.setValue(isToTheEnd ? bar.maximum() : static_cast<int>(bar.value() + lines));
}

} // namespace platform
