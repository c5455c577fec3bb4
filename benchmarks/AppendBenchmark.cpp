// SPDX-License-Identifier: MIT
// Lines added to the console on Qt's display, the way the console adds them (the whole text out of the
// control and back, the whole path through framework and layer), beside lines added to a bare text widget of
// Qt's: once with each line drawn, which is what a person watches, and once with nothing drawn before the
// end.
#include "framework/afxwin.h"
#include "foundation/Oriska.h"
#include "platform/dialogs/Display.h"
#include "resources/resource.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QPlainTextEdit>

#include <chrono>
#include <cstdlib>

namespace
{

using Clock = std::chrono::steady_clock;

std::wstring Line(int number)
{
    return L"[" + std::to_wstring(number) + L"ms] Entry: cn=somebody,ou=people,dc=example,dc=net\r\n";
}

double SecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

constexpr UINT WM_RUN = WM_USER + 1;

class AppendDialog : public CDialog
{
public:
    explicit AppendDialog(int lines) : CDialog(IDD_CONSOLE, nullptr), mLines(lines) {}

    double mSeconds = 0.0;

protected:
    BOOL OnInitDialog() override
    {
        PostMessageW(m_hWnd, WM_RUN, 0, 0);
        return CDialog::OnInitDialog();
    }

    void DoDataExchange(CDataExchange* exchange) override
    {
        DDX_Text(exchange, IDC_OUTPUT, mText);
        DDX_Control(exchange, IDC_OUTPUT, mEdit);
    }

    LRESULT OnRun(WPARAM, LPARAM)
    {
        const Clock::time_point start = Clock::now();
        for (int i = 0; i < mLines; ++i)
            AppendLine(Line(i));
        mSeconds = SecondsSince(start);
        EndDialog(IDOK);
        return 0;
    }

    DECLARE_MESSAGE_MAP()

private:
    void AppendLine(const std::wstring& text)
    {
        UpdateData(TRUE);
        mText += text.c_str();
        UpdateData(FALSE);
        UpdateWindow();
        SendMessageW(mEdit.m_hWnd, EM_LINESCROLL, 0, SendMessageW(mEdit.m_hWnd, EM_GETLINECOUNT, 0, 0));
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
    }

    int mLines;
    ZTString mText;
    CEdit mEdit;
};

BEGIN_MESSAGE_MAP(AppendDialog, CDialog)
ON_MESSAGE(WM_RUN, OnRun)
END_MESSAGE_MAP()

// The layer makes Qt's application object with the first dialog, so this must be the first benchmark.
void Console(benchmark::State& state)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    platform::UseDisplay(platform::DisplayKind::Qt);
    for (auto _ : state)
    {
        AppendDialog dialog(static_cast<int>(state.range(0)));
        dialog.DoModal();
        state.SetIterationTime(dialog.mSeconds);
    }
}

void BareWidget(benchmark::State& state, bool drawsEachLine)
{
    for (auto _ : state)
    {
        QPlainTextEdit edit;
        edit.setReadOnly(true);
        edit.setLineWrapMode(QPlainTextEdit::NoWrap);
        edit.resize(660, 380);
        edit.show();
        QCoreApplication::processEvents();
        const Clock::time_point start = Clock::now();
        for (int i = 0; i < state.range(0); ++i)
        {
            edit.appendPlainText(QString::fromStdWString(Line(i)).chopped(2));
            if (drawsEachLine)
                QCoreApplication::processEvents();
        }
        QCoreApplication::processEvents();
        state.SetIterationTime(SecondsSince(start));
    }
}

#define TAVO_CASE(name, lines)                                                                               \
    BENCHMARK(Console)->Name(name "/tavo")->Arg(lines)->Iterations(1)->UseManualTime();                      \
    BENCHMARK_CAPTURE(BareWidget, drawn, true)                                                               \
        ->Name(name "/widget, each line drawn")                                                              \
        ->Arg(lines)                                                                                         \
        ->Iterations(1)                                                                                      \
        ->UseManualTime();                                                                                   \
    BENCHMARK_CAPTURE(BareWidget, undrawn, false)                                                            \
        ->Name(name "/widget, nothing drawn")                                                                \
        ->Arg(lines)                                                                                         \
        ->Iterations(1)                                                                                      \
        ->UseManualTime()

TAVO_CASE("append 5,000 lines", 5000);
TAVO_CASE("append 20,000 lines", 20000);

} // namespace
