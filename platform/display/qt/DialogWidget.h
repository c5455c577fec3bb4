// SPDX-License-Identifier: MIT
// The window that shows one dialog or message box.
#pragma once

#include "platform/dialogs/Display.h"
#include "platform/display/qt/DialogLayout.h"

#include <QWidget>

namespace platform
{

class DialogWidget final : public QWidget
{
public:
    // Shows nothing yet. The dialog's `shown` and those of its controls point to the widgets.
    explicit DialogWidget(Window& dialog);

    // On top of its owner, with the keyboard; the other dialogs take no input while it is there.
    void Open();
    void Close();

    void RefreshDialog(Change change);
    bool IsMessageBox() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void LayOutByTemplate();
    void PlaceControls();
    void LayOutMessageBox();
    QWidget* MakeWatchedControl(Window& control);
    Window* ControlOf(const QObject* widget) const;
    bool HandleKey(const QKeyEvent& event);
    QPoint CenteredPosition() const;

    Window& mDialog;
    DialogUnits mUnits; // of a dialog with a template
};

} // namespace platform
