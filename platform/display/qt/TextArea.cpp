// SPDX-License-Identifier: MIT
#include "platform/display/qt/TextArea.h"

#include "platform/display/qt/DialogLayout.h"
#include "platform/display/qt/FindBar.h"
#include "platform/display/qt/SaveText.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QDate>
#include <QDir>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QScrollBar>
#include <QSysInfo>

#include <algorithm>

namespace platform
{

namespace
{

constexpr int kSmallestFont = 6; // points
constexpr int kLargestFont = 40;

// Lets the person see the end of a text after a change of its look, where it was seen before.
class KeptEnd
{
public:
    explicit KeptEnd(const QPlainTextEdit& text)
        : mBar(*text.verticalScrollBar()), mWasAtEnd(mBar.value() == mBar.maximum())
    {
    }
    ~KeptEnd()
    {
        if (mWasAtEnd)
            mBar.setValue(mBar.maximum());
    }
    KeptEnd(const KeptEnd&) = delete;
    KeptEnd& operator=(const KeptEnd&) = delete;

private:
    QScrollBar& mBar;
    bool mWasAtEnd;
};

} // namespace

TextArea::TextArea(const Window& edit, QWidget& parent)
    : QPlainTextEdit(&parent), mEdit(edit), mMenu(new QMenu(this)), mFind(new FindBar(*this))
{
    mFind->installEventFilter(this);
    MakeMenu();
}

// The keys work wherever the keyboard is in the dialog, but not while another dialog is on top.
template <typename Handler>
QAction& TextArea::AddAction(const char* text, const QList<QKeySequence>& keys, Handler handler)
{
    QAction* const action = mMenu->addAction(text);
    action->setShortcuts(keys);
    addAction(action);
    QObject::connect(action, &QAction::triggered, this, handler);
    return *action;
}

void TextArea::MakeMenu()
{
    // The text itself takes these two keys; a box with a text of its own has them, too.
    QAction& copyAction = AddAction("&Copy", {QKeySequence::Copy}, [this] { copy(); });
    copyAction.setEnabled(false);
    QObject::connect(this, &QPlainTextEdit::copyAvailable, &copyAction, &QAction::setEnabled);
    QAction& selectAction = AddAction("Select &all", {QKeySequence::SelectAll}, [this] { selectAll(); });
    for (QAction* action : {&copyAction, &selectAction})
        action->setShortcutContext(Qt::WidgetShortcut);
    mMenu->addSeparator();
    AddAction(
        "&Find...", {QKeySequence(Qt::CTRL | Qt::Key_F)}, [this] { mFind->Open(); });
    AddAction(
        "Find &next", {QKeySequence(Qt::Key_F3)}, [this] { mFind->Find({}); });
    AddAction("Find &previous", {QKeySequence(Qt::SHIFT | Qt::Key_F3)},
              [this] { mFind->Find(QTextDocument::FindBackward); });
    mMenu->addSeparator();
    AddAction(
        "&Wrap lines", {}, [this](bool wraps) { Wrap(wraps); })
        .setCheckable(true);
    AddAction(
        "&Larger text", {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)},
        [this] { ChangeFontSize(1); });
    AddAction("S&maller text", {QKeySequence(Qt::CTRL | Qt::Key_Minus)}, [this] { ChangeFontSize(-1); });
    mMenu->addSeparator();
    AddAction("&Save as...", {QKeySequence(Qt::CTRL | Qt::Key_S)}, [this] { AskForFile(); });
}

// For a menu that the keyboard opens Qt would scroll to the caret first.
bool TextArea::event(QEvent* event)
{
    const bool isMenuKey = event->type() == QEvent::ContextMenu &&
                           static_cast<QContextMenuEvent*>(event)->reason() == QContextMenuEvent::Keyboard;
    if (!isMenuKey)
        return QPlainTextEdit::event(event);
    mMenu->popup(mapToGlobal(rect().center()));
    return true;
}

void TextArea::contextMenuEvent(QContextMenuEvent* event)
{
    mMenu->popup(event->globalPos());
}

void TextArea::Wrap(bool wraps)
{
    const KeptEnd end(*this);
    setLineWrapMode(wraps ? WidgetWidth : NoWrap);
}

void TextArea::ChangeFontSize(int points)
{
    const KeptEnd end(*this);
    QFont changed = font();
    changed.setPointSize(std::clamp(changed.pointSize() + points, kSmallestFont, kLargestFont));
    setFont(changed);
}

// Neither box may run a loop of its own: the program goes on meanwhile.
void TextArea::AskForFile()
{
    const QString name =
        "Tavo-" + QSysInfo::machineHostName() + '-' + QDate::currentDate().toString(Qt::ISODate) + ".txt";
    auto* const dialog = new QFileDialog(window(), "Save as", QDir::home().filePath(name));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(name);
    QObject::connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) { Save(path); });
    dialog->open();
}

void TextArea::Save(const QString& path)
{
    const QString error = SaveText(path, ToQString(mEdit.text).remove(u'\r'));
    if (error.isEmpty())
        return;
    auto* const box =
        new QMessageBox(QMessageBox::Warning, "Save as",
                        "The text could not be saved.\n" + path + ": " + error, QMessageBox::Ok, window());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->open();
}

void TextArea::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);
    PlaceFindBar();
}

bool TextArea::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == mFind && (event->type() == QEvent::Show || event->type() == QEvent::Hide))
    {
        const KeptEnd end(*this);
        setViewportMargins(0, 0, 0, event->type() == QEvent::Show ? mFind->sizeHint().height() : 0);
        PlaceFindBar();
    }
    return QPlainTextEdit::eventFilter(watched, event);
}

void TextArea::PlaceFindBar()
{
    const QRect text = viewport()->geometry();
    mFind->setGeometry(text.left(), text.bottom() + 1, text.width(), mFind->sizeHint().height());
}

} // namespace platform
