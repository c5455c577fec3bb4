// SPDX-License-Identifier: MIT
#include "platform/display/terminal/TerminalStreams.h"

#include "platform/display/terminal/TerminalModes.h"

#include "text/Unicode.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>

namespace platform
{

namespace
{

constexpr std::size_t kLongestLine = std::size_t{64} << 20; // bytes; a longer one is taken in pieces
constexpr std::size_t kMostAtOnce = 4096;

// A descriptor that was closed when the program started would be given to the next file that is opened, and
// console text would go into that. What is always there and can be neither read nor written takes its place.
[[gnu::constructor]] void OpenMissingStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) == -1 && errno == EBADF)
            open("/", O_RDONLY);
}

} // namespace

TerminalOutput::TerminalOutput(const TerminalEncoding& encoding) : mEncoding(encoding) {}

// What cannot be written is lost, which is told once; the next text is tried again.
void TerminalOutput::Write(std::string_view bytes)
{
    while (!bytes.empty())
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
            return TellLoss(errno);
    }
}

// Not of a reader that has seen enough.
void TerminalOutput::TellLoss(int error)
{
    if (error != EPIPE && !std::exchange(mLossIsTold, true))
        std::fprintf(stderr, "Tavo: the console's text cannot be written: %s\n",
                     std::generic_category().message(error).c_str());
}

void TerminalOutput::WritePart(std::wstring_view text)
{
    const std::wstring harmless = mHarmless.Next(text);
    if (harmless.empty())
        return;
    Write(mEncoding.Encode(harmless));
    mAtLineStart = harmless.back() == L'\n';
}

void TerminalOutput::WriteLine(std::wstring_view text)
{
    std::string line = mAtLineStart ? "" : "\n";
    line += mEncoding.Encode(HarmlessText().Next(text));
    line += '\n';
    Write(line);
    mAtLineStart = true;
}

void TerminalOutput::EndLine()
{
    if (!mAtLineStart)
        Write("\n");
    mAtLineStart = true;
}

void TerminalOutput::Draw(std::string_view utf8)
{
    Write(mEncoding.Encode(text::FromUtf8(utf8)));
}

TerminalInput::TerminalInput(TerminalEncoding& encoding)
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
    const std::size_t length = isWhole ? end : mBytes.size();
    std::string_view line = std::string_view(mBytes).substr(0, length);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    std::wstring text = mEncoding.Decode(line, true);
    const std::size_t taken = isWhole ? length + 1 : length;
    Move(mBytes.data(), mBytes.data() + taken, mBytes.size() - taken);
    explicit_bzero(mBytes.data() + mBytes.size() - taken, taken);
    mBytes.resize(mBytes.size() - taken);
    return text;
}

bool TerminalInput::CanRead() const
{
    return !mEnded && (!mIsTerminal || IsInForeground());
}

void TerminalInput::Read()
{
    const std::size_t had = mBytes.size();
    if (had + kMostAtOnce > mBytes.capacity())
        Grow(mBytes, 2 * (had + kMostAtOnce));
    mBytes.resize(had + kMostAtOnce);
    const ssize_t count = read(STDIN_FILENO, mBytes.data() + had, kMostAtOnce);
    mBytes.resize(had + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN))
        mEnded = true;
}

} // namespace platform
