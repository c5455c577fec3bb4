// SPDX-License-Identifier: MIT
#include "platform/display/qt/DialogWidget.h"

#include "platform/dialogs/UserInput.h"
#include "platform/display/LabelOf.h"
#include "platform/display/qt/Controls.h"
#include "platform/display/qt/DialogLayout.h"
#include "platform/display/qt/Icons.h"

#include <QAccessibleWidget>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>
#include <QWindow>

#include <algorithm>

namespace platform
{

namespace
{

constexpr int kMessageWidth = 480; // pixels, beyond which a message box breaks its lines

DialogWidget* ShownOwner(const Window& dialog)
{
    return dialog.parent ? static_cast<DialogWidget*>(static_cast<QWidget*>(dialog.parent->shown)) : nullptr;
}

bool HasCloseBox(const Window& dialog)
{
    return (dialog.style & WS_SYSMENU) != 0;
}

Qt::WindowFlags FlagsOf(const Window& dialog)
{
    const bool onTaskBar = (dialog.extendedStyle & WS_EX_APPWINDOW) != 0;
    Qt::WindowFlags flags = (onTaskBar ? Qt::Window : Qt::Dialog) | Qt::CustomizeWindowHint;
    flags.setFlag(Qt::WindowTitleHint, (dialog.style & WS_CAPTION) == WS_CAPTION);
    flags.setFlag(Qt::WindowSystemMenuHint, HasCloseBox(dialog));
    flags.setFlag(Qt::WindowCloseButtonHint, HasCloseBox(dialog));
    flags.setFlag(Qt::WindowMinimizeButtonHint, (dialog.style & WS_MINIMIZEBOX) != 0);
    return flags;
}

// What a screen reader calls the window.
QAccessibleInterface* MakeAccessible(const QString&, QObject* object)
{
    auto* const dialog = dynamic_cast<DialogWidget*>(object);
    if (dialog == nullptr)
        return nullptr;
    return new QAccessibleWidget(dialog,
                                 dialog->IsMessageBox() ? QAccessible::AlertMessage : QAccessible::Dialog);
}

} // namespace

DialogWidget::DialogWidget(Window& dialog) : QWidget(nullptr, FlagsOf(dialog)), mDialog(dialog)
{
    QAccessible::installFactory(MakeAccessible); // once, whoever asks
    dialog.shown = static_cast<QWidget*>(this);
    setLayoutDirection(Qt::LeftToRight); // templates say where things lie, in every language
    setFont(FontOf(dialog.dialog->font));
    setWindowModality(Qt::ApplicationModal);
    if (IsMessageBox())
        LayOutMessageBox();
    else
        LayOutByTemplate();
    for (const Change change : {Change::Text, Change::Icon})
        RefreshDialog(change);
    for (const auto& control : dialog.children)
        if (control->kind == WindowKind::PushButton)
            static_cast<QPushButton*>(static_cast<QWidget*>(control->shown))
                ->setDefault(control->id == dialog.dialog->defaultButton);
}

QWidget* DialogWidget::MakeWatchedControl(Window& control)
{
    QWidget* widget = MakeControl(control, *this);
    widget->installEventFilter(this);
    return widget;
}

void DialogWidget::LayOutByTemplate()
{
    mUnits = UnitsOf(mDialog);
    for (const auto& control : mDialog.children)
        MakeWatchedControl(*control);
    setMinimumSize(mUnits.ToPixels(mDialog.rect).size());
    // More height is of use to a box of several lines alone.
    if (std::ranges::none_of(mDialog.children, [](const auto& control) { return IsMultiLine(*control); }))
        setMaximumHeight(minimumHeight());
    resize(minimumSize());
    PlaceControls();
    for (const auto& control : mDialog.children)
        if (const Window* label = LabelOf(*control)) // names the box for screen readers, too
            static_cast<QLabel*>(static_cast<QWidget*>(label->shown))
                ->setBuddy(static_cast<QWidget*>(control->shown));
        else if (control->kind == WindowKind::Edit)
            static_cast<QWidget*>(control->shown)->setAccessibleName(ToQString(mDialog.text));
}

void DialogWidget::PlaceControls()
{
    for (const auto& control : mDialog.children)
    {
        QRect place = PlaceOf(*control, mUnits, size() - minimumSize());
        auto* const widget = static_cast<QWidget*>(control->shown);
        if (control->kind == WindowKind::ComboBox) // the template's height is that of the open list
            place.setHeight(std::min(place.height(), widget->sizeHint().height()));
        widget->setGeometry(place);
    }
    mDialog.dialog->pixelWidth = width();
    mDialog.dialog->pixelHeight = height();
}

void DialogWidget::LayOutMessageBox()
{
    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(12);
    auto* message = new QHBoxLayout;
    auto* buttons = new QHBoxLayout;
    layout->addLayout(message);
    layout->addLayout(buttons);
    message->setSpacing(12);
    buttons->addStretch();

    if ((mDialog.dialog->messageBoxType & MB_ICONMASK) == MB_ICONEXCLAMATION)
    {
        auto* icon = new QLabel(this);
        icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(32));
        message->addWidget(icon, 0, Qt::AlignTop);
    }
    for (const auto& control : mDialog.children)
    {
        QWidget* widget = MakeWatchedControl(*control);
        if (control->kind != WindowKind::Label)
        {
            buttons->addWidget(widget);
            continue;
        }
        auto* label = static_cast<QLabel*>(widget);
        const QRect widest(0, 0, kMessageWidth, 0);
        const QRect needed = label->fontMetrics().boundingRect(widest, Qt::TextWordWrap, label->text());
        label->setWordWrap(true);
        label->setMinimumSize(needed.size() + QSize(2, 2));
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        message->addWidget(label, 1, Qt::AlignVCenter);
        setAccessibleDescription(label->text());
    }
}

bool DialogWidget::IsMessageBox() const
{
    return mDialog.dialog->isMessageBox;
}

QPoint DialogWidget::CenteredPosition() const
{
    const DialogWidget* owner = ShownOwner(mDialog);
    const QRect around = owner && owner->isVisible() ? owner->geometry() : screen()->availableGeometry();
    QRect place({0, 0}, size());
    place.moveCenter(around.center());
    return place.topLeft();
}

void DialogWidget::Open()
{
    if (DialogWidget* owner = ShownOwner(mDialog))
    {
        winId(); // makes the native window, which Qt does not do before it shows it
        owner->winId();
        windowHandle()->setTransientParent(owner->windowHandle());
    }
    if (IsMessageBox())
        adjustSize();
    move(CenteredPosition());
    show();
    activateWindow();
}

void DialogWidget::Close()
{
    hide();
    DialogWidget* owner = ShownOwner(mDialog);
    if (owner && owner->isVisible())
        owner->activateWindow();
}

void DialogWidget::RefreshDialog(Change change)
{
    switch (change)
    {
    case Change::Text:
        return setWindowTitle(ToQString(mDialog.text));
    case Change::Icon:
        return setWindowIcon(ToQIcon(mDialog.dialog->icon));
    default: // Enabled: modality keeps the person out.
        return;
    }
}

Window* DialogWidget::ControlOf(const QObject* widget) const
{
    for (const auto& control : mDialog.children)
        if (static_cast<QWidget*>(control->shown) == widget)
            return control.get();
    return nullptr;
}

bool DialogWidget::HandleKey(const QKeyEvent& event)
{
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    switch (event.key())
    {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        UserPressed(mDialog, VK_RETURN);
        return true;
    case Qt::Key_Escape:
        UserPressed(mDialog, VK_ESCAPE);
        return true;
    default:
        return false;
    }
}

// Widgets would keep Enter and Esc to themselves.
bool DialogWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress)
        return HandleKey(static_cast<QKeyEvent&>(*event));
    if (event->type() == QEvent::FocusIn)
        if (Window* control = ControlOf(watched))
            UserFocused(*control);
    return false;
}

void DialogWidget::keyPressEvent(QKeyEvent* event)
{
    if (!HandleKey(*event))
        QWidget::keyPressEvent(event);
}

void DialogWidget::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        UserMinimized(mDialog, isMinimized());
}

void DialogWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (!IsMessageBox())
        PlaceControls();
}

// The window goes when the dialog ends. Some window managers have a way to close every window: it does what
// Esc does, whether the template has a close box or not.
void DialogWidget::closeEvent(QCloseEvent* event)
{
    event->ignore();
    UserClosed(mDialog);
}

} // namespace platform
