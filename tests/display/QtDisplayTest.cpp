// SPDX-License-Identifier: MIT
// What a person sees and can do on Qt's display, with the program's own dialogs and no screen.
#include "platform/dialogs/Display.h"
#include "resources/resource.h"
#include "tests/support/TestFolder.h"
#include "tests/support/WindowProbe.h"

#include <gmock/gmock.h>

#include <QTest>
#include <QtWidgets>

#include <clocale>
#include <ctime>
#include <functional>
#include <ranges>

using platform::WindowKind;

static QWidget& Shown(const platform::Window& window)
{
    return *static_cast<QWidget*>(window.shown);
}

static QWidget& TopWidget()
{
    return Shown(*platform::TopDialog());
}

template <typename Widget = QWidget>
static Widget& WidgetOf(int id)
{
    for (const auto& control : platform::TopDialog()->children)
        if (control->id == static_cast<UINT>(id))
            return dynamic_cast<Widget&>(Shown(*control));
    throw std::out_of_range("no such control");
}

static HWND ControlOf(int id)
{
    return GetDlgItem(platform::TopDialog()->handle, id);
}

// Where the keyboard is.
static void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

static void Type(const char* text)
{
    QTest::keyClicks(QApplication::focusWidget(), text);
}

using Step = std::function<void()>;

// Takes one step after the other while the dialog on top has the keyboard and has drawn what it holds. A
// dialog in which there is nothing to do for 5 s is ended with -2.
class Person
{
public:
    explicit Person(std::vector<Step> steps) : mSteps(std::move(steps))
    {
        QObject::connect(&mTimer, &QTimer::timeout, [this] { Act(); });
        mTimer.start(10);
    }
    ~Person() { EXPECT_EQ(mNext, mSteps.size()) << "steps were taken"; }

private:
    void Act()
    {
        const platform::Window* dialog = platform::TopDialog();
        if (dialog == nullptr || dialog->shown == nullptr)
            return;
        const auto logs = TopWidget().findChildren<QPlainTextEdit*>();
        const bool isDrawn = std::ranges::all_of(logs, &QWidget::updatesEnabled);
        if (mNext < mSteps.size() && isDrawn && TopWidget().isActiveWindow())
        {
            mIdleTurns = 0;
            mSteps[mNext++]();
        }
        else if (++mIdleTurns > 500)
            EndDialog(dialog->handle, -2);
    }

    std::vector<Step> mSteps;
    std::size_t mNext = 0;
    int mIdleTurns = 0;
    QTimer mTimer;
};

static INT_PTR Serve(HWND dialog, UINT message, WPARAM wParam, LPARAM onInit)
{
    if (message == WM_INITDIALOG)
        (*reinterpret_cast<const Step*>(onInit))();
    if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED && LOWORD(wParam) != IDC_WIDE_CHARS)
        EndDialog(dialog, LOWORD(wParam));
    return message == WM_INITDIALOG || message == WM_COMMAND;
}

// Shows a dialog of Tavo.rc to a person. The first button that is pressed ends it with the button's id, and
// so do IDOK and IDCANCEL where it has no such button. `owner` may be null; `onInit` runs before it is shown.
static INT_PTR Use(
    int dialogId, std::vector<Step> steps, HWND owner = nullptr, const Step& onInit = [] {})
{
    const Person person(std::move(steps));
    return DialogBoxParamW(nullptr, MAKEINTRESOURCEW(dialogId), owner, &Serve,
                           reinterpret_cast<LPARAM>(&onInit));
}

class QtDisplay : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        setenv("QT_WAYLAND_RECONNECT", "1", 1); // as some desktops do; Qt then ends without a word
        setenv("LC_ALL", "C.UTF-8", 1);         // which must not become the program's locale
        ASSERT_TRUE(platform::UseDisplay(platform::DisplayKind::Qt));
    }
    void TearDown() override { EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C"); }
};

const Step kEscape = [] { Press(Qt::Key_Escape); };

static auto VisibleControls()
{
    return platform::TopDialog()->children |
           std::views::filter([](const auto& one) { return Shown(*one).isVisible(); });
}

static void ExpectRoomForText(const platform::Window& control)
{
    const QWidget& widget = Shown(control);
    const QString text = QString::fromStdWString(control.text);
    SCOPED_TRACE(std::to_string(control.id) + " " + text.toStdString());
    const QFontMetricsF metrics(widget.font());
    EXPECT_GE(widget.height() + 0.5, metrics.height());
    const int flags = (control.style & BS_MULTILINE) != 0 ? Qt::TextWordWrap : 0;
    const QRectF room = metrics.boundingRect(QRectF(0, 0, widget.width(), 0), flags, text);
    if (control.kind != WindowKind::Edit && control.kind != WindowKind::ComboBox)
        EXPECT_GE(widget.width(), room.width());
    EXPECT_TRUE(TopWidget().rect().contains(widget.geometry()));
}

// What a screen reader says of it, and how it looks.
static std::string Described(QWidget& widget)
{
    const QAccessibleInterface& face = *QAccessible::queryAccessibleInterface(&widget);
    std::string text = QMetaEnum::fromType<QAccessible::Role>().valueToKey(face.role());
    text += " '" + face.text(QAccessible::Name).toStdString() + "'";
    const auto add = [&text](bool holds, const char* trait)
    { text += holds ? std::string(", ") + trait : ""; };
    add((widget.focusPolicy() & Qt::TabFocus) != 0, "tab");
    if (const auto* const button = qobject_cast<QPushButton*>(&widget))
        add(button->isDefault(), "default");
    if (const auto* const box = qobject_cast<QCheckBox*>(&widget))
        add(box->isChecked(), "checked");
    add(widget.palette().color(QPalette::Base) == widget.palette().color(QPalette::Window), "grey");
    return text + "\n";
}

static std::string DescribedDialog()
{
    const QWidget& top = TopWidget();
    std::string text = Described(TopWidget()) + top.windowTitle().toStdString();
    for (const auto& [flag, trait] : {std::pair(Qt::WindowTitleHint, ", title"),
                                      {Qt::WindowSystemMenuHint, ", menu"},
                                      {Qt::WindowMinimizeButtonHint, ", minimise"},
                                      {Qt::WindowCloseButtonHint, ", close"}})
        text += (top.windowFlags() & flag) != 0 ? trait : "";
    text += top.windowType() == Qt::Window ? ", on the task bar\n" : "\n";
    text += top.font().families().join(", ").toStdString() + " " + std::to_string(top.font().pointSize()) +
            (top.font().italic() ? " italic " : " ") + std::to_string(top.font().weight()) + "\n";
    for (const auto& control : VisibleControls())
        text += Described(Shown(*control));
    return text;
}

const QString kHundredLines = QString::fromStdString(Repeated("[5ms] a line\r\n", 100));

static void Append(const std::wstring& added)
{
    const HWND output = ControlOf(IDC_OUTPUT);
    SetWindowTextW(output, (TextOf(output) + added).c_str());
}

static void ShowHundredLines()
{
    SetWindowTextW(ControlOf(IDC_OUTPUT), kHundredLines.toStdWString().c_str());
    SendMessageW(ControlOf(IDC_OUTPUT), EM_LINESCROLL, 0, 101);
}

static void ExpectOutputAtItsEnd()
{
    const QScrollBar& bar = *WidgetOf<QPlainTextEdit>(IDC_OUTPUT).verticalScrollBar();
    EXPECT_EQ(bar.value(), bar.maximum());
    EXPECT_GT(bar.value(), 0);
}

TEST_F(QtDisplay, CutsNoTextAndLetsNoControlLieOnAnother)
{
    for (const int id : {IDD_CONSOLE, IDD_LDAP_CREDS, IDD_CRC64})
    {
        const Step look = []
        {
            for (const auto& one : VisibleControls())
            {
                ExpectRoomForText(*one);
                for (const auto& other : VisibleControls())
                    EXPECT_EQ(Shown(*one).geometry().intersects(Shown(*other).geometry()), one == other)
                        << one->id << " lies on " << other->id;
            }
        };
        EXPECT_EQ(Use(id, {look, kEscape}), IDCANCEL);
    }
}

// Dialog units in the template's proportions, and nothing mirrored where people write from right to left.
TEST_F(QtDisplay, PlacesControlsAsTheTemplateDoesInEveryLanguage)
{
    for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft})
    {
        QGuiApplication::setLayoutDirection(direction);
        const Step look = []
        {
            EXPECT_EQ(TopWidget().layoutDirection(), Qt::LeftToRight);
            const double x = TopWidget().width() / 429.0;
            const double y = TopWidget().height() / 230.0;
            for (const auto& control : VisibleControls())
            {
                const QRect place = Shown(*control).geometry();
                EXPECT_NEAR(place.x(), control->rect.x * x, 1.0);
                EXPECT_NEAR(place.y(), control->rect.y * y, 1.0);
                EXPECT_NEAR(place.width(), control->rect.width * x, 1.0);
                EXPECT_NEAR(place.height(), control->rect.height * y, 1.0);
            }
        };
        Use(IDD_CONSOLE, {look, kEscape});
    }
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(QtDisplay, ShowsWhatTheTemplateShowsAndTellsItToScreenReaders)
{
    const std::string font = "Verdana, DejaVu Sans, Bitstream Vera Sans, Liberation Sans 9 400\n";
    const std::pair<int, std::string> cases[] = {
        {IDD_CONSOLE, "Dialog 'ZT Diagnostics'\nZT Diagnostics, title, on the task bar\n" + font +
                          "EditableText 'ZT Diagnostics', tab, grey\n"
                          "Button 'Close', tab\nButton 'LDAP ...', tab\n"
                          "Button 'FTP Logs to Support', tab\nButton 'CRC64', tab\n"},
        {IDD_LDAP_CREDS, "Dialog 'DiagnosticsDlg'\nDiagnosticsDlg, title, menu, close\n" + font +
                             "EditableText 'LDAP Server:', tab\nEditableText 'Port:', tab\n"
                             "EditableText 'Domain:', tab\nEditableText 'Username:', tab\n"
                             "EditableText 'Password:', tab\nComboBox 'Authentication:', tab\n"
                             "Button 'OK', tab, default\nButton 'Cancel', tab\n"
                             "StaticText 'LDAP Server:'\nStaticText 'Username:'\nStaticText 'Password:'\n"
                             "StaticText 'Authentication:'\nStaticText 'Port:'\nStaticText 'Domain:'\n"},
        {IDD_CRC64, "Dialog 'Dialog'\nDialog, title, menu, close\n" + font +
                        "Button 'OK', tab, default\nButton 'Cancel', tab\nStaticText 'Input'\n"
                        "EditableText 'Input', tab\nCheckBox 'Wide characters', tab, checked\n"
                        "Button 'Get CRC64', tab\nEditableText 'CRC64', tab\nStaticText 'CRC64'\n"
                        "StaticText 'CRC64 Hex'\nEditableText 'CRC64 Hex', tab\n"},
    };
    const Step check = []
    {
        if (const HWND box = ControlOf(IDC_WIDE_CHARS))
            SendMessageW(box, BM_SETCHECK, BST_CHECKED, 0);
    };
    for (const auto& [dialog, description] : cases)
        Use(dialog, {[&] { EXPECT_EQ(DescribedDialog(), description); }, kEscape}, nullptr, check);
    Use(IDD_CONSOLE, {[]
                      {
                          const auto& output = WidgetOf<QPlainTextEdit>(IDC_OUTPUT);
                          EXPECT_TRUE(output.isReadOnly());
                          EXPECT_EQ(output.lineWrapMode(), QPlainTextEdit::NoWrap);
                          EXPECT_TRUE(output.verticalScrollBar()->isVisible());
                          EXPECT_TRUE(output.horizontalScrollBar()->isVisible());
                          TopWidget().showMinimized();
                          EXPECT_TRUE(IsIconic(platform::TopDialog()->handle));
                          TopWidget().showNormal();
                          EXPECT_FALSE(IsIconic(platform::TopDialog()->handle));
                      },
                      kEscape});
}

TEST_F(QtDisplay, WindowIconHasEverySizeOfTheResource)
{
    const Step setIcon = []
    {
        const HICON icon = LoadIconW(nullptr, MAKEINTRESOURCEW(IDI_TAVO));
        SendMessageW(platform::TopDialog()->handle, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
        for (const int size : {16, 24, 32, 48, 64, 128, 256})
        {
            const QImage image = TopWidget().windowIcon().pixmap(size).toImage();
            EXPECT_TRUE(TopWidget().windowIcon().availableSizes().contains(QSize(size, size))) << size;
            EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << "the corner is clear, size " << size;
            EXPECT_EQ(image.pixelColor(image.width() / 2, image.height() / 2).alpha(), 255) << size;
        }
    };
    Use(IDD_CONSOLE, {setIcon, kEscape});
    EXPECT_EQ(LoadIconW(nullptr, MAKEINTRESOURCEW(1)), nullptr);
}

TEST_F(QtDisplay, EnterEscAndClosingPressTheButtonsThatTheyShould)
{
    // The dialog, what has the focus, the key, and how the dialog ends.
    const std::tuple<int, int, Qt::Key, int> cases[] = {
        {IDD_CONSOLE, IDC_OUTPUT, Qt::Key_Return, IDOK}, // which no control has
        {IDD_CONSOLE, IDC_OUTPUT, Qt::Key_Escape, IDCANCEL},
        {IDD_LDAP_CREDS, IDC_DOMAIN, Qt::Key_Enter, IDOK}, // the default button
        {IDD_LDAP_CREDS, IDC_AUTH_METHOD, Qt::Key_Return, IDOK},
        {IDD_LDAP_CREDS, IDC_AUTH_METHOD, Qt::Key_Escape, IDCANCEL},
    };
    for (const auto& [dialog, focus, key, result] : cases)
    {
        const Step press = [&focus = focus, &key = key]
        {
            WidgetOf(focus).setFocus();
            Press(key);
        };
        EXPECT_EQ(Use(dialog, {press}), result) << "control " << focus << ", key " << key;
    }
    // A window manager closes windows without a close box, too.
    for (const int id : {IDD_CRC64, IDD_CONSOLE})
        EXPECT_EQ(Use(id, {[] { TopWidget().close(); }}), IDCANCEL);
}

TEST_F(QtDisplay, ProgramReadsWhatThePersonEntered)
{
    const std::wstring beyondTheBasicPlane = L"m\u00fcller \U0001F511";
    const auto fill = []
    {
        for (const wchar_t* method : {L"Try all", L"Simple", L"Digest"})
            SendMessageW(ControlOf(IDC_AUTH_METHOD), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(method));
        SendMessageW(ControlOf(IDC_AUTH_METHOD), CB_SETCURSEL, 0, 0);
        SetWindowTextW(ControlOf(IDC_PORT), L"389");
    };
    const Step enter = [&]
    {
        Type("ldap.example");
        Press(Qt::Key_Tab); // selects the port, so that typing replaces it
        Type("0636");
        Press(Qt::Key_Tab);
        QApplication::clipboard()->setText(QString::fromStdWString(beyondTheBasicPlane));
        Press(Qt::Key_V, Qt::ControlModifier);
        WidgetOf(IDC_AUTH_METHOD).setFocus();
        Press(Qt::Key_Down);
    };
    const Step read = [&]
    {
        EXPECT_EQ(TextOf(ControlOf(IDC_SERVER)), L"ldap.example");
        EXPECT_EQ(TextOf(ControlOf(IDC_PORT)), L"0636");
        EXPECT_EQ(TextOf(ControlOf(IDC_DOMAIN)), beyondTheBasicPlane);
        EXPECT_EQ(TextOf(ControlOf(IDC_AUTH_METHOD)), L"Simple");
        fill(); // shows what the program does while the dialog is open
        SendMessageW(ControlOf(IDC_PORT), EM_SETSEL, 1, 2);
        EXPECT_EQ(WidgetOf<QLineEdit>(IDC_PORT).selectedText(), "8");
        EXPECT_EQ(WidgetOf<QComboBox>(IDC_AUTH_METHOD).count(), 6);
    };
    Use(IDD_LDAP_CREDS, {enter, read, kEscape}, nullptr, fill);
}

TEST_F(QtDisplay, PastedTextOfSeveralLinesEndsInABoxOfOneLineWithTheFirst)
{
    const auto paste = [](const QString& text, std::wstring_view whole)
    {
        QApplication::clipboard()->setText(text);
        Press(Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(TextOf(ControlOf(IDC_INPUT)), whole);
        EXPECT_EQ(WidgetOf<QLineEdit>(IDC_INPUT).text().toStdWString(), whole);
    };
    Use(IDD_CRC64, {[&]
                    {
                        WidgetOf(IDC_INPUT).setFocus();
                        paste(QString(40000, u'x'), std::wstring(40000, L'x'));
                        Press(Qt::Key_A, Qt::ControlModifier);
                        paste("[]\n", L"[]");
                        Press(Qt::Key_Left);
                        paste("one\r\ntwo\r\n", L"[one]");
                        paste("\nthree", L"[one]");
                        Press(Qt::Key_Space);
                        EXPECT_EQ(TextOf(ControlOf(IDC_INPUT)), L"[one ]")
                            << "the caret stands after what was pasted";
                    },
                    kEscape});
}

TEST_F(QtDisplay, AppendedTextIsSeenAndLeavesTheSelectionAlone)
{
    const Step selectAllAndAppend = []
    {
        ExpectOutputAtItsEnd(); // scrolled before it was shown
        Append(L"more\r\n");
        ShowHundredLines();
        ExpectOutputAtItsEnd();
        Press(Qt::Key_A, Qt::ControlModifier);
        for (int n = 0; n < 300; ++n) // more than are drawn at once
        {
            Append(L"open, ");
            UpdateWindow(platform::TopDialog()->handle);
        }
        Append(L"then closed\r\nlast");
    };
    const Step copy = []
    {
        const QString shown = QString::fromStdWString(TextOf(ControlOf(IDC_OUTPUT))).remove(u'\r');
        EXPECT_TRUE(shown.endsWith("open, then closed\nlast"));
        EXPECT_EQ(WidgetOf<QPlainTextEdit>(IDC_OUTPUT).toPlainText(), shown);
        Press(Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QApplication::clipboard()->text(), QString(kHundredLines).remove(u'\r'));
        const HWND output = ControlOf(IDC_OUTPUT);
        const auto& area = WidgetOf<QPlainTextEdit>(IDC_OUTPUT);
        SetWindowTextW(output, L"one\r\ntwo\r");
        Append(L"\nthree");
        EXPECT_EQ(area.toPlainText(), "one\ntwo\nthree") << "a line end may come in two parts";
        SendMessageW(output, EM_SETSEL, 5, 8);
        EXPECT_EQ(area.textCursor().selectedText(), "two");
        Press(Qt::Key_Home, Qt::ControlModifier);
        Press(Qt::Key_End, Qt::ShiftModifier);
        EXPECT_EQ(area.textCursor().selectedText(), "one");
        ShowHundredLines();
        area.verticalScrollBar()->setValue(0);
        SendMessageW(output, EM_LINESCROLL, 0, 3);
        EXPECT_EQ(area.verticalScrollBar()->value(), 3);
    };
    Use(IDD_CONSOLE, {selectAllAndAppend, copy, kEscape}, nullptr, ShowHundredLines);
}

TEST_F(QtDisplay, NoOtherButtonIsPressedWhenThePressedOneIsDisabled)
{
    const Step disable = []
    {
        WidgetOf(IDC_FTP_LOGS).setFocus();
        EnableWindow(ControlOf(IDC_CRC64), FALSE);
        EXPECT_TRUE(WidgetOf(IDC_FTP_LOGS).hasFocus()) << "another one is disabled";
        EnableWindow(ControlOf(IDC_FTP_LOGS), FALSE);
        EXPECT_FALSE(WidgetOf(IDC_FTP_LOGS).isEnabled());
        Press(Qt::Key_Space);
    };
    EXPECT_EQ(Use(IDD_CONSOLE, {disable, kEscape}), IDCANCEL);
}

TEST_F(QtDisplay, ResizedDialogWidensItsBoxesAndKeepsButtonsAtTheirEdge)
{
    // The dialog, the control, and how far its left, right and bottom edge go.
    const std::tuple<int, int, int, int, int> cases[] = {
        {IDD_CONSOLE, IDC_OUTPUT, 0, 300, 200},  {IDD_CONSOLE, IDC_CRC64, 300, 300, 0},
        {IDD_LDAP_CREDS, IDC_SERVER, 0, 300, 0}, {IDD_LDAP_CREDS, IDC_PORT, 0, 0, 0},
        {IDD_LDAP_CREDS, IDOK, 300, 300, 0},     {IDD_CRC64, IDC_GET_CRC64, 0, 0, 0},
    };
    for (const auto& row : cases)
    {
        const Step resize = [&row]
        {
            const auto& [dialog, control, left, right, bottom] = row;
            const QSize smallest = TopWidget().size();
            const QRect before = WidgetOf(control).geometry();
            TopWidget().resize(smallest + QSize(300, dialog == IDD_CONSOLE ? 200 : 0));
            EXPECT_EQ(WidgetOf(control).geometry(), before.adjusted(left, 0, right, bottom));
            EXPECT_EQ(TopWidget().maximumHeight() == smallest.height(), dialog != IDD_CONSOLE);
            TopWidget().resize(1, 1);
            EXPECT_EQ(TopWidget().size(), smallest);
        };
        Use(std::get<0>(row), {resize, kEscape});
    }
}

TEST_F(QtDisplay, FindSelectsPlacesGoesOnAtTheOtherEndAndSaysWhatItMissed)
{
    const Step find = []
    {
        SetWindowTextW(ControlOf(IDC_OUTPUT), L"one failed\r\ntwo\r\nthree FAILED\r\n");
        const auto& output = WidgetOf<QPlainTextEdit>(IDC_OUTPUT);
        const auto line = [&] { return output.textCursor().blockNumber(); };
        WidgetOf(IDC_CLOSE).setFocus(); // the keys count in the whole window
        const QWidget& bar = *output.findChild<QLineEdit*>()->parentWidget();
        EXPECT_FALSE(bar.isVisible());
        const int whole = output.viewport()->height();
        Press(Qt::Key_F, Qt::ControlModifier);
        Type("failed");
        const QRect shown = output.viewport()->geometry();
        EXPECT_EQ(bar.geometry(),
                  QRect(shown.left(), shown.bottom() + 1, shown.width(), whole - shown.height()));
        const auto says = [&](const char* text)
        {
            const auto labels = bar.findChildren<QLabel*>();
            EXPECT_EQ(labels.size(), 2);
            EXPECT_EQ(labels[1]->text(), "Find:");
            EXPECT_EQ(labels[0]->text(), text);
            const QAccessibleInterface& face =
                *QAccessible::queryAccessibleInterface(QApplication::focusWidget());
            EXPECT_EQ(face.text(QAccessible::Name), "Find:");
            EXPECT_EQ(face.text(QAccessible::Description), text);
        };
        const std::tuple<Qt::Key, Qt::KeyboardModifiers, int, const char*> rows[] = {
            {Qt::Key_Return, {}, 0, ""},
            {Qt::Key_F3, {}, 2, ""},
            {Qt::Key_F3, {}, 0, "Went on from the start"},
            {Qt::Key_F3, Qt::ShiftModifier, 2, "Went on from the end"}};
        for (const auto& [key, modifiers, found, said] : rows)
        {
            Press(key, modifiers);
            EXPECT_EQ(line(), found) << said;
            EXPECT_EQ(output.textCursor().selectedText().toLower(), "failed");
            says(said);
        }
        Append(L"four\r\n");
        EXPECT_EQ(output.textCursor().selectedText(), "FAILED") << "a new line leaves the selection";
        Press(Qt::Key_X);
        Press(Qt::Key_Return);
        says("Not found");
        Press(Qt::Key_Escape);
        EXPECT_FALSE(bar.isVisible());
        EXPECT_EQ(QApplication::focusWidget(), &output) << "Esc closes the bar alone";
        EXPECT_EQ(output.viewport()->height(), whole);
        Press(Qt::Key_F, Qt::ControlModifier);
        says("");
        Press(Qt::Key_Return);
        EXPECT_EQ(line(), 0) << "what was selected is looked for";
        Press(Qt::Key_F, Qt::ControlModifier);
        Type("two");
        Press(Qt::Key_Return);
        EXPECT_EQ(output.textCursor().selectedText(), "two") << "typing replaces it";
        Press(Qt::Key_Escape);
        Press(Qt::Key_A, Qt::ControlModifier);
        Press(Qt::Key_F, Qt::ControlModifier);
        EXPECT_EQ(bar.findChild<QLineEdit*>()->text(), "two") << "but not several lines";
        Press(Qt::Key_Escape);
        SetWindowTextW(ControlOf(IDC_OUTPUT), L"");
        Press(Qt::Key_F3);
        EXPECT_TRUE(bar.isVisible()) << "where it says that nothing is found";
    };
    EXPECT_EQ(Use(IDD_CONSOLE, {find, kEscape}), IDCANCEL);
}

TEST_F(QtDisplay, MenuWrapsLinesAndKeysChangeTheSizeOfTheText)
{
    const Step look = []
    {
        ShowHundredLines();
        Append(std::wstring(500, L'x') + L" Err=81\r\n");
        SendMessageW(ControlOf(IDC_OUTPUT), EM_LINESCROLL, 0, 102);
        const auto& output = WidgetOf<QPlainTextEdit>(IDC_OUTPUT);
        const QPoint place(10, 10);
        const std::pair<QContextMenuEvent::Reason, QWidget*> asked[] = {
            {QContextMenuEvent::Mouse, output.viewport()},
            {QContextMenuEvent::Keyboard, &WidgetOf(IDC_OUTPUT)}};
        for (const auto& [reason, asks] : asked)
        {
            QContextMenuEvent event(reason, place, asks->mapToGlobal(place));
            QApplication::sendEvent(asks, &event);
            QWidget* const menu = QApplication::activePopupWidget();
            ASSERT_NE(menu, nullptr);
            QStringList words;
            for (const QAction* action : menu->actions())
                words += action->text() + (action->isEnabled() ? "" : " (grey)");
            EXPECT_EQ(words.join(", "),
                      (reason == QContextMenuEvent::Mouse ? "&Copy (grey)" : "&Copy") +
                          QString(", Select &all, , &Find..., Find &next, Find &previous, , "
                                  "&Wrap lines, &Larger text, S&maller text, , &Save as..."));
            WidgetOf<QPlainTextEdit>(IDC_OUTPUT).selectAll();
            QTest::keyClick(menu, Qt::Key_W);
            EXPECT_EQ(output.horizontalScrollBar()->maximum() == 0, reason == QContextMenuEvent::Mouse);
            ExpectOutputAtItsEnd();
        }
        const int points = output.font().pointSize();
        Press(Qt::Key_Plus, Qt::ControlModifier);
        Press(Qt::Key_Plus, Qt::ControlModifier);
        Press(Qt::Key_Minus, Qt::ControlModifier);
        EXPECT_EQ(output.font().pointSize(), points + 1);
        ExpectOutputAtItsEnd();
        for (const auto& [key, bound] : {std::pair(Qt::Key_Minus, 6), {Qt::Key_Equal, 40}})
        {
            for (int times = 0; times < 40; ++times)
                Press(key, Qt::ControlModifier);
            EXPECT_EQ(output.font().pointSize(), bound);
        }
        WidgetOf<QPlainTextEdit>(IDC_OUTPUT).verticalScrollBar()->setValue(0);
        Append(L"last\r\n");
        EXPECT_EQ(output.verticalScrollBar()->value(), 0) << "the program scrolls, not the display";
        SendMessageW(ControlOf(IDC_OUTPUT), EM_LINESCROLL, 0, 103);
        ExpectOutputAtItsEnd();
        TopWidget().activateWindow(); // no window manager does it
    };
    EXPECT_EQ(Use(IDD_CONSOLE, {look, kEscape}), IDCANCEL);
}

// The file dialog is Qt's own; a name is taken as chosen there.
TEST_F(QtDisplay, SaveAsWritesAPrivateFileInPlaceOfALinkAndTellsAnError)
{
    const TestFolder folder;
    folder.Write("aim", "untouched");
    fs::create_symlink(folder.Path() / "aim", folder.Path() / "saved.txt");
    fs::create_directory(folder.Path() / "in the way.txt");
    const auto saveAs = [](const fs::path& path)
    {
        Press(Qt::Key_S, Qt::ControlModifier);
        auto* const dialog = TopWidget().findChild<QFileDialog*>();
        ASSERT_NE(dialog, nullptr);
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_EQ(dialog->windowTitle(), "Save as");
        EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptSave);
        EXPECT_EQ(dialog->selectedFiles(),
                  QStringList(QDir::homePath() + "/Tavo-" + QSysInfo::machineHostName() +
                              QDate::currentDate().toString("-yyyy-MM-dd") + ".txt"));
        emit dialog->fileSelected(QString::fromStdString(path.string()));
        delete dialog;
    };
    const Step save = [&]
    {
        SetWindowTextW(ControlOf(IDC_OUTPUT), L"gr\u00FC\u00DFe \U0001F511\r\nlast");
        for (const char* name : {"saved.txt", "new.txt"})
            saveAs(folder.Path() / name);
        EXPECT_EQ(TopWidget().findChild<QMessageBox*>(), nullptr);
        saveAs(folder.Path() / "in the way.txt");
        const auto* const told = TopWidget().findChild<QMessageBox*>();
        ASSERT_NE(told, nullptr);
        EXPECT_TRUE(told->isVisible());
        EXPECT_EQ(told->windowTitle(), "Save as");
        EXPECT_EQ(told->textFormat(), Qt::PlainText);
        EXPECT_EQ(told->text().toStdString(), "The text could not be saved.\n" +
                                                  (folder.Path() / "in the way.txt").string() +
                                                  ": Is a directory");
        delete told;
        TopWidget().activateWindow(); // no window manager does it
    };
    EXPECT_EQ(Use(IDD_CONSOLE, {save, kEscape}), IDCANCEL);
    for (const char* name : {"saved.txt", "new.txt"})
    {
        EXPECT_EQ(folder.Read(name), "gr\u00FC\u00DFe \U0001F511\nlast");
        EXPECT_EQ(fs::symlink_status(folder.Path() / name).permissions(), fs::perms(0600));
    }
    EXPECT_EQ(folder.Read("aim"), "untouched");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 4) << "nothing is left behind";
}

TEST_F(QtDisplay, DialogOnTopKeepsItsOwnerFromInput)
{
    const Step openAnother = []
    {
        QWidget& owner = TopWidget();
        const QPoint closeButton = WidgetOf(IDC_CLOSE).geometry().center();
        const Step clickTheOwner = [&]
        {
            EXPECT_EQ(QApplication::activeModalWidget(), &TopWidget());
            EXPECT_EQ(TopWidget().windowHandle()->transientParent(), owner.windowHandle());
            EXPECT_LE((TopWidget().geometry().center() - owner.geometry().center()).manhattanLength(), 4);
            QTest::mouseClick(owner.windowHandle(), Qt::LeftButton, {}, closeButton);
        };
        EXPECT_EQ(Use(IDD_CRC64, {clickTheOwner, kEscape}, platform::TopDialog()->handle), IDCANCEL);
        EXPECT_EQ(QApplication::activeModalWidget(), &owner);
    };
    EXPECT_EQ(Use(IDD_CONSOLE, {openAnother, kEscape}), IDCANCEL);
}

TEST_F(QtDisplay, MessageBoxTakesAKeyForAnAnswerAndNoCloseBox)
{
    const Step key = [] { QTest::keyClick(&TopWidget(), Qt::Key_Y, Qt::AltModifier); };
    for (const Step& yes : {key, Step([] { Press(Qt::Key_Return); })})
    {
        const Step giveNoAnswer = []
        {
            EXPECT_EQ(WidgetOf<QPushButton>(IDNO).text(), "&No");
            EXPECT_TRUE(WidgetOf<QPushButton>(IDYES).isDefault());
            TopWidget().close();
            Press(Qt::Key_Escape);
        };
        const Person person({giveNoAnswer, yes});
        EXPECT_EQ(MessageBoxW(nullptr, L"Sure?", L"Question", MB_YESNO), IDYES);
    }
    const std::string words = Repeated("a <b>long</b> text ", 60);
    const auto signs = []
    {
        std::string heights;
        for (const QLabel* label : TopWidget().findChildren<QLabel*>())
            if (!label->pixmap().isNull())
                heights +=
                    std::to_string(label->pixmap().height()) + " at " + std::to_string(label->y()) + " ";
        return heights;
    };
    const Step look = [&]
    {
        const auto& text = WidgetOf<QLabel>(0xFFFF);
        EXPECT_EQ(text.text().toStdString(), words);
        EXPECT_EQ(text.textFormat(), Qt::PlainText);
        EXPECT_EQ(text.textInteractionFlags(), Qt::TextSelectableByMouse);
        EXPECT_GE(text.height(), text.heightForWidth(text.width()));
        EXPECT_NEAR(text.width(), 480, 20);
        const QAccessibleInterface& face = *QAccessible::queryAccessibleInterface(&TopWidget());
        EXPECT_EQ(face.role(), QAccessible::AlertMessage);
        EXPECT_EQ(face.text(QAccessible::Description).toStdString(), words);
        EXPECT_EQ(signs(), "32 at 12 ");
        EXPECT_GT(WidgetOf(IDOK).y(), text.geometry().bottom());
        EXPECT_EQ(TopWidget().minimumSize(), TopWidget().maximumSize());
        Press(Qt::Key_Escape);
    };
    {
        const Person person({look});
        EXPECT_EQ(MessageBoxW(nullptr, std::wstring(words.begin(), words.end()).c_str(), L"Note",
                              MB_OK | MB_ICONEXCLAMATION),
                  IDOK);
    }
    const Person person({[&]
                         {
                             EXPECT_EQ(signs(), "");
                             Press(Qt::Key_Escape);
                         }});
    EXPECT_EQ(MessageBoxW(nullptr, L"Done", L"Note", MB_OK), IDOK);
}

TEST_F(QtDisplay, ShowsInItsColourWhereTheKeyboardIsAndOpensListsBelowTheirBox)
{
    const Step look = []
    {
        auto& output = WidgetOf(IDC_OUTPUT);
        const QRgb highlight = TopWidget().palette().color(QPalette::Highlight).rgb();
        for (QWidget* focus : {&output, &WidgetOf(IDC_CLOSE), &output})
        {
            focus->setFocus();
            const QImage image = output.grab().toImage();
            for (const QPoint corner : {QPoint(0, 0), QPoint(image.width() - 1, image.height() - 1)})
                EXPECT_EQ(image.pixel(corner) == highlight, focus == &output);
        }
        auto& button = WidgetOf<QPushButton>(IDC_FTP_LOGS);
        const QImage image = button.grab().toImage();
        button.setText({});
        const QImage bare = button.grab().toImage();
        int rows = 0; // of its caption
        for (int y = 0; y < bare.height(); ++y)
            rows += image.copy(0, y, image.width(), 1) != bare.copy(0, y, bare.width(), 1) ? 1 : 0;
        EXPECT_GT(rows, button.fontMetrics().height()) << "in several lines";
        EXPECT_NE(bare.pixel(bare.width() / 2, 0), bare.pixel(bare.rect().center())) << "in a frame";
    };
    Use(IDD_CONSOLE, {look, kEscape});
    const Step open = []
    {
        auto& box = WidgetOf<QComboBox>(IDC_AUTH_METHOD);
        box.addItems({"one", "two", "three"});
        box.setCurrentIndex(2);
        box.showPopup();
        EXPECT_GE(box.view()->mapToGlobal(QPoint(0, 0)).y(), box.mapToGlobal(box.rect().bottomLeft()).y());
        box.hidePopup();
        TopWidget().activateWindow(); // no window manager does it
    };
    Use(IDD_LDAP_CREDS, {open, kEscape});
    EXPECT_EQ(QGuiApplication::desktopFileName(), "tavo") << "finds the icon on a Wayland desktop";
}

TEST_F(QtDisplay, IsLostInOrderWithAWaylandServer)
{
    EXPECT_EXIT(qWarning("The Wayland connection broke. Did the Wayland compositor die?"),
                testing::ExitedWithCode(1), "Did the Wayland compositor die");
}

TEST_F(QtDisplay, WaitsWithoutWork)
{
    const std::clock_t before = std::clock();
    EXPECT_EQ(MessageBoxTimeoutW(nullptr, L"Soon gone", L"Note", MB_OK, 0, 1000), MB_TIMEDOUT);
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 5) << "of a second";
}
