// SPDX-License-Identifier: MIT
#include "platform/display/qt/Application.h"

#include "platform/display/qt/DisplayServer.h"

#include <QApplication>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>

#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>

namespace platform
{

namespace
{

// The list of a combo box opens below it, and a text area with the keyboard shows that as other boxes do.
class Style final : public QProxyStyle
{
public:
    Style() : QProxyStyle(QStyleFactory::create("Fusion")) {}

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override
    {
        QProxyStyle::drawControl(element, option, painter, widget);
        const bool hasKeyboard = (option->state & State_HasFocus) != 0;
        if (element != CE_ShapedFrame || !hasKeyboard || !qobject_cast<const QPlainTextEdit*>(widget))
            return;
        painter->setPen(option->palette.color(QPalette::Highlight));
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override
    {
        return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, result);
    }
};

constexpr char kLastResort[] = "offscreen";

struct Platforms
{
    QByteArrayList mUsable;
    std::shared_ptr<void> mServer; // the connection to the first one's, where it has any
    std::string mProblem;          // why there is none, where more is known than that
};

// Of the platforms that are chosen, those from the first one on whose display server answers: Qt comes to the
// others only where it cannot load that one.
Platforms FindPlatforms()
{
    const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
    Platforms found;
    for (const QByteArray& platform : (chosen.isEmpty() ? QByteArray("xcb;wayland") : chosen).split(';'))
    {
        const std::string name = platform.split(':').first().toStdString();
        const bool hasServer = name == "xcb" || name.starts_with("wayland");
        if (!hasServer && name != kLastResort) // "eglfs" for one ends the process where it does not fit
        {
            found.mProblem = "QT_QPA_PLATFORM names \"" + name + "\", where xcb, wayland or offscreen can be";
            continue;
        }
        if (hasServer && found.mUsable.isEmpty())
            found.mServer = ConnectToServer(name, found.mProblem);
        if (!hasServer || found.mServer != nullptr || !found.mUsable.isEmpty())
            found.mUsable.append(platform);
    }
    return found;
}

// A lost X server ends the process. Qt 6.10 only asks its own loop to end, which does not run here.
void EndWithTheServer()
{
    const auto* const x = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x != nullptr && xcb_connection_has_error(x->connection()) != 0)
        std::quick_exit(EXIT_FAILURE);
}

QtMessageHandler gReport = nullptr;

// Where the Wayland server is lost, Qt says so and ends the process by _exit, which skips all that is to be
// done then.
void EndWithWayland(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    gReport(type, context, message);
    if (message.startsWith("The Wayland connection "))
        std::quick_exit(EXIT_FAILURE);
}

void IgnoreMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace

KeptLocale::~KeptLocale()
{
    if (mLocale != std::setlocale(LC_ALL, nullptr))
        std::setlocale(LC_ALL, mLocale.c_str());
}

std::unique_ptr<QApplication> MakeApplication()
{
    const KeptLocale locale;
    const Platforms found = FindPlatforms();
    if (found.mUsable.isEmpty())
    {
        if (!found.mProblem.empty())
            std::fprintf(stderr, "No windows can be shown: %s\n", found.mProblem.c_str());
        return nullptr;
    }

    // Where Qt can reach none of the platforms it is given, it ends the process. So the last one given always
    // works, and means that there is no display.
    const bool wanted = found.mUsable.first() == kLastResort;
    static QByteArray platforms = found.mUsable.join(';') + ';' + kLastResort;
    static char name[] = "Tavo";
    static char option[] = "-platform";
    static char* arguments[] = {name, option, platforms.data(), nullptr};
    static int count = 3;

    qunsetenv("QT_WAYLAND_RECONNECT");           // by which Qt would connect anew, or end without a word
    QGuiApplication::setDesktopFileName("tavo"); // by which a Wayland desktop finds the icon
    // A platform that is missing is not worth a word: the next one is taken, or the terminal.
    gReport = qInstallMessageHandler(IgnoreMessage);
    auto application = std::make_unique<QApplication>(count, arguments);
    qInstallMessageHandler(EndWithWayland);

    if (QGuiApplication::platformName() == kLastResort && !wanted)
        return nullptr;
    QApplication::setStyle(new Style);
    QApplication::setQuitOnLastWindowClosed(false);
    QObject::connect(application.get(), &QCoreApplication::aboutToQuit, EndWithTheServer);
    return application;
}

} // namespace platform
