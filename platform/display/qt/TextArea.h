// SPDX-License-Identifier: MIT
// The widget of a read-only box of several lines, the console's text: it has a menu and keys to copy, find,
// wrap, save and enlarge what it holds. Nothing of that reaches the program, nor stops it.
#pragma once

#include "platform/dialogs/Window.h"

#include <QKeySequence>
#include <QPlainTextEdit>

class QMenu;

namespace platform
{

class FindBar;

class TextArea final : public QPlainTextEdit
{
public:
    TextArea(const Window& edit, QWidget& parent);

protected:
    bool event(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    template <typename Handler>
    QAction& AddAction(const char* text, const QList<QKeySequence>& keys, Handler handler);
    void MakeMenu();
    void PlaceFindBar();
    void Wrap(bool wraps);
    void ChangeFontSize(int points);
    void AskForFile();
    void Save(const QString& path);

    const Window& mEdit;
    QMenu* mMenu;
    FindBar* mFind;
};

} // namespace platform
