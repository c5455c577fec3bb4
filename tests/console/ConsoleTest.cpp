// SPDX-License-Identifier: MIT
// The console's output routine and the lines that are posted to it, in the very dialog that ships.
#include "app/CmdLineParser.h"
#include "console/TavoDlg.h"
#include "foundation/Kelvane.h"
#include "resources/resource.h"
#include "tests/support/ProgramFolder.h"
#include "tests/support/WindowProbe.h"

#include <gtest/gtest.h>

#include <regex>

constexpr int kEnded = 7;
constexpr UINT WM_DEEP = WM_USER + 3; // has OpenConsole do something that takes long
constexpr DWORD kMinute = 60000;      // in ms

// Open until `onOpen` has run, or longer if that has posted something to be served.
class OpenConsole : public CTavoDlg
{
public:
    using Step = std::function<void(OpenConsole&)>;
    explicit OpenConsole(Step onOpen) : mOnOpen(std::move(onOpen)), mResult(DoModal()) {}

    // What has been written since the report.
    std::wstring Written() const { return TextOf(::GetDlgItem(m_hWnd, IDC_OUTPUT)).substr(mReportLength); }
    std::wstring WrittenWithoutTimes() const
    {
        return std::regex_replace(Written(), std::wregex(L"\\[\\d+ms\\]"), L"[]");
    }

    // What WM_DEEP, which ends the dialog, had written at its end, and whether the output had the focus.
    std::wstring mDeepAnswer;
    bool mHasFocus = false;

protected:
    BOOL OnInitDialog() override
    {
        const BOOL result = CTavoDlg::OnInitDialog();
        mReportLength = TextOf(::GetDlgItem(m_hWnd, IDC_OUTPUT)).size();
        mOnOpen(*this);
        return result;
    }

private:
    LRESULT OnDeep(WPARAM, LPARAM)
    {
        const std::size_t before = WrittenWithoutTimes().size();
        for (const wchar_t* line : {L"from a thread\r\n", L"and another\r\n"})
            PostMessageW(gConsoleWnd, 0x402, 0, reinterpret_cast<LPARAM>(_wcsdup(line)));
        AppendLine(L"deep\r\n");
        mDeepAnswer = WrittenWithoutTimes().substr(before);
        mHasFocus = FocusedControl() == ::GetDlgItem(m_hWnd, IDC_OUTPUT);
        EndDialog(kEnded);
        return 0;
    }
    DECLARE_MESSAGE_MAP()

    Step mOnOpen;
    std::size_t mReportLength = 0;

public:
    const INT_PTR mResult; // set when all else is
};

BEGIN_MESSAGE_MAP(OpenConsole, CTavoDlg)
ON_MESSAGE(WM_DEEP, OnDeep)
END_MESSAGE_MAP()

TEST(Console, PutsTheTimeSinceTheStartTickIn32BitsBeforeEachTextAndAddsNoLineEnd)
{
    const OpenConsole console(
        [](OpenConsole& open)
        {
            gStartTick = GetTickCount() + kMinute;
            open.AppendLine(L"left open");
            unsigned wrapped = 0;
            EXPECT_EQ(std::swscanf(open.Written().c_str(), L"[%ums]", &wrapped), 1);
            EXPECT_GE(wrapped, 0U - kMinute);
            PostMessageW(open.m_hWnd, WM_COMMAND, IDC_CLOSE, 0); // lets the handler that runs end
            open.AppendLine(L"");
            open.AppendLine(L"two\r\nlines\r\n");
            EXPECT_EQ(open.WrittenWithoutTimes(), L"[] left open[] [] two\r\nlines\r\n");
            EXPECT_EQ(TextOf(::GetDlgItem(open.m_hWnd, IDC_HIDDEN_VALUE)), L"0");
            const HWND output = ::GetDlgItem(open.m_hWnd, IDC_OUTPUT);
            SetWindowTextW(output, L"what the control holds counts");
            open.AppendLine(L"");
            EXPECT_EQ(TextOf(output).substr(0, 30), L"what the control holds counts[");
        });
    EXPECT_EQ(console.mResult, 1);
}

TEST(Console, ShowsPostedLinesInTheirOrderHoweverDeepTheyNest)
{
    OpenConsole(
        [](OpenConsole& open)
        {
            EXPECT_EQ(gConsoleWnd, open.m_hWnd);
            std::wstring expected = L"[] first\r\n";
            for (int number = 0; number < 100; ++number)
            {
                const std::wstring line = std::to_wstring(number) + L"\r\n";
                PostMessageW(gConsoleWnd, 0x402, 0, reinterpret_cast<LPARAM>(_wcsdup(line.c_str())));
                expected += L"[] " + line;
            }
            open.AppendLine(L"first\r\n");
            EXPECT_EQ(open.WrittenWithoutTimes(), expected);
            open.EndDialog(kEnded);
        });
}

// A click in the innermost full pump starts a long test, for one: its lines and its window must live on.
TEST(Console, ServesPostedLinesInAHandlerAtTheDepthWherePumpsEnd)
{
    OpenConsole(
        [](OpenConsole& open)
        {
            for (int number = 0; number < 15; ++number)
                PostMessageW(gConsoleWnd, 0x402, 0, reinterpret_cast<LPARAM>(_wcsdup(L"nested\r\n")));
            PostMessageW(gConsoleWnd, WM_DEEP, 0, 0);
            open.AppendLine(L"first\r\n");
            EXPECT_EQ(open.mDeepAnswer, L"[] deep\r\n[] from a thread\r\n[] and another\r\n");
        });
}

TEST(Console, StartsAShipmentByAMessageFromTheButtonOrTheSwitchesWhichDisableTheButton)
{
    // An unattended shipment that is under way elsewhere.
    const HANDLE other = CreateEventW(nullptr, FALSE, FALSE, L"Global\\Tavo_FTP");
    // Whether the button is clicked, whether a shipment starts, and 1 where the dialog ends itself.
    const std::tuple<const wchar_t*, bool, bool, INT_PTR> rows[] = {
        {L"T", false, false, kEnded},
        {L"T", true, true, kEnded},
        {L"T -FTP_LOG=x", false, true, kEnded},
        {L"T -FTP_LOG -AUTOCLOSE", false, false, kEnded},
        {L"T -FTP_LOG=x -AUTOCLOSE", false, true, kEnded},
        {L"T -AUTOCLOSE=yes", false, false, kEnded},
        {L"T -FTP_LOG=x -AUTOCLOSE=yes", false, false, 1},
    };
    for (const auto& [commandLine, clicks, starts, result] : rows)
    {
        gCmdLineParser.Parse(commandLine);
        const OpenConsole console(
            [&](OpenConsole& open)
            {
                const HWND button = ::GetDlgItem(open.m_hWnd, IDC_FTP_LOGS);
                if (clicks)
                {
                    ::SetFocus(button);
                    SendMessageW(open.m_hWnd, WM_COMMAND, IDC_FTP_LOGS, 0);
                    EXPECT_EQ(FocusedControl(), ::GetDlgItem(open.m_hWnd, IDC_OUTPUT));
                }
                const BOOL wasDisabled = EnableWindow(button, !starts);
                EXPECT_EQ(wasDisabled != FALSE, starts) << commandLine;
                MSG message;
                int posted = 0;
                // Taken away here: no shipment is to run.
                while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
                    if (message.message == 0x401 && message.hwnd == open.m_hWnd)
                        ++posted;
                    else
                        DispatchMessageW(&message);
                EXPECT_EQ(posted, starts ? 1 : 0) << commandLine;
                EXPECT_EQ(open.Written(), L"");
                if (result == kEnded)
                    PostMessageW(open.m_hWnd, WM_DEEP, 0, 0);
            });
        EXPECT_EQ(console.mResult, result) << commandLine;
        EXPECT_EQ(console.mHasFocus, result == kEnded) << commandLine;
    }
    gCmdLineParser.Parse(L"T");
    CloseHandle(other);
}

TEST(TimedBox, GivesTheResultOfItsCallerWhenTimeRunsOut)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "Wine's MessageBoxTimeoutW heeds no time";
    EXPECT_EQ(TimedMessageBox(L"A title", L"a text", MB_OK, 1, 42), 42);
}
