// SPDX-License-Identifier: MIT
#include "base/Deadline.h"
#include "platform/display/qt/Application.h"
#include "platform/display/qt/Controls.h"
#include "platform/display/qt/DialogWidget.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QTimer>

#include <map>

namespace platform
{

namespace
{

DialogWidget* WidgetOf(const Window& dialog)
{
    return static_cast<DialogWidget*>(static_cast<QWidget*>(dialog.shown));
}

// How often a growing text is drawn. A burst of lines is drawn line by line, so that what the program says
// before it turns to something long is there to read. In a flood drawing would take most of the time; it then
// is done a few times a second, which still shows a person that lines run by.
class DrawingBudget
{
public:
    bool Take()
    {
        const auto now = Clock::now();
        const std::chrono::duration<double> passed = now - mLast;
        mLast = now;
        mLeft = std::min(kBurst, mLeft + passed.count() * kPerSecond);
        if (mLeft < 1.0)
            return false;
        mLeft -= 1.0;
        return true;
    }

private:
    static constexpr double kBurst = 200.0;
    static constexpr double kPerSecond = 20.0;

    double mLeft = kBurst;
    Clock::time_point mLast = Clock::now();
};

// Widgets are made when a dialog is first shown; what happens to it before then lies in its windows.
class QtDisplay final : public Display
{
public:
    explicit QtDisplay(std::unique_ptr<QApplication> application)
        : mApplication(std::move(application)), mDispatcher(*QAbstractEventDispatcher::instance())
    {
        mTimeUp.setSingleShot(true);
        mTimeUp.setTimerType(Qt::PreciseTimer);
    }

    void Show(Window& dialog) override
    {
        DialogWidget* widget = dialog.shown ? WidgetOf(dialog) : new DialogWidget(dialog);
        widget->Open();
        if (Window* focus = dialog.dialog->focus)
            Focus(*focus);
        for (const auto& control : dialog.children)
            if (const auto waiting = mScrolled.extract(control.get()))
                ScrollControl(*control, waiting.mapped());
    }

    void Hide(Window& dialog) override
    {
        if (DialogWidget* widget = WidgetOf(dialog))
            widget->Close();
    }

    void Forget(Window& dialog) override
    {
        for (const auto& control : dialog.children)
        {
            mScrolled.erase(control.get());
            if (mHeldBack == control->shown)
                mHeldBack = nullptr;
            control->shown = nullptr;
        }
        delete WidgetOf(dialog);
        dialog.shown = nullptr;
    }

    void Refresh(Window& window, Change change, std::size_t oldLength) override
    {
        if (!window.shown)
            return;
        if (window.dialog)
            return WidgetOf(window)->RefreshDialog(change);
        if (change == Change::TextAppended)
            HoldBack(*static_cast<QWidget*>(window.shown));
        RefreshControl(window, change, oldLength);
    }

    void Focus(Window& control) override
    {
        if (control.shown)
            static_cast<QWidget*>(control.shown)->setFocus(Qt::OtherFocusReason);
    }

    void ScrollLines(Window& edit, long lines) override
    {
        if (edit.shown)
            ScrollControl(edit, lines);
        else
            mScrolled[&edit] += lines;
    }

    void Update(Window& dialog) override
    {
        if (!dialog.shown)
            return;
        if (mHeldBack && mDrawing.Take())
            LetDraw();
        QCoreApplication::sendPostedEvents(WidgetOf(dialog), QEvent::UpdateRequest);
    }

    void Wait(std::chrono::milliseconds time) override
    {
        const KeptLocale locale;
        if (mHeldBack && (time.count() != 0 || mDrawing.Take()))
            LetDraw();
        if (time.count() == 0)
            return QCoreApplication::processEvents(QEventLoop::AllEvents, kLongestTurn);
        if (time > time.zero())
            mTimeUp.start(time);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        mTimeUp.stop();
    }

    void Wake() override { mDispatcher.wakeUp(); }

private:
    static constexpr int kLongestTurn = 50; // milliseconds

    void HoldBack(QWidget& edit)
    {
        if (mHeldBack != &edit)
            LetDraw();
        mHeldBack = &edit;
        edit.setUpdatesEnabled(false);
    }

    void LetDraw()
    {
        if (mHeldBack)
            mHeldBack->setUpdatesEnabled(true);
        mHeldBack = nullptr;
    }

    std::unique_ptr<QApplication> mApplication;
    QAbstractEventDispatcher& mDispatcher;
    QTimer mTimeUp;
    DrawingBudget mDrawing;
    QWidget* mHeldBack = nullptr;            // an edit whose added text is not drawn yet
    std::map<const Window*, long> mScrolled; // edits that were scrolled before they were first shown
};

} // namespace

// See platform/display/ChooseDisplay.cpp.
extern "C" __attribute__((visibility("default"))) Display* tavo_make_display()
{
    std::unique_ptr<QApplication> application = MakeApplication();
    return application ? new QtDisplay(std::move(application)) : nullptr;
}

} // namespace platform
