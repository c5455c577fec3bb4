// SPDX-License-Identifier: MIT
// The line editor on libedit (editline(3)). The library would wait for keys by itself; here it is given one
// key at a time, since the windows' messages are served between two keys.
#include "platform/display/terminal/LineEditor.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <utility>

#include <histedit.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <curses.h>
#include <term.h>

namespace platform
{

namespace
{

constexpr int kRememberedLines = 500;
constexpr std::size_t kDrawnAtOnce = 65536; // bytes
constexpr int kWidestCharacter = 8;         // columns that the library takes for what cannot be printed
constexpr const char* kUsualTerminal = "xterm";

// What keys send, besides those that the library knows.
struct Key
{
    const char* sequence;
    const char* command;
};
constexpr Key kKeys[] = {{"\\e[1~", "ed-move-to-beg"},     {"\\e[7~", "ed-move-to-beg"},
                         {"\\e[4~", "ed-move-to-end"},     {"\\e[8~", "ed-move-to-end"},
                         {"\\e[1;5C", "em-next-word"},     {"\\e[1;5D", "ed-prev-word"},
                         {"\\e[3~", "ed-delete-next-char"}};
constexpr int kLastKey = 34; // numbered sequences end there: the function keys with and without shift

// The library takes the thread's locale for that of the text.
class InLocale
{
public:
    explicit InLocale(locale_t locale) : mFormer(uselocale(locale)) {}
    ~InLocale() { uselocale(mFormer); }
    InLocale(const InLocale&) = delete;
    InLocale& operator=(const InLocale&) = delete;

private:
    locale_t mFormer;
};

int Columns()
{
    winsize size{};
    return ioctl(STDIN_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

// See no-color.org.
bool HasColours()
{
    const char* const unwanted = std::getenv("NO_COLOR");
    return (unwanted == nullptr || *unwanted == '\0') && tigetnum("colors") >= 8;
}

class LibeditLine : public LineEditor
{
public:
    LibeditLine(LineEditorHost& host, const char* terminal, bool hasColours, locale_t utf8)
        : mHost(host), mHasColours(hasColours), mUtf8(utf8)
    {
        const InLocale in(mUtf8);
        cookie_io_functions_t functions = {};
        functions.write = [](void* self, const char* bytes, std::size_t count)
        {
            static_cast<LibeditLine*>(self)->mHost.Draw({bytes, count});
            return static_cast<ssize_t>(count);
        };
        mScreen = fopencookie(this, "w", functions);
        std::setvbuf(mScreen, nullptr, _IOFBF, kDrawnAtOnce);
        mNowhere = std::fopen("/dev/null", "we");
        mEdit = el_init_fd("Tavo", stdin, mScreen, mNowhere, STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO);
        el_set(mEdit, EL_TERMINAL, terminal);
        // Nor is anything echoed between two lines, where the next one may be a password.
        el_set(mEdit, EL_SETTY, "-x", "-echo", "-icanon", nullptr);
        el_wset(mEdit, EL_CLIENTDATA, this);
        el_wset(mEdit, EL_EDITOR, L"emacs");
        el_wset(mEdit, EL_GETCFN, &GetKey);
        el_wset(mEdit, EL_PROMPT, &GetPrompt);
        // A key that does nothing shall not leave a part of its sequence in the text.
        for (int number = 1; number <= kLastKey; ++number)
            el_set(mEdit, EL_BIND, ("\\e[" + std::to_string(number) + "~").c_str(), "ed-ignore", nullptr);
        for (const Key& key : kKeys)
            el_set(mEdit, EL_BIND, key.sequence, key.command, nullptr);
        HistEventW event;
        mHistory = history_winit();
        history_w(mHistory, &event, H_SETSIZE, kRememberedLines);
        history_w(mHistory, &event, H_SETUNIQUE, 1);
        el_wset(mEdit, EL_HIST, history_w, mHistory);
    }

    ~LibeditLine() override
    {
        const InLocale in(mUtf8);
        el_end(mEdit);
        history_wend(mHistory);
        std::fclose(mScreen);
        std::fclose(mNowhere);
    }

    void Begin(std::wstring prompt) override
    {
        const InLocale in(mUtf8);
        mPrompt = std::move(prompt);
        el_wset(mEdit, EL_UNBUFFERED, 0);
        el_wset(mEdit, EL_UNBUFFERED, 1);
    }

    bool Take(wchar_t key) override
    {
        const InLocale in(mUtf8);
        el_resize(mEdit);
        mKey = key;
        int count = 0;
        el_wgets(mEdit, &count);
        std::fflush(mScreen);
        return Line().ends_with(L'\n');
    }

    std::wstring Text() const override
    {
        const std::wstring_view line = Line();
        return std::wstring(line.substr(0, line.find(L'\n')));
    }

    void Replace(const std::wstring& text) override
    {
        const LineInfoW& line = *el_wline(mEdit);
        el_cursor(mEdit, static_cast<int>(line.lastchar - line.cursor));
        el_wdeletestr(mEdit, static_cast<int>(line.lastchar - line.buffer));
        el_winsertstr(mEdit, text.c_str());
    }

    void Hide() override
    {
        const LineInfoW& line = *el_wline(mEdit);
        const int rows = Width(mPrompt + std::wstring(line.buffer, line.cursor)) / Columns();
        mHost.Draw(rows > 0 ? "\r\x1b[" + std::to_string(rows) + "A\x1b[J" : "\r\x1b[J");
    }

    void Show() override
    {
        const InLocale in(mUtf8);
        el_wset(mEdit, EL_REFRESH);
        std::fflush(mScreen);
    }

    void Remember(const std::wstring& line) override
    {
        HistEventW event;
        history_w(mHistory, &event, H_ENTER, line.c_str());
    }

    bool MovesCursor() const override { return true; }
    bool HasColours() const override { return mHasColours; }

private:
    static LibeditLine& Self(EditLine* edit)
    {
        void* self = nullptr;
        el_wget(edit, EL_CLIENTDATA, &self);
        return *static_cast<LibeditLine*>(self);
    }

    static int GetKey(EditLine* edit, wchar_t* key)
    {
        LibeditLine& self = Self(edit);
        const std::optional<wchar_t> next =
            self.mKey ? std::exchange(self.mKey, std::nullopt) : self.mHost.NextOfKey();
        *key = next.value_or(L'\0');
        return next ? 1 : 0;
    }

    static wchar_t* GetPrompt(EditLine* edit) { return Self(edit).mPrompt.data(); }

    std::wstring_view Line() const
    {
        const LineInfoW& line = *el_wline(mEdit);
        return {line.buffer, static_cast<std::size_t>(line.lastchar - line.buffer)};
    }

    int Width(std::wstring_view text) const
    {
        const InLocale in(mUtf8);
        int width = 0;
        for (const wchar_t character : text)
        {
            const int own = wcwidth(character);
            width += own >= 0 ? own : character < L' ' ? 2 : kWidestCharacter;
        }
        return width;
    }

    LineEditorHost& mHost;
    const bool mHasColours;
    const locale_t mUtf8;
    FILE* mScreen = nullptr;
    FILE* mNowhere = nullptr; // for what the library has to say about a terminal
    EditLine* mEdit = nullptr;
    HistoryW* mHistory = nullptr;
    std::wstring mPrompt;
    std::optional<wchar_t> mKey;
};

} // namespace

extern "C" [[gnu::visibility("default")]] LineEditor* tavo_make_line_editor(LineEditorHost& host)
{
    const char* terminal = std::getenv("TERM");
    const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (terminal == nullptr || *terminal == '\0' || utf8 == nullptr)
        return nullptr;
    int found = 0;
    if (setupterm(terminal, STDOUT_FILENO, &found) != OK)
    {
        // Somebody's new terminal over ssh: all that this machine does not know by name move the cursor
        // alike.
        terminal = kUsualTerminal;
        if (setupterm(terminal, STDOUT_FILENO, &found) != OK)
            return nullptr;
    }
    const char* const up = tigetstr("cuu");
    if (up == nullptr || !std::string_view(up).starts_with("\x1b[%p1%dA"))
        return nullptr;
    return new LibeditLine(host, terminal, HasColours(), utf8);
}

} // namespace platform
