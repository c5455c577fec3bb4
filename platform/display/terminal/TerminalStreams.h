// SPDX-License-Identifier: MIT
// Standard input as lines and standard output as text.
#pragma once

#include "platform/display/terminal/TerminalText.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform
{

class TerminalOutput
{
public:
    explicit TerminalOutput(const TerminalEncoding& encoding);

    // Text as it comes, each part where the one before it ended.
    void WritePart(std::wstring_view text);
    // Text on a line of its own.
    void WriteLine(std::wstring_view text);
    // Ends the line that stands open, if one does.
    void EndLine();

    // UTF-8 with sequences for the terminal, as it is.
    void Draw(std::string_view utf8);

private:
    void Write(std::string_view bytes);
    void TellLoss(int error);

    const TerminalEncoding& mEncoding;
    HarmlessText mHarmless;
    bool mAtLineStart = true;
    bool mLossIsTold = false;
};

class TerminalInput
{
public:
    explicit TerminalInput(TerminalEncoding& encoding);
    ~TerminalInput() { Wipe(mBytes); }
    TerminalInput(const TerminalInput&) = delete;
    TerminalInput& operator=(const TerminalInput&) = delete;

    // The next line that has been read, without its end; nothing when there is none yet. The last line needs
    // no end.
    std::optional<std::wstring> TakeLine();

    // True when a read may give something now or later without stopping the process.
    bool CanRead() const;
    // Reads what is there; call it when a poll says that there is something.
    void Read();

    // True when all lines have been taken and no more will come.
    bool HasEnded() const { return mEnded && mBytes.empty(); }
    // A terminal can go on after its end of input.
    void Reopen() { mEnded = mEnded && !mIsTerminal; }

    bool IsTerminal() const { return mIsTerminal; }

private:
    TerminalEncoding& mEncoding;
    const bool mIsTerminal;
    std::string mBytes;
    std::size_t mSearched = 0; // so many of them hold no line's end
    bool mEnded = false;
};

} // namespace platform
