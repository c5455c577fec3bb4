// SPDX-License-Identifier: MIT
#include "platform/display/terminal/TerminalStreams.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace platform
{

namespace
{

constexpr std::string_view kPrompt = "> ";
constexpr std::string_view kWipedPrompt = "\r  \r";
constexpr std::size_t kLongestLine = std::size_t{64} << 20; // bytes; a longer one is taken in pieces

// A descriptor that was closed when the program started would be given to the next file that is opened, and
// console text would go into that.
[[gnu::constructor]] void OpenMissingStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) == -1 && errno == EBADF)
            open("/dev/null", stream == STDIN_FILENO ? O_RDONLY : O_WRONLY);
}

} // namespace

TerminalOutput::TerminalOutput(const TerminalEncoding& encoding) : mEncoding(encoding)
{
    // A reader that went away is an error of the write, not the end of the program.
    signal(SIGPIPE, SIG_IGN);
}

void TerminalOutput::Write(std::string_view bytes)
{
    while (!bytes.empty() && !mIsGone)
    {
        const ssize_t written = write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (errno == EAGAIN)
        {
            pollfd ready{STDOUT_FILENO, POLLOUT, 0};
            poll(&ready, 1, -1);
        }
        else if (errno != EINTR)
            mIsGone = true;
    }
}

void TerminalOutput::ClearPrompt()
{
    if (mPromptStands)
        Write(kWipedPrompt);
    mPromptStands = false;
}

void TerminalOutput::WritePart(std::wstring_view text)
{
    const std::wstring harmless = mHarmless.Next(text);
    if (harmless.empty())
        return;
    ClearPrompt();
    Write(mEncoding.Encode(harmless));
    mAtLineStart = harmless.back() == L'\n';
}

void TerminalOutput::WriteLine(std::wstring_view text)
{
    ClearPrompt();
    std::string line = mAtLineStart ? "" : "\n";
    line += mEncoding.Encode(HarmlessText().Next(text));
    line += '\n';
    Write(line);
    mAtLineStart = true;
}

void TerminalOutput::ShowPrompt()
{
    if (mPromptStands)
        return;
    Write(mAtLineStart ? "" : "\n");
    Write(kPrompt);
    mAtLineStart = true;
    mPromptStands = true;
}

TerminalInput::TerminalInput(const TerminalEncoding& encoding)
    : mEncoding(encoding), mIsTerminal(isatty(STDIN_FILENO) != 0)
{
}

std::optional<std::wstring> TerminalInput::TakeLine()
{
    const std::size_t end = mBytes.find('\n', mSearched);
    const bool isWhole = end != std::string::npos;
    mSearched = mBytes.size();
    if (!isWhole && (mBytes.empty() || (!mEnded && mBytes.size() < kLongestLine)))
        return std::nullopt;
    mSearched = 0;
    std::string line = mBytes.substr(0, end);
    mBytes.erase(0, isWhole ? end + 1 : end);
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return mEncoding.Decode(line);
}

bool TerminalInput::CanRead() const
{
    // Reading a terminal from the background would stop the process.
    return !mEnded && (!mIsTerminal || tcgetpgrp(STDIN_FILENO) == getpgrp());
}

void TerminalInput::Read()
{
    std::array<char, 65536> buffer; // what a pipe holds
    const ssize_t count = read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count > 0)
        mBytes.append(buffer.data(), static_cast<std::size_t>(count));
    else if (count == 0 || (errno != EINTR && errno != EAGAIN))
        mEnded = true;
}

} // namespace platform
